#pragma once
// DDC/CI carried in USB HID feature reports: each request packet is wrapped in report
// E5 04 <kind> 00 00 <packet>; the display's answer is polled with status reports, which carry
// its reply from byte 6 on, and turned back into the DDC/CI reply the display object expects.
// The HID calls themselves are the subclass's.

#include <cstdint>
#include <string>

#include "Connector.h"
#include "DdcPackets.h"

class CVcpHIDConnector : public Connector {
public:
    // Request kinds: a request that expects data back, and one that only changes state.
    static constexpr uint32_t kRequestWithData = HidVcp::kKindWithData;
    static constexpr uint32_t kRequestWithoutData = HidVcp::kKindWithoutData;

    bool IsUsable() const override { return true; }
    unsigned GetType() const override { return eConnectorHID; }
    // By HID device path.
    bool Open(const std::string& name_I) override;
    bool Open(int32_t deviceIndex_I) override;
    bool Close() override;
    bool IsOpen() const override;
    ByteBuffer SendRequest(const ByteBuffer& toSend_I, double delay_I, unsigned expectedSize_I,
                           int32_t depth_I) override;
    std::string CapabilitiesString() override;
    std::string MonitorName() override;
    std::string SerialNumber(int32_t sid_I) override;
    SFirmwareVersion FWVersion() override;
    ByteBuffer ReadEDID(int32_t sid_I) override;

    virtual bool OpenHIDDevice(const std::string& devicePath_I);
    virtual bool CloseHIDDevice();
    virtual bool SetFeature(const ByteBuffer& report_I);
    virtual bool GetFeature(ByteBuffer& report_IO);

    // A DDC/CI request for get (01), set (03) or capabilities (F3); empty for other commands.
    ByteBuffer BuildCommand(uint8_t command_I, const ByteBuffer& codeOrOffset_I);
    // Sends the request and returns the last status report (at least the one byte 00).
    ByteBuffer SubmitRequest(const ByteBuffer& command_I, uint32_t kind_I);
    ByteBuffer GetStatus();

private:
    std::string ReadDisplayInformationText(size_t first_I, size_t minimumSize_I, const char* name_I);

    std::string mCapabilities;
    std::string mMonitorName;
    std::string mSerialNumber;
    SFirmwareVersion mFirmwareVersion;
};
