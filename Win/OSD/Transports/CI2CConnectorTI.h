#pragma once
// A display reached through a TI TUSB3410 USB-to-I2C bridge. The bridge's I2C library
// (TUSB3x10_I2C_API.dll) has no public description of its interface, so the connector does
// not guess at it: it reports no devices, saying why, until the interface is known. The
// DDC/CI exchange and the EDID read (the maker's vendor command) are ready for a master.

#include "CDdcI2CConnector.h"

class CI2CConnectorTI : public CDdcI2CConnector {
public:
    static int DeviceCount();

    unsigned GetType() const override { return eConnectorTI; }
    using CDdcI2CConnector::Open;
    bool Open(int32_t deviceIndex_I) override;
    ByteBuffer ReadEDID(int32_t sid_I) override;
};
