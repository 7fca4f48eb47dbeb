#pragma once
// A display whose controller appears as a serial port: DDC/CI requests are written byte for
// byte, and the reply is whatever the display sends back, to which the connector appends the
// DDC/CI checksum itself (the display sends none).

#include <memory>

#include "Connector.h"
#include "DdcPackets.h"
#include "SerialPort.h"

class CWinUSBConnector : public Connector {
public:
    // Reply data of a capabilities reply starts after address, length, opcode and offset.
    static constexpr size_t HEADER_SIZE = Ddc::kOffsetReplyHeaderSize;
    static constexpr size_t kReadBlockSize = 256;

    explicit CWinUSBConnector(std::unique_ptr<ISerialPort> port_I);
    ~CWinUSBConnector() override;

    bool IsUsable() const override { return true; }
    unsigned GetType() const override { return eConnectorSerial; }
    bool Open(const std::string& name_I) override;
    bool Open(int32_t deviceIndex_I) override;
    bool Close() override;
    bool IsOpen() const override;
    ByteBuffer SendRequest(const ByteBuffer& toSend_I, double delay_I, unsigned expectedSize_I,
                           int32_t depth_I) override;
    std::string CapabilitiesString() override;
    SFirmwareVersion FWVersion() override;
    ByteBuffer ReadEDID(int32_t sid_I) override;

    // The whole-EDID request of the serial firmware: the vendor EDID command with index FF.
    static ByteBuffer BuildEdidRequest();

private:
    // Closes the port when its last failure says the device went away; true if it did.
    bool CloseIfGone();

    std::unique_ptr<ISerialPort> mPort;
};
