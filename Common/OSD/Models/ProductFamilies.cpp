#include "ProductFamilies.h"

#include "CEdidBuilder.h"

namespace {

using B = EBrightnessControl;
using A = EAspectControl;
using G = EGammaScale;
using T = ETooDarkTest;
using R = ELegacyRoute;

// The series: what their families share, every trait named (a trait left out does not
// compile). Each row below starts from its series.

// The first serial-port models predate the maker's colour codes and keep their
// colour-temperature presets at 0xE4.
SProductFamily EarlySerial(uint16_t productId_I, const char* helpPage_I) {
    return {
        .productId = productId_I,
        .series = "early serial",
        .helpPage = helpPage_I,
        .colorPresets = EColorPresetCode::ColorOffsetRed,
        .fixedColorPresets = false,
        .extendedDisplayPresets = false,
        .noFan = false,
        .batteryModeMissingZero = false,
        .brightness = B::Luminance,
        .colorModeByDisplayPresets = false,
        .aspect = A::None,
        .gamma = G::None,
        .tooDark = T::AllChannelsBelow20,
        .fixedPowerLed = false,
        .restartsAfterFactoryReset = false,
        .dynamicContrastExcludesUniformity = false,
        .customColorExcludesUniformity = false,
        .osdLanguageSetByHost = false,
        .hidPairedByModel = false,
        .legacyRoute = R::SerialPort,
        .penComputerScreen = false,
    };
}

// These panels list more colour presets than they can show and settle slowly after a preset
// change; earlier firmware starts its menu in English whatever the computer's language.
SProductFamily Hd(uint16_t productId_I, const char* helpPage_I) {
    return {
        .productId = productId_I,
        .series = "HD",
        .helpPage = helpPage_I,
        .colorPresets = EColorPresetCode::SelectColorPreset,
        .fixedColorPresets = true,
        .extendedDisplayPresets = false,
        .noFan = false,
        .batteryModeMissingZero = false,
        .brightness = B::Luminance,
        .colorModeByDisplayPresets = false,
        .aspect = A::DisplayScaling,
        .gamma = G::TwoChoices,
        .tooDark = T::BlackFrom60,
        .fixedPowerLed = false,
        .restartsAfterFactoryReset = true,
        .dynamicContrastExcludesUniformity = false,
        .customColorExcludesUniformity = false,
        .osdLanguageSetByHost = true,
        .hidPairedByModel = false,
        .legacyRoute = R::FtdiBridge,
        .penComputerScreen = false,
    };
}

// The pro scaler exposes gamma as a fine scale and was released before it reported mccs_ver;
// its uniformity tables are calibrated for the presets, not for custom gains.
SProductFamily Pro(uint16_t productId_I, const char* helpPage_I, ETooDarkTest tooDark_I,
                   bool dynamicContrastExcludesUniformity_I) {
    return {
        .productId = productId_I,
        .series = "pro",
        .helpPage = helpPage_I,
        .colorPresets = EColorPresetCode::SelectColorPreset,
        .fixedColorPresets = false,
        .extendedDisplayPresets = false,
        .noFan = false,
        .batteryModeMissingZero = false,
        .brightness = B::Luminance,
        .colorModeByDisplayPresets = false,
        .aspect = A::MakerCode,
        .gamma = G::FineScale,
        .tooDark = tooDark_I,
        .fixedPowerLed = false,
        .restartsAfterFactoryReset = true,
        .dynamicContrastExcludesUniformity = dynamicContrastExcludesUniformity_I,
        .customColorExcludesUniformity = true,
        .osdLanguageSetByHost = true,
        .hidPairedByModel = false,
        .legacyRoute = R::FtdiBridge,
        .penComputerScreen = false,
    };
}

// The pen computers' built-in screens choose their colour mode through 0xF0 and under-report
// its values.
SProductFamily PenComputer(uint16_t productId_I, const char* helpPage_I, ELegacyRoute route_I) {
    return {
        .productId = productId_I,
        .series = "pen computer",
        .helpPage = helpPage_I,
        .colorPresets = EColorPresetCode::SelectColorPreset,
        .fixedColorPresets = false,
        .extendedDisplayPresets = true,
        .noFan = false,
        .batteryModeMissingZero = false,
        .brightness = B::Luminance,
        .colorModeByDisplayPresets = true,
        .aspect = A::None,
        .gamma = G::ThreeChoices,
        .tooDark = T::BlackFrom75,
        .fixedPowerLed = false,
        .restartsAfterFactoryReset = true,
        .dynamicContrastExcludesUniformity = false,
        .customColorExcludesUniformity = false,
        .osdLanguageSetByHost = false,
        .hidPairedByModel = false,
        .legacyRoute = route_I,
        .penComputerScreen = true,
    };
}

// Passively cooled panels whose firmware still lists Fan Speed; they dim the backlight itself.
SProductFamily Touch(uint16_t productId_I, const char* helpPage_I, ELegacyRoute route_I) {
    return {
        .productId = productId_I,
        .series = "touch",
        .helpPage = helpPage_I,
        .colorPresets = EColorPresetCode::SelectColorPreset,
        .fixedColorPresets = false,
        .extendedDisplayPresets = false,
        .noFan = true,
        .batteryModeMissingZero = false,
        .brightness = B::BacklightControl,
        .colorModeByDisplayPresets = false,
        .aspect = A::DisplayScaling,
        .gamma = G::None,
        .tooDark = T::BlackFrom60,
        .fixedPowerLed = false,
        .restartsAfterFactoryReset = false,
        .dynamicContrastExcludesUniformity = false,
        .customColorExcludesUniformity = false,
        .osdLanguageSetByHost = false,
        .hidPairedByModel = false,
        .legacyRoute = route_I,
        .penComputerScreen = false,
    };
}

// The battery-powered models report Battery Mode 0 but leave it out of their list. Their USB
// serial number is the tablet's, not the panel's, so any control interface may serve them.
SProductFamily Battery(uint16_t productId_I, const char* helpPage_I) {
    return {
        .productId = productId_I,
        .series = "battery",
        .helpPage = helpPage_I,
        .colorPresets = EColorPresetCode::SelectColorPreset,
        .fixedColorPresets = false,
        .extendedDisplayPresets = false,
        .noFan = false,
        .batteryModeMissingZero = true,
        .brightness = B::WhiteBacklightLevel,
        .colorModeByDisplayPresets = false,
        .aspect = A::ScanMode,
        .gamma = G::None,
        .tooDark = T::BlackFrom60,
        .fixedPowerLed = false,
        .restartsAfterFactoryReset = false,
        .dynamicContrastExcludesUniformity = false,
        .customColorExcludesUniformity = false,
        .osdLanguageSetByHost = false,
        .hidPairedByModel = true,
        .legacyRoute = R::FtdiBridge,
        .penComputerScreen = false,
    };
}

// The studio models fit the picture through their scan mode, like the battery models.
SProductFamily Studio(uint16_t productId_I, const char* helpPage_I, bool fixedPowerLed_I) {
    return {
        .productId = productId_I,
        .series = "studio",
        .helpPage = helpPage_I,
        .colorPresets = EColorPresetCode::SelectColorPreset,
        .fixedColorPresets = false,
        .extendedDisplayPresets = false,
        .noFan = false,
        .batteryModeMissingZero = false,
        .brightness = B::WhiteBacklightLevel,
        .colorModeByDisplayPresets = false,
        .aspect = A::ScanMode,
        .gamma = G::None,
        .tooDark = T::BlackFrom60,
        .fixedPowerLed = fixedPowerLed_I,
        .restartsAfterFactoryReset = false,
        .dynamicContrastExcludesUniformity = false,
        .customColorExcludesUniformity = false,
        .osdLanguageSetByHost = false,
        .hidPairedByModel = true,
        .legacyRoute = R::FtdiBridge,
        .penComputerScreen = false,
    };
}

}  // namespace

const std::vector<SProductFamily>& ProductFamilies() {
    static const std::vector<SProductFamily> families = {
        EarlySerial(0x0304, "canvas-12"),
        EarlySerial(0x0333, "canvas-21"),
        EarlySerial(0x0325, "canvas-24"),
        Hd(0x032B, "canvas-13-hd"),
        Hd(0x032A, "canvas-16-hd"),
        Pro(0x037C, "canvas-22-pro", T::AllChannelsBelow20, true),
        Pro(0x0351, "canvas-pro", T::AllChannelsBelow20, true),
        Pro(0x0352, "canvas-27-pro", T::BlackFrom50, false),
        Pro(0x03B2, "canvas-32-pro", T::BlackFrom50, false),
        Pro(0x034F, "canvas-pro", T::BlackFrom50, false),
        Pro(0x0350, "canvas-pro", T::BlackFrom50, false),
        PenComputer(0x034D, "slate-13", R::TiBridge),
        PenComputer(0x034E, "slate-16", R::TiBridge),
        PenComputer(0x0398, "slate-13-pro", R::FtdiBridge),
        PenComputer(0x0399, "slate-16-pro", R::FtdiBridge),
        Touch(0x0390, "canvas-24-touch", R::FtdiBridge),
        Touch(0x0391, "canvas-32-touch", R::None),
        Touch(0x0396, "canvas-27-touch", R::FtdiBridge),
        Battery(0x03AE, "canvas-16-go"),
        Battery(0x03B0, "canvas-13-go"),
        // The first studio model's LED has one brightness.
        Studio(0x03A6, "studio-24", true),
        Studio(0x03BD, "studio-32", false),
    };
    return families;
}

const SProductFamily* ProductFamilyOf(uint16_t edidProductCode_I) {
    const CEdidBuilder* builder = CEdidBuilder::Instance();
    if (builder == nullptr) {
        return nullptr;
    }
    for (const SProductFamily& family : ProductFamilies()) {
        if (builder->IsInProductFamily(family.productId, edidProductCode_I)) {
            return &family;
        }
    }
    return nullptr;
}
