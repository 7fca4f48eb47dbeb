#pragma once
// What one display does differently from the others, worked out once from its EDID product
// code when the display object is made: the variants of its code table, the corrections its
// capabilities need, the VCP code behind each setting, its gamma scale, its too-dark test and
// the rules of its settings. The display, the settings delegate and the colour model read
// this record instead of asking the model groups on every query.

#include <array>
#include <cstdint>

#include "ProductFamilies.h"
#include "SettingCodes.h"
#include "VcpCodeTable.h"

struct SDisplayTraits {
    uint16_t edidProductCode = 0;

    // Capabilities and options.
    SCodeVariants codeVariants;
    bool acceptsMissingMccsVersion = false;
    bool fixedColorPresets = false;
    bool extendedDisplayPresets = false;
    bool noFan = false;
    bool batteryModeMissingZero = false;

    // Settings.
    std::array<uint8_t, kSettingCount> settingCodes{};
    EGammaScale gammaScale = EGammaScale::None;
    ETooDarkTest tooDarkTest = ETooDarkTest::None;
    bool powerLedDimmable = true;
    bool restartsAfterFactoryReset = false;
    bool dynamicContrastExcludesUniformity = false;
    bool customColorExcludesUniformity = false;
    bool osdLanguageSetByHost = false;
    const char* helpPage = "index";

    // The VCP code of the setting; 0 when the family has none.
    uint8_t SettingCode(ESetting setting_I) const { return settingCodes[static_cast<size_t>(setting_I)]; }
};

SDisplayTraits DisplayTraitsFor(uint16_t edidProductCode_I);
