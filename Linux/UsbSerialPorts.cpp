#include "UsbSerialPorts.h"

#include <algorithm>
#include <cstdio>

#include "DiscoveryRules.h"

namespace {

// "PRODUCT=10c4/ea60/100" from the interface's uevent (the port's own for ttyACM, its
// parent's for ttyUSB).
bool ReadUsbIds(ILinuxSystem& system_I, const std::string& device_I, unsigned& vendor_O,
                unsigned& product_O) {
    for (const char* uevent : {"/uevent", "/../uevent"}) {
        const std::optional<ByteBuffer> bytes = system_I.Read(device_I + uevent);
        if (!bytes) {
            continue;
        }
        const std::string text(bytes->begin(), bytes->end());
        const size_t at = text.find("PRODUCT=");
        if (at != std::string::npos &&
            std::sscanf(text.c_str() + at, "PRODUCT=%x/%x", &vendor_O, &product_O) == 2) {
            return true;
        }
    }
    return false;
}

}  // namespace

std::vector<SUsbSerialPort> FindUsbSerialPorts(ILinuxSystem& system_I, const std::string& sysfsTty_I) {
    std::vector<SUsbSerialPort> found;
    std::vector<std::string> names = system_I.List(sysfsTty_I);
    std::sort(names.begin(), names.end());
    for (const std::string& name : names) {
        if (name.rfind("ttyUSB", 0) != 0 && name.rfind("ttyACM", 0) != 0) {
            continue;
        }
        unsigned vendor = 0;
        unsigned product = 0;
        if (!ReadUsbIds(system_I, sysfsTty_I + "/" + name + "/device", vendor, product)) {
            continue;
        }
        char id[64];
        // FTDI's driver names its ports this way on Windows; the rules know both forms.
        std::snprintf(id, sizeof(id),
                      vendor == 0x0403 ? "FTDIBUS\\COMPORT&VID_%04X&PID_%04X" : "USB\\VID_%04X&PID_%04X",
                      vendor, product);
        if (Discovery::ClassifyPortHardwareId(id) != Discovery::EPortKind::NotSupported) {
            found.push_back({system_I.DeviceNode(name), id});
        }
    }
    return found;
}
