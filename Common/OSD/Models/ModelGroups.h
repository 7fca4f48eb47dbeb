#pragma once
// Per-model behaviour asked as questions: each model group is named by what its members do
// differently, and a display belongs to it when its product family's row (ProductFamilies)
// says so. Displays read their traits, made once from the family rows; discovery asks the
// groups before a display exists.

#include <cstdint>
#include <initializer_list>
#include <vector>

enum class EModelGroup {
    // ---- capabilities and options ----
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

    // ---- settings ----
    // Brightness is the backlight control (0x13) rather than the luminance.
    BrightnessByBacklightControl,
    // Brightness is the white backlight level (0x6B).
    BrightnessByWhiteBacklightLevel,
    // The colour setting mode is chosen with display presets (0xF0 = 7, 8, 9).
    ColorModeByDisplayPresets,
    // Aspect ratio by the maker's aspect code (0xE2).
    AspectRatioByMakerCode,
    // Aspect ratio by the standard display scaling (0x86).
    AspectRatioByDisplayScaling,
    // A scan mode (0xDA) exists, and it is what fits the picture (aspect ratio).
    ScanModeFitsPicture,
    // Gamma offers 2.2 and 2.4 as 0x72 = 1, 2.
    GammaTwoChoices,
    // Gamma offers 1.9, 2.2 and 2.4 as 0x72 = 1, 2, 3.
    GammaThreeChoices,
    // The power LED cannot be dimmed.
    FixedPowerLed,
    // The scaler restarts after a factory reset and answers nothing for a while.
    RestartsAfterFactoryReset,
    // Dynamic contrast cannot run together with uniformity compensation.
    DynamicContrastExcludesUniformity,
    // Custom colour switches uniformity compensation off: its tables are calibrated for the
    // presets, not for custom gains.
    CustomColorExcludesUniformity,
    // The too-dark test of the custom colour: every channel below 20, whatever the adjustment.
    TooDarkWhenAllChannelsBelow20,
    // The too-dark test of the gain: black at or above 50 %, 60 % or 75 %.
    TooDarkWhenBlackFrom50,
    TooDarkWhenBlackFrom60,
    TooDarkWhenBlackFrom75,

    // ---- discovery ----
    // Any HID control interface may serve these models when no interface reports the
    // display's serial number (their USB serial is the tablet's, not the panel's).
    HidPairedByModel,
    // Pairing without a serial number: the transport each model is built with.
    LegacySerialPort,
    LegacyFtdiBridge,
    LegacyTiBridge,
    // The program sets the on-screen-menu language to the interface language.
    OsdLanguageSetByHost,
    // The built-in screens of the maker's pen computer, whose colour range depends on whether
    // they run inside the maker's own computer.
    PenComputerScreen,
};

// True when the display with this EDID product code belongs to the group.
bool IsInModelGroup(EModelGroup group_I, uint16_t edidProductCode_I);

// The USB product ids of the families that make up the group.
const std::vector<uint16_t>& ModelGroupProductIds(EModelGroup group_I);

const char* ModelGroupName(EModelGroup group_I);

// True when the product code is in the family of any of the given tablets.
bool IsInAnyFamily(std::initializer_list<uint16_t> productIds_I, uint16_t edidProductCode_I);
bool IsInAnyFamily(const std::vector<uint16_t>& productIds_I, uint16_t edidProductCode_I);
