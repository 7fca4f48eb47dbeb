#pragma once
// The hidraw nodes of the maker's USB devices, from /sys/class/hidraw/<node>/device/uevent
// (HID_ID=<bus>:<vendor>:<product>).

#include <string>
#include <vector>

#include "LinuxSystem.h"

struct SHidrawDevice {
    std::string node;  // "/dev/hidraw3"
    uint16_t vendorId = 0;
    uint16_t productId = 0;
};

std::vector<SHidrawDevice> FindHidrawDevices(ILinuxSystem& system_I, uint16_t vendorId_I,
                                             const std::string& sysfsHidraw_I = "/sys/class/hidraw");
