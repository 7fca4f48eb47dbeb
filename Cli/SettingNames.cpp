#include "SettingNames.h"

#include <algorithm>
#include <cctype>
#include <charconv>

#include "VcpCodeTable.h"

namespace {

struct SName {
    ESetting setting;
    const char* name;
    const char* alias;  // the American spelling, where it differs
};

constexpr SName kNames[] = {
    {ESetting::Brightness, "brightness", nullptr},
    {ESetting::Contrast, "contrast", nullptr},
    {ESetting::ColorSettingMode, "colour-mode", "color-mode"},
    {ESetting::ColorTemperature, "colour-temperature", "color-temperature"},
    {ESetting::ColorSpace, "colour-space", "color-space"},
    {ESetting::Gamma, "gamma", nullptr},
    {ESetting::AspectRatio, "aspect-ratio", nullptr},
    {ESetting::PowerLedBrightness, "led-brightness", nullptr},
    {ESetting::Sharpness, "sharpness", nullptr},
    {ESetting::UniformityCompensation, "uniformity", nullptr},
    {ESetting::EnergySmart, "energy-smart", nullptr},
    {ESetting::DynamicContrast, "dynamic-contrast", nullptr},
    {ESetting::AutoPowerDown, "auto-power-down", nullptr},
    {ESetting::FanSpeed, "fan", nullptr},
    {ESetting::LcdConditioning, "lcd-conditioning", nullptr},
    {ESetting::BatteryMode, "battery-mode", nullptr},
    {ESetting::ScanMode, "scan-mode", nullptr},
    {ESetting::OsdLanguage, "menu-language", nullptr},
};

std::string Lower(std::string text_I) {
    std::transform(text_I.begin(), text_I.end(), text_I.begin(),
                   [](unsigned char c_I) { return static_cast<char>(std::tolower(c_I)); });
    return text_I;
}

}  // namespace

const char* SettingName(ESetting setting_I) {
    for (const SName& name : kNames) {
        if (name.setting == setting_I) {
            return name.name;
        }
    }
    return "?";
}

std::optional<ESetting> SettingByName(const std::string& name_I) {
    const std::string name = Lower(name_I);
    for (const SName& entry : kNames) {
        if (name == entry.name || (entry.alias != nullptr && name == entry.alias)) {
            return entry.setting;
        }
    }
    return std::nullopt;
}

std::vector<ESetting> AllSettings() {
    std::vector<ESetting> settings;
    for (const SName& name : kNames) {
        settings.push_back(name.setting);
    }
    return settings;
}

std::string ValueName(uint8_t code_I, int32_t value_I) {
    const SVcpCodeRow* row = FindVcpCodeRow(code_I);
    if (row == nullptr || row->values == EValueNames::None) {
        return {};
    }
    for (const SValueNameRow& value : ValueNameRows(row->values)) {
        if (value.value == value_I && value.text != nullptr) {
            return value.text;
        }
    }
    return {};
}

std::optional<int32_t> ParseValue(uint8_t code_I, const std::string& text_I) {
    if (text_I.empty()) {
        return std::nullopt;
    }
    const bool hex = text_I.size() > 2 && text_I[0] == '0' && (text_I[1] == 'x' || text_I[1] == 'X');
    const char* first = text_I.data() + (hex ? 2 : 0);
    const char* last = text_I.data() + text_I.size();
    int32_t value = 0;
    const auto [end, error] = std::from_chars(first, last, value, hex ? 16 : 10);
    if (error == std::errc() && end == last) {
        return value;
    }
    const SVcpCodeRow* row = FindVcpCodeRow(code_I);
    if (row != nullptr && row->values != EValueNames::None) {
        for (const SValueNameRow& named : ValueNameRows(row->values)) {
            if (named.text != nullptr && Lower(named.text) == Lower(text_I)) {
                return named.value;
            }
        }
    }
    return std::nullopt;
}

std::optional<uint8_t> ParseVcpCode(const std::string& text_I) {
    std::string digits = text_I;
    if (digits.size() > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X')) {
        digits = digits.substr(2);
    }
    if (digits.empty() || digits.size() > 2 ||
        !std::all_of(digits.begin(), digits.end(), [](unsigned char c_I) { return std::isxdigit(c_I) != 0; })) {
        return std::nullopt;
    }
    return static_cast<uint8_t>(std::stoul(digits, nullptr, 16));
}
