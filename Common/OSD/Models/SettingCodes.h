#pragma once
// Which VCP code carries each setting on each product family (the setting row's code, unless
// the family's row says it carries it on another), and the labels of the values of enumerated
// settings. Display traits are made from it.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "ProductFamilies.h"
#include "SettingTable.h"

// The VCP code of the setting on the display with this EDID product code; 0 when the family
// has no code for it. Displays keep the answer in their traits.
uint8_t SettingCode(ESetting setting_I, uint16_t edidProductCode_I);
uint8_t SettingCode(ESetting setting_I, const SProductFamily& family_I);

// One choice of a combo: the string id of its label and the value behind it.
struct SEntry {
    uint32_t stringId = 0;
    int32_t value = 0;
    friend bool operator==(const SEntry&, const SEntry&) = default;
};

// The labels of the values a setting's VCP code can take, in the order the dialogs list them.
// For aspect ratio the labels depend on the code the family uses.
const std::vector<SEntry>& ColorTemperatureLabels();
const std::vector<SEntry>& ColorSpaceLabels();
std::vector<SEntry> AspectRatioLabels(uint8_t vcpCode_I);
const std::vector<SEntry>& PowerLedLabels();
const std::vector<SEntry>& UniformityLabels();
const std::vector<SEntry>& OffOnLabels();
// Fan speed values are EFanSpeed (1 auto, 0 low speed).
const std::vector<SEntry>& FanSpeedLabels();
// Battery mode choices (0 standard, 1 saver), which the delegate maps to 0xF4 = 2 and 3.
const std::vector<SEntry>& BatteryModeLabels();

// Colour temperature presets in kelvin (0 for a value that is not one).
uint32_t ColorTemperatureKelvin(int32_t presetValue_I);

// Colour setting mode values, as the display presets of the families that switch modes with
// 0xF0 also use them.
enum EColorSettingMode : int32_t {
    eColorModeTemperature = 1,
    eColorModeSpace = 2,
    eColorModeCustom = 3,
};
// The 0xF0 value that selects a mode, and back; 0 / eColorModeTemperature when there is none.
int32_t DisplayPresetForColorMode(int32_t mode_I);
int32_t ColorModeForDisplayPreset(int32_t presetValue_I);
