#pragma once
// One row per setting the user sees: what kind of control it is, its name on the command line
// and in profiles (and another accepted spelling), the string id of its caption in the
// dialogs, and the display's value for each choice where the two differ. The command-line names, the dialogs' captions and the tests that walk every
// setting read these rows; which VCP code carries a setting on a family is the family's
// (SettingCodes, ProductFamilies).

#include <cstdint>
#include <iterator>
#include <optional>
#include <span>

#include "SettingCodes.h"

enum class ESettingKind {
    Slider,  // a range (brightness, contrast, sharpness)
    Choice,  // a list of labelled values
    OnOff,   // two buttons, Off and On
    Action,  // starts something on the display (LCD conditioning)
    Hidden,  // no control of its own (scan mode, the menu language)
};

// A choice the user makes and the value the display takes for it, where the two differ.
struct SWireValue {
    int32_t choice;
    int32_t wire;
};

struct SSettingRow {
    ESetting setting;
    ESettingKind kind;
    const char* name;    // "colour-temperature"
    const char* alias;   // "color-temperature"; null when there is none
    uint32_t captionId;  // the caption's string id; 0 when no dialog shows one
    // The display's value for each choice; empty: the choice is the display's value.
    std::span<const SWireValue> wireValues;
};

namespace SettingTableData {
using K = ESettingKind;
// Battery mode: standard and saver are 2 and 3 on the display.
inline constexpr SWireValue kBatteryModeWire[] = {{0, 2}, {1, 3}};
inline constexpr SSettingRow kRows[] = {
    {ESetting::Brightness, K::Slider, "brightness", nullptr, 2002, {}},
    {ESetting::Contrast, K::Slider, "contrast", nullptr, 2003, {}},
    {ESetting::ColorSettingMode, K::Choice, "colour-mode", "color-mode", 2004, {}},
    {ESetting::ColorTemperature, K::Choice, "colour-temperature", "color-temperature", 2008, {}},
    {ESetting::ColorSpace, K::Choice, "colour-space", "color-space", 2015, {}},
    {ESetting::Gamma, K::Choice, "gamma", nullptr, 2027, {}},
    {ESetting::AspectRatio, K::Choice, "aspect-ratio", nullptr, 2201, {}},
    {ESetting::PowerLedBrightness, K::Choice, "led-brightness", nullptr, 2220, {}},
    {ESetting::Sharpness, K::Slider, "sharpness", nullptr, 2205, {}},
    {ESetting::UniformityCompensation, K::Choice, "uniformity", nullptr, 2207, {}},
    {ESetting::EnergySmart, K::OnOff, "energy-smart", nullptr, 2208, {}},
    {ESetting::DynamicContrast, K::OnOff, "dynamic-contrast", nullptr, 2206, {}},
    {ESetting::AutoPowerDown, K::OnOff, "auto-power-down", nullptr, 2216, {}},
    {ESetting::FanSpeed, K::Choice, "fan", nullptr, 2217, {}},
    {ESetting::LcdConditioning, K::Action, "lcd-conditioning", nullptr, 2209, {}},
    {ESetting::BatteryMode, K::Choice, "battery-mode", nullptr, 2221, kBatteryModeWire},
    {ESetting::ScanMode, K::Hidden, "scan-mode", nullptr, 0, {}},
    {ESetting::OsdLanguage, K::Hidden, "menu-language", nullptr, 0, {}},
};
static_assert(std::size(kRows) == kSettingCount, "one row per setting");
}  // namespace SettingTableData

// Every setting once, in the dialogs' order.
constexpr std::span<const SSettingRow> SettingRows() {
    return SettingTableData::kRows;
}
// The row of a setting (every setting has one: the table's size is checked against the list).
constexpr const SSettingRow& SettingRowOf(ESetting setting_I) {
    for (const SSettingRow& row : SettingTableData::kRows) {
        if (row.setting == setting_I) {
            return row;
        }
    }
    return SettingTableData::kRows[0];
}
// The display's value for a choice, and the choice a display's value stands for; none when
// the setting has no such choice or value.
constexpr std::optional<int32_t> WireValueOf(ESetting setting_I, int32_t choice_I) {
    const SSettingRow& row = SettingRowOf(setting_I);
    if (row.wireValues.empty()) {
        return choice_I;
    }
    for (const SWireValue& value : row.wireValues) {
        if (value.choice == choice_I) {
            return value.wire;
        }
    }
    return std::nullopt;
}
constexpr std::optional<int32_t> ChoiceOfWireValue(ESetting setting_I, int32_t wire_I) {
    const SSettingRow& row = SettingRowOf(setting_I);
    if (row.wireValues.empty()) {
        return wire_I;
    }
    for (const SWireValue& value : row.wireValues) {
        if (value.wire == wire_I) {
            return value.choice;
        }
    }
    return std::nullopt;
}
// The string id of a setting's caption in the dialogs.
constexpr uint32_t SettingCaptionId(ESetting setting_I) {
    return SettingRowOf(setting_I).captionId;
}
