#pragma once
// What every DDC/CI-over-I2C display connection shares: the maker's vendor commands for
// factory mode, for reading the EDID in sixteen chunks, and for reading the capabilities
// string and the firmware version as tables. The transport itself (SendRequest, IsOpen) is
// the subclass's; the Windows subclass goes through the graphics driver instead.

#include "Connector.h"

class CI2CConnectorDP : public Connector {
public:
    bool IsUsable() const override { return true; }
    unsigned GetType() const override { return eConnectorDisplayPort; }
    bool Open(const std::string& name_I) override;
    bool Open(int32_t deviceIndex_I) override;
    bool Close() override;

    // The capabilities string, read as vendor table F3 (6E 51 84 E2 F3 offset chk).
    std::string CapabilitiesString() override;
    // The firmware version, read as vendor table C9 (major, minor, build).
    SFirmwareVersion FWVersion() override;
    // The EDID in sixteen chunks between factory mode on and off.
    ByteBuffer ReadEDID(int32_t sid_I) override;

    bool SetFactoryMode(bool on_I);

protected:
    // A vendor table read chunk by chunk until the display answers with the null message.
    ByteBuffer ReadVendorTable(uint8_t table_I);
};
