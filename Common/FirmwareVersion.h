#pragma once
// The display's firmware version as the connectors report it: three version numbers, a
// format kind and a spare byte. All zero means "unknown" (a failed read).

#include <cstdint>
#include <string>

struct SFirmwareVersion {
    uint8_t major = 0;
    uint8_t minor = 0;
    uint8_t build = 0;
    uint8_t kind = 0;
    uint8_t spare = 0;

    bool IsZero() const { return major == 0 && minor == 0 && build == 0 && kind == 0 && spare == 0; }
    // "3.1.2"; empty for the zero record.
    std::string ToString() const {
        if (IsZero()) {
            return {};
        }
        return std::to_string(major) + "." + std::to_string(minor) + "." + std::to_string(build);
    }
    friend bool operator==(const SFirmwareVersion&, const SFirmwareVersion&) = default;
};

// Format kind of a version taken from VCP 0xC9.
constexpr uint8_t kFirmwareVersionKindVcpC9 = 5;

// The displays report their major version in the low byte of 0xC9's maximum, and minor and
// build in the high and low bytes of its current value.
inline SFirmwareVersion FirmwareVersionFromVcpC9(uint16_t current_I, uint16_t maximum_I) {
    SFirmwareVersion version;
    version.major = static_cast<uint8_t>(maximum_I & 0xFF);
    version.minor = static_cast<uint8_t>(current_I >> 8);
    version.build = static_cast<uint8_t>(current_I & 0xFF);
    version.kind = kFirmwareVersionKindVcpC9;
    return version;
}
