#include "DisplayLock.h"

#include <cctype>
#include <cstdlib>

namespace {

void AppendPlain(std::string& name_IO, const std::string& text_I) {
    for (char c : text_I.substr(0, 64)) {
        name_IO += std::isalnum(static_cast<unsigned char>(c)) != 0 ? c : '_';
    }
}

}  // namespace

std::string DisplayLockName(const std::string& serial_I) {
    std::string name = "VelorDisplaySettings.Display.";
    if (const char* scope = std::getenv("VLR_DISPLAY_LOCK_SCOPE"); scope != nullptr && *scope != '\0') {
        AppendPlain(name, scope);
        name += '.';
    }
    AppendPlain(name, serial_I);
    return name;
}
