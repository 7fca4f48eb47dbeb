#pragma once
// The displays the kernel's DRM drivers see: each connected connector under /sys/class/drm with
// its EDID and the I2C bus its DDC lines are on (the connector's "ddc" link, or the i2c-N
// adapter folder inside it).

#include <string>
#include <vector>

#include "LinuxSystem.h"

struct SDrmConnector {
    std::string name;       // "card0-DP-1"
    ByteBuffer edid;        // whole 128-byte blocks
    std::string i2cDevice;  // "/dev/i2c-5"; empty when the bus is not known
};

// Connectors with an EDID of at least one whole block; a truncated EDID is logged and skipped.
std::vector<SDrmConnector> FindDrmConnectors(ILinuxSystem& system_I,
                                             const std::string& sysfsDrm_I = "/sys/class/drm");
