#include "CI2cDevConnector.h"

#include "I2cDevMaster.h"

bool CI2cDevConnector::Open(int32_t bus_I) {
    Close();
    mOpenError = 0;
    std::unique_ptr<CI2cDevMaster> master =
        CI2cDevMaster::Open(mSystem, "/dev/i2c-" + std::to_string(bus_I), &mOpenError);
    if (!master) {
        return false;
    }
    SetMaster(std::move(master));
    return true;
}
