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

// The labels of aspect ratio's choices, which depend on the code the family uses.
std::vector<SEntry> AspectRatioLabels(uint8_t vcpCode_I);

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
