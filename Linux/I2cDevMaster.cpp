#include "I2cDevMaster.h"

#include <fcntl.h>
#include <linux/i2c-dev.h>
#include <linux/i2c.h>

#include <cerrno>
#include <cstring>
#include <memory>

#include "DebugLog.h"

CI2cDevMaster::~CI2cDevMaster() {
    mSystem.Close(mDescriptor);
}

std::unique_ptr<CI2cDevMaster> CI2cDevMaster::Open(ILinuxSystem& system_I, const std::string& device_I,
                                                   int* error_O) {
    const int descriptor = system_I.Open(device_I, O_RDWR);
    if (descriptor < 0) {
        if (error_O != nullptr) {
            *error_O = errno;
        }
        // Usually permissions: the i2c group, or the i2c-dev module not loaded.
        DLog("CI2cDevMaster: %s does not open: %s\n", device_I.c_str(), std::strerror(errno));
        return nullptr;
    }
    return std::make_unique<CI2cDevMaster>(system_I, descriptor);
}

bool CI2cDevMaster::Write(uint8_t address7_I, const ByteBuffer& bytes_I) {
    ByteBuffer bytes = bytes_I;
    i2c_msg message{address7_I, 0, static_cast<__u16>(bytes.size()), bytes.data()};
    i2c_rdwr_ioctl_data transfer{&message, 1};
    return mSystem.Ioctl(mDescriptor, I2C_RDWR, &transfer) >= 0;
}

bool CI2cDevMaster::Read(uint8_t address7_I, size_t count_I, ByteBuffer& bytes_O) {
    bytes_O.assign(count_I, 0);
    i2c_msg message{address7_I, I2C_M_RD, static_cast<__u16>(count_I), bytes_O.data()};
    i2c_rdwr_ioctl_data transfer{&message, 1};
    if (mSystem.Ioctl(mDescriptor, I2C_RDWR, &transfer) < 0) {
        bytes_O.clear();
        return false;
    }
    return true;
}
