#pragma once
// One row per product family: everything a family does differently, as named traits. A
// family is named by the USB product id of the pen tablet built into its displays; a display
// belongs to it when its EDID product code is in the tablet's family (CEdidBuilder). The
// setting codes, the display traits, the waits, discovery's pairing and the help pages are all
// read from these rows: a new family with known quirks is one row (plus its EDID and name
// entries).

#include <cstdint>
#include <vector>

#include "DisplayWaits.h"

// Which control dims the backlight (the brightness slider).
enum class EBrightnessControl { Luminance, BacklightControl, WhiteBacklightLevel };
// Where the colour-temperature presets are: the standard 0x14, or 0xE4 on the first models.
enum class EColorPresetCode { SelectColorPreset, ColorOffsetRed };
// How the picture is fitted (aspect ratio): none, the maker's code 0xE2, display scaling 0x86,
// or the scan mode 0xDA.
enum class EAspectControl { None, MakerCode, DisplayScaling, ScanMode };

// How a family sets gamma.
enum class EGammaScale {
    None,
    FineScale,     // 0x72 is continuous: value = gamma x 10
    ThreeChoices,  // 1.9, 2.2, 2.4 as 0x72 = 1, 2, 3
    TwoChoices,    // 2.2, 2.4 as 0x72 = 1, 2
};

// When a custom colour is too dark to use.
enum class ETooDarkTest {
    None,
    AllChannelsBelow20,  // any adjustment: red, green and blue all below 20
    BlackFrom50,         // the gain only: black at or above 0.5
    BlackFrom60,
    BlackFrom75,
};

// The transport a display of the family is built with when it is paired without a serial
// number.
enum class ELegacyRoute { None, SerialPort, FtdiBridge, TiBridge };

struct SProductFamily {
    uint16_t productId;
    const char* series;  // "pro", "studio", ...: the family's series, for the log and tests
    const char* helpPage;

    // Capabilities and options.
    EColorPresetCode colorPresets;
    bool fixedColorPresets;       // 0x14 offers 5000, 6500, 9300 and 5700 K
    bool extendedDisplayPresets;  // 0xF0 offers 00 05 06 07 08 09 0A 0B 0C 0D
    bool noFan;                   // Fan Speed (0xF3) is dropped although the firmware lists it
    bool batteryModeMissingZero;  // Battery Mode is listed as "F4(02 03)" but 0 is reported too

    // Settings.
    EBrightnessControl brightness;
    bool colorModeByDisplayPresets;  // the colour mode is chosen with 0xF0 = 7, 8, 9
    EAspectControl aspect;
    EGammaScale gamma;  // a fine scale also accepts capabilities without mccs_ver as 2.2
    ETooDarkTest tooDark;
    bool fixedPowerLed;                      // the power LED cannot be dimmed
    bool restartsAfterFactoryReset;          // the scaler restarts and answers nothing a while
    bool dynamicContrastExcludesUniformity;  // the two cannot run together
    bool customColorExcludesUniformity;      // custom colour switches uniformity off
    bool osdLanguageSetByHost;               // the menu starts in English whatever the language

    // Discovery.
    bool hidPairedByModel;  // any HID control interface may serve it when none reports its serial
    ELegacyRoute legacyRoute;
    bool penComputerScreen;  // the built-in screen of the maker's pen computer

    // How long its firmware is given after each kind of request.
    SDisplayWaits waits;
};

// Every family, one row each.
const std::vector<SProductFamily>& ProductFamilies();
// The family of the display with this EDID product code; null for a display of no known family.
const SProductFamily* ProductFamilyOf(uint16_t edidProductCode_I);
// The row of a display of no known family: the standard codes and waits, no quirks.
const SProductFamily& UnknownFamily();
// The family's row, or the unknown family's.
const SProductFamily& FamilyRowOf(uint16_t edidProductCode_I);
