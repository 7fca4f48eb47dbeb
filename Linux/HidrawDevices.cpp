#include "HidrawDevices.h"

#include <algorithm>
#include <cstdio>

std::vector<SHidrawDevice> FindHidrawDevices(ILinuxSystem& system_I, uint16_t vendorId_I,
                                             const std::string& sysfsHidraw_I) {
    std::vector<SHidrawDevice> found;
    std::vector<std::string> names = system_I.List(sysfsHidraw_I);
    std::sort(names.begin(), names.end());
    for (const std::string& name : names) {
        const std::optional<ByteBuffer> uevent = system_I.Read(sysfsHidraw_I + "/" + name + "/device/uevent");
        if (!uevent) {
            continue;
        }
        const std::string text(uevent->begin(), uevent->end());
        const size_t at = text.find("HID_ID=");
        unsigned bus = 0;
        unsigned vendor = 0;
        unsigned product = 0;
        if (at == std::string::npos ||
            std::sscanf(text.c_str() + at, "HID_ID=%x:%x:%x", &bus, &vendor, &product) != 3 ||
            vendor > 0xFFFF || product > 0xFFFF) {
            continue;
        }
        if (vendor == vendorId_I) {
            found.push_back({"/dev/" + name, static_cast<uint16_t>(vendor), static_cast<uint16_t>(product)});
        }
    }
    return found;
}
