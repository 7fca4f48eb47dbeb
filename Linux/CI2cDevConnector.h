#pragma once
// DDC/CI through the graphics driver's DDC bus on Linux: the DDC/CI-over-I2C connector over
// /dev/i2c-N. It stands where the Monitor Configuration API stands on Windows, so it reports
// the same connector type.

#include <string>

#include "CDdcI2CConnector.h"
#include "LinuxSystem.h"

class CI2cDevConnector : public CDdcI2CConnector {
public:
    explicit CI2cDevConnector(ILinuxSystem& system_I) : mSystem(system_I) {}

    unsigned GetType() const override { return eConnectorDisplayPort; }
    using CDdcI2CConnector::Open;
    // The index of /dev/i2c-N.
    bool Open(int32_t bus_I) override;
    // The errno of the last Open that failed, 0 after one that worked.
    int OpenError() const { return mOpenError; }

private:
    ILinuxSystem& mSystem;
    int mOpenError = 0;
};
