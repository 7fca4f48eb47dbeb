#include "ProductFamilies.h"

#include "CEdidBuilder.h"

namespace {

using B = EBrightnessControl;
using A = EAspectControl;
using G = EGammaScale;
using T = ETooDarkTest;
using R = ELegacyRoute;

// A family without quirks: every trait named (a trait added to the record and left out here
// does not compile). Each series below changes only what its families do differently.
SProductFamily Plain(uint16_t productId_I, const char* series_I, const char* helpPage_I) {
    return {
        .productId = productId_I,
        .series = series_I,
        .helpPage = helpPage_I,
        .colorPresets = EColorPresetCode::SelectColorPreset,
        .fixedColorPresets = false,
        .extendedDisplayPresets = false,
        .noFan = false,
        .batteryModeMissingZero = false,
        .brightness = B::Luminance,
        .colorModeByDisplayPresets = false,
        .aspect = A::None,
        .gamma = G::None,
        .tooDark = T::None,
        .fixedPowerLed = false,
        .restartsAfterFactoryReset = false,
        .dynamicContrastExcludesUniformity = false,
        .customColorExcludesUniformity = false,
        .osdLanguageSetByHost = false,
        .hidPairedByModel = false,
        .legacyRoute = R::None,
        .penComputerScreen = false,
        .waits = SDisplayWaits{},
    };
}

// The first serial-port models predate the maker's colour codes and keep their
// colour-temperature presets at 0xE4.
SProductFamily EarlySerial(uint16_t productId_I, const char* helpPage_I) {
    SProductFamily family = Plain(productId_I, "early serial", helpPage_I);
    family.colorPresets = EColorPresetCode::ColorOffsetRed;
    family.tooDark = T::AllChannelsBelow20;
    family.legacyRoute = R::SerialPort;
    return family;
}

// These panels list more colour presets than they can show and need a second before a restored
// preset reads back; earlier firmware starts its menu in English whatever the computer's
// language.
SProductFamily Hd(uint16_t productId_I, const char* helpPage_I) {
    SProductFamily family = Plain(productId_I, "HD", helpPage_I);
    family.fixedColorPresets = true;
    family.waits.restoredPresetSettles = std::chrono::seconds(1);
    family.aspect = A::DisplayScaling;
    family.gamma = G::TwoChoices;
    family.tooDark = T::BlackFrom60;
    family.restartsAfterFactoryReset = true;
    family.osdLanguageSetByHost = true;
    family.legacyRoute = R::FtdiBridge;
    return family;
}

// The pro scaler exposes gamma as a fine scale and was released before it reported mccs_ver;
// its uniformity tables are calibrated for the presets, not for custom gains.
SProductFamily Pro(uint16_t productId_I, const char* helpPage_I, ETooDarkTest tooDark_I,
                   bool dynamicContrastExcludesUniformity_I) {
    SProductFamily family = Plain(productId_I, "pro", helpPage_I);
    family.aspect = A::MakerCode;
    family.gamma = G::FineScale;
    family.tooDark = tooDark_I;
    family.restartsAfterFactoryReset = true;
    family.dynamicContrastExcludesUniformity = dynamicContrastExcludesUniformity_I;
    family.customColorExcludesUniformity = true;
    family.osdLanguageSetByHost = true;
    family.legacyRoute = R::FtdiBridge;
    return family;
}

// The pen computers' built-in screens choose their colour mode through 0xF0 and under-report
// its values.
SProductFamily PenComputer(uint16_t productId_I, const char* helpPage_I, ELegacyRoute route_I) {
    SProductFamily family = Plain(productId_I, "pen computer", helpPage_I);
    family.extendedDisplayPresets = true;
    family.colorModeByDisplayPresets = true;
    family.gamma = G::ThreeChoices;
    family.tooDark = T::BlackFrom75;
    family.restartsAfterFactoryReset = true;
    family.legacyRoute = route_I;
    family.penComputerScreen = true;
    return family;
}

// Passively cooled panels whose firmware still lists Fan Speed; they dim the backlight itself.
SProductFamily Touch(uint16_t productId_I, const char* helpPage_I, ELegacyRoute route_I) {
    SProductFamily family = Plain(productId_I, "touch", helpPage_I);
    family.noFan = true;
    family.brightness = B::BacklightControl;
    family.aspect = A::DisplayScaling;
    family.tooDark = T::BlackFrom60;
    family.legacyRoute = route_I;
    return family;
}

// The studio and battery models fit the picture through their scan mode; their USB serial
// number is the tablet's, not the panel's, so any control interface may serve them.
SProductFamily Studio(uint16_t productId_I, const char* helpPage_I, bool fixedPowerLed_I) {
    SProductFamily family = Plain(productId_I, "studio", helpPage_I);
    family.brightness = B::WhiteBacklightLevel;
    family.aspect = A::ScanMode;
    family.tooDark = T::BlackFrom60;
    family.fixedPowerLed = fixedPowerLed_I;
    family.hidPairedByModel = true;
    family.legacyRoute = R::FtdiBridge;
    return family;
}

// The battery-powered models are studio models that report Battery Mode 0 but leave it out
// of their list.
SProductFamily Battery(uint16_t productId_I, const char* helpPage_I) {
    SProductFamily family = Studio(productId_I, helpPage_I, false);
    family.series = "battery";
    family.batteryModeMissingZero = true;
    return family;
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

const SProductFamily& UnknownFamily() {
    static const SProductFamily unknown = Plain(0, "unknown", "index");
    return unknown;
}

const SProductFamily& FamilyRowOf(uint16_t edidProductCode_I) {
    const SProductFamily* family = ProductFamilyOf(edidProductCode_I);
    return family != nullptr ? *family : UnknownFamily();
}
