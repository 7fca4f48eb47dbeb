#pragma once
// An I2C master over the kernel's i2c-dev interface (/dev/i2c-N): each write and each read is
// one I2C_RDWR transfer of one message, so the DDC/CI timing stays the connector's.

#include <memory>
#include <string>

#include "I2CMaster.h"
#include "LinuxSystem.h"

class CI2cDevMaster : public II2CMaster {
public:
    CI2cDevMaster(ILinuxSystem& system_I, int descriptor_I) : mSystem(system_I), mDescriptor(descriptor_I) {}
    ~CI2cDevMaster() override;

    // Opens the device node; null (the reason logged, its errno in error_O) when it cannot be opened.
    static std::unique_ptr<CI2cDevMaster> Open(ILinuxSystem& system_I, const std::string& device_I,
                                               int* error_O = nullptr);

    bool Write(uint8_t address7_I, const ByteBuffer& bytes_I) override;
    bool Read(uint8_t address7_I, size_t count_I, ByteBuffer& bytes_O) override;

private:
    ILinuxSystem& mSystem;
    int mDescriptor;
};
