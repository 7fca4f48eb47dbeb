#include "SettingNames.h"

#include <algorithm>
#include <cctype>
#include <charconv>

#include "SettingTable.h"
#include "StringIds.h"

namespace {

struct SChoiceName {
    uint32_t stringId;
    const char* name;
};

// Names for the command line: short, lower case, no blanks, so that scripts need no quoting.
constexpr SChoiceName kChoiceNames[] = {
    {StringId::kColorTemperatureMode, "temperature"},
    {StringId::kColorSpaceMode, "space"},
    {StringId::kCustomColorMode, "custom"},
    {StringId::k5000K, "5000k"},
    {StringId::k5700K, "5700k"},
    {StringId::k6500K, "6500k"},
    {StringId::k7500K, "7500k"},
    {StringId::k9300K, "9300k"},
    {StringId::k10000K, "10000k"},
    {StringId::kSpaceNative, "native"},
    {StringId::kSpaceAdobeRGB, "adobe-rgb"},
    {StringId::kSpaceSRGB, "srgb"},
    {StringId::kSpaceRec709, "rec-709"},
    {StringId::kSpaceDCIP3, "dci-p3"},
    {StringId::kSpaceRec2020, "rec-2020"},
    {StringId::kSpaceEBU, "ebu"},
    {StringId::kSpaceDCI, "dci"},
    {StringId::kSpaceColorManager1, "colour-manager-1"},
    {StringId::kSpaceColorManager2, "colour-manager-2"},
    {StringId::kGamma1_9, "1.9"},
    {StringId::kGamma2_2, "2.2"},
    {StringId::kGamma2_4, "2.4"},
    {StringId::kAspectFullScreen, "full-screen"},
    {StringId::kAspectKeepRatio, "keep-ratio"},
    {StringId::kAspectOneToOne, "1:1"},
    {StringId::kOn, "on"},
    {StringId::kOff, "off"},
    {StringId::kFanAuto, "auto"},
    {StringId::kFanLowSpeed, "low-speed"},
    {StringId::kBatteryStandard, "standard"},
    {StringId::kBatterySaver, "saver"},
    {StringId::kLevelLow, "low"},
    {StringId::kLevelMedium, "medium"},
    {StringId::kLevelHigh, "high"},
    {StringId::kUniformityMode2, "mode-2"},
    {StringId::kUniformityMode3, "mode-3"},
};

std::string Lower(std::string text_I) {
    std::transform(text_I.begin(), text_I.end(), text_I.begin(),
                   [](unsigned char c_I) { return static_cast<char>(std::tolower(c_I)); });
    return text_I;
}

}  // namespace

const char* SettingName(ESetting setting_I) {
    return SettingRowOf(setting_I).name;
}

std::optional<ESetting> SettingByName(const std::string& name_I) {
    const std::string name = Lower(name_I);
    for (const SSettingRow& row : SettingRows()) {
        if (name == row.name || (row.alias != nullptr && name == row.alias)) {
            return row.setting;
        }
    }
    return std::nullopt;
}

std::vector<ESetting> AllSettings() {
    std::vector<ESetting> settings;
    for (const SSettingRow& row : SettingRows()) {
        settings.push_back(row.setting);
    }
    return settings;
}

std::string ChoiceName(uint32_t stringId_I) {
    // Fine-scale gamma: 0.5 to 3.9 in tenths, then 4.0.
    if (stringId_I == StringId::kGammaFine4_0) {
        return "4.0";
    }
    if (stringId_I >= StringId::kGammaFine0_5 && stringId_I < StringId::kGammaFine0_5 + 35) {
        const uint32_t tenths = 5 + (stringId_I - StringId::kGammaFine0_5);
        return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10);
    }
    for (const SChoiceName& choice : kChoiceNames) {
        if (choice.stringId == stringId_I) {
            return choice.name;
        }
    }
    return {};
}

std::optional<int32_t> ParseNumber(const std::string& text_I) {
    const bool hex = text_I.size() > 2 && text_I[0] == '0' && (text_I[1] == 'x' || text_I[1] == 'X');
    const char* first = text_I.data() + (hex ? 2 : 0);
    const char* last = text_I.data() + text_I.size();
    int32_t value = 0;
    const auto [end, error] = std::from_chars(first, last, value, hex ? 16 : 10);
    if (text_I.empty() || error != std::errc() || end != last) {
        return std::nullopt;
    }
    return value;
}

bool SameName(const std::string& a_I, const std::string& b_I) {
    return Lower(a_I) == Lower(b_I);
}

std::optional<uint8_t> ParseVcpCode(const std::string& text_I) {
    std::string digits = text_I;
    if (digits.size() > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X')) {
        digits = digits.substr(2);
    }
    if (digits.empty() || digits.size() > 2 ||
        !std::all_of(digits.begin(), digits.end(),
                     [](unsigned char c_I) { return std::isxdigit(c_I) != 0; })) {
        return std::nullopt;
    }
    return static_cast<uint8_t>(std::stoul(digits, nullptr, 16));
}
