#pragma once
// One row per setting the user sees: what kind of control it is, its name on the command line
// and in profiles (and another accepted spelling), the string id of its caption in the
// dialogs, the VCP code that carries it on families without a rule of their own, and the
// display's value for each choice where the two differ. The command-line names, the dialogs'
// captions and controls, the delegate's generic get and set and the tests that walk every
// setting read these rows; the families that use another code are the family table's
// (SettingCodes, ProductFamilies).

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <span>

#include "StringIds.h"
#include "codes.h"

// Every setting the user sees, in the dialogs' order; each has one row below.
enum class ESetting {
    Brightness,
    Contrast,
    ColorSettingMode,
    ColorTemperature,
    ColorSpace,
    Gamma,
    AspectRatio,
    PowerLedBrightness,
    Sharpness,
    UniformityCompensation,
    EnergySmart,
    DynamicContrast,
    AutoPowerDown,
    FanSpeed,
    LcdConditioning,
    BatteryMode,
    ScanMode,
    OsdLanguage,
};
constexpr size_t kSettingCount = static_cast<size_t>(ESetting::OsdLanguage) + 1;

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

// One choice of a drop-down: the string id of its label and the value behind it.
struct SEntry {
    uint32_t stringId = 0;
    int32_t value = 0;
    friend bool operator==(const SEntry&, const SEntry&) = default;
};

struct SSettingRow {
    ESetting setting;
    ESettingKind kind;
    const char* name;    // "colour-temperature"
    const char* alias;   // "color-temperature"; null when there is none
    uint32_t captionId;  // the caption's string id; 0 when no dialog shows one
    uint8_t code;        // the VCP code on families without a rule of their own; 0: none
    // The display's value for each choice; empty: the choice is the display's value.
    std::span<const SWireValue> wireValues;
    // The labels of its choices in the order the dialogs list them; empty: not a plain choice
    // (a range, or choices with rules of their own).
    std::span<const SEntry> labels;
};

namespace SettingTableData {
using K = ESettingKind;
// Battery mode: standard and saver are 2 and 3 on the display.
inline constexpr SWireValue kBatteryModeWire[] = {{0, 2}, {1, 3}};
// 5700 K comes second although its value (11) is last.
inline constexpr SEntry kColorTemperatureLabels[] = {
    {StringId::k5000K, cpc_5000K}, {StringId::k5700K, cpc_5700K}, {StringId::k6500K, cpc_6500K},
    {StringId::k7500K, cpc_7500K}, {StringId::k9300K, cpc_9300K}, {StringId::k10000K, cpc_10000K},
};
// The combined sRGB/Rec 709 entry is labelled sRGB on displays that do not also offer plain sRGB.
inline constexpr SEntry kColorSpaceLabels[] = {
    {StringId::kSpaceNative, csc_Native},
    {StringId::kSpaceAdobeRGB, csc_AdobeRGB},
    {StringId::kSpaceSRGB, csc_sRGB},
    {StringId::kSpaceSRGB, csc_sRGBRec709},
    {StringId::kSpaceRec709, csc_Rec709},
    {StringId::kSpaceDCIP3, csc_DCI},
    {StringId::kSpaceRec2020, csc_Rec2020},
    {StringId::kSpaceEBU, csc_EBU},
    {StringId::kSpaceColorManager1, csc_XRite1},
    {StringId::kSpaceColorManager2, csc_XRite2},
};
inline constexpr SEntry kPowerLedLabels[] = {{StringId::kOff, lbc_Off},
                                             {StringId::kLevelLow, lbc_Low},
                                             {StringId::kLevelMedium, lbc_Medium},
                                             {StringId::kLevelHigh, lbc_High}};
inline constexpr SEntry kUniformityLabels[] = {{StringId::kOff, ucc_None},
                                               {StringId::kOn, ucc_Table1},
                                               {StringId::kUniformityMode2, ucc_Table2},
                                               {StringId::kUniformityMode3, ucc_Table3}};
inline constexpr SEntry kOffOnLabels[] = {{StringId::kOff, 0}, {StringId::kOn, 1}};
// Fan speed values are EFanSpeed (1 auto, 0 low speed).
inline constexpr SEntry kFanSpeedLabels[] = {{StringId::kFanAuto, 1}, {StringId::kFanLowSpeed, 0}};
// Battery mode choices (0 standard, 1 saver), which the display takes as 2 and 3.
inline constexpr SEntry kBatteryModeLabels[] = {{StringId::kBatteryStandard, 0},
                                                {StringId::kBatterySaver, 1}};
inline constexpr SSettingRow kRows[] = {
    {ESetting::Brightness, K::Slider, "brightness", nullptr, 2002, vcpC_Luminance, {}, {}},
    {ESetting::Contrast, K::Slider, "contrast", nullptr, 2003, vcpC_Contrast, {}, {}},
    {ESetting::ColorSettingMode, K::Choice, "colour-mode", "color-mode", 2004, 0, {}, {}},
    {ESetting::ColorTemperature,
     K::Choice,
     "colour-temperature",
     "color-temperature",
     2008,
     vcpC_SelectColorPreset,
     {},
     kColorTemperatureLabels},
    {ESetting::ColorSpace,
     K::Choice,
     "colour-space",
     "color-space",
     2015,
     vcpC_ColorSpace,
     {},
     kColorSpaceLabels},
    {ESetting::Gamma, K::Choice, "gamma", nullptr, 2027, vcpC_Gamma, {}, {}},
    {ESetting::AspectRatio, K::Choice, "aspect-ratio", nullptr, 2201, 0, {}, {}},
    {ESetting::PowerLedBrightness,
     K::Choice,
     "led-brightness",
     nullptr,
     2220,
     vcpC_LedBrightness,
     {},
     kPowerLedLabels},
    {ESetting::Sharpness, K::Slider, "sharpness", nullptr, 2205, vcpC_Sharpness, {}, {}},
    {ESetting::UniformityCompensation,
     K::Choice,
     "uniformity",
     nullptr,
     2207,
     vcpC_UniformityCompensation,
     {},
     kUniformityLabels},
    {ESetting::EnergySmart, K::OnOff, "energy-smart", nullptr, 2208, vcpC_EnergySmart, {}, kOffOnLabels},
    {ESetting::DynamicContrast,
     K::OnOff,
     "dynamic-contrast",
     nullptr,
     2206,
     vcpC_DynamicContrast,
     {},
     kOffOnLabels},
    {ESetting::AutoPowerDown,
     K::OnOff,
     "auto-power-down",
     nullptr,
     2216,
     vcpC_AutoPowerDown,
     {},
     kOffOnLabels},
    {ESetting::FanSpeed, K::Choice, "fan", nullptr, 2217, vcpC_FanSpeed, {}, kFanSpeedLabels},
    {ESetting::LcdConditioning, K::Action, "lcd-conditioning", nullptr, 2209, vcpC_LCDConditioning, {}, {}},
    {ESetting::BatteryMode, K::Choice, "battery-mode", nullptr, 2221, vcpC_BatteryMode, kBatteryModeWire,
     kBatteryModeLabels},
    {ESetting::ScanMode, K::Hidden, "scan-mode", nullptr, 0, 0, {}, kOffOnLabels},
    {ESetting::OsdLanguage, K::Hidden, "menu-language", nullptr, 0, vcpC_OSDLanguage, {}, {}},
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
