#pragma once
// DDC/CI over any I2C master: the display's controller at 7-bit address 0x37 (written as 0x6E,
// read as 0x6F), its EDID at 0x50. A request packet is written without its first byte, which
// is the address itself; after the request's wait the reply is read back. The USB-to-I2C
// bridges only supply the master.

#include <memory>

#include "Connector.h"
#include "I2CMaster.h"

class CDdcI2CConnector : public Connector {
public:
    static constexpr uint8_t kDisplayAddress7 = 0x37;
    static constexpr uint8_t kEdidAddress7 = 0x50;

    bool IsUsable() const override { return true; }
    bool Open(const std::string& name_I) override;
    bool Close() override;
    bool IsOpen() const override { return mMaster != nullptr; }
    ByteBuffer SendRequest(const ByteBuffer& toSend_I, double delay_I, unsigned expectedSize_I,
                           int32_t depth_I) override;
    std::string CapabilitiesString() override;
    SFirmwareVersion FWVersion() override;
    // The EDID from its own I2C address: the base block and, when it says so, one extension.
    ByteBuffer ReadEDID(int32_t sid_I) override;

protected:
    void SetMaster(std::unique_ptr<II2CMaster> master_I) { mMaster = std::move(master_I); }
    II2CMaster* Master() const { return mMaster.get(); }

private:
    std::unique_ptr<II2CMaster> mMaster;
};
