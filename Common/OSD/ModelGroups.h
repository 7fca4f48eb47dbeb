#pragma once
// Per-model behaviour in one place. Each model group is a set of product families (named by
// the USB product id of the tablet inside the display); a display belongs to a group when its
// EDID product code is in one of the group's families. Everything that behaves differently
// by model asks this module rather than testing product codes itself.

#include <cstdint>
#include <vector>

enum class EModelGroup {
    // VCP 0xE4 carries colour-temperature presets (an enumeration like 0x14) instead of the
    // red colour offset.
    ColorOffsetRedIsColorPreset,
    // Gamma (0x72) is a continuous fine scale, and a capabilities string without mccs_ver is
    // accepted as MCCS 2.2.
    ContinuousGammaDefaultMccs,
    // Colour temperature (0x14) offers exactly 5000 K, 6500 K, 9300 K and 5700 K, and a
    // restored option needs a second before it reads back.
    FixedColorPresets,
    // Display Presets (0xF0) offer the extended set 00 05 06 07 08 09 0A 0B 0C 0D.
    ExtendedDisplayPresets,
    // Fan Speed (0xF3) is dropped although the firmware lists it.
    NoFan,
    // Battery Mode (0xF4) is listed as "F4(02 03)" although the firmware also reports 0.
    BatteryModeMissingZero,
    // Discovery: any HID control interface may serve these models when no interface reports
    // the display's serial number (their USB serial is the tablet's, not the panel's).
    HidPairedByModel,
    // Discovery, pairing without a serial number: the transport each model is built with.
    LegacySerialPort,
    LegacyFtdiBridge,
    LegacyTiBridge,
    // The program sets the on-screen-menu language to the interface language.
    OsdLanguageSetByHost,
    // The built-in screens of the maker's pen computer, whose colour range depends on whether
    // they run inside the maker's own computer.
    PenComputerScreen,
    // Families the settings delegate and the colour model treat alike.
    GroupA,
    GroupB,
    GroupC,
    GroupD,
};

// True when the display with this EDID product code belongs to the group.
bool IsInModelGroup(EModelGroup group_I, uint16_t edidProductCode_I);

// The USB product ids of the families that make up the group.
const std::vector<uint16_t>& ModelGroupProductIds(EModelGroup group_I);

const char* ModelGroupName(EModelGroup group_I);

// True when the product code is in the family of any of the given tablets.
bool IsInAnyFamily(std::initializer_list<uint16_t> productIds_I, uint16_t edidProductCode_I);
bool IsInAnyFamily(const std::vector<uint16_t>& productIds_I, uint16_t edidProductCode_I);
