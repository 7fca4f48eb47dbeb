#include "DisplayLock.h"

#include <cctype>

std::string DisplayLockName(const std::string& serial_I) {
    std::string name = "VelorDisplaySettings.Display.";
    for (char c : serial_I.substr(0, 64)) {
        name += std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
    }
    return name;
}
