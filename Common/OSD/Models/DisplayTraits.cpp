#include "DisplayTraits.h"

SDisplayTraits DisplayTraitsFor(uint16_t edid_I) {
    SDisplayTraits traits;
    traits.edidProductCode = edid_I;
    for (size_t setting = 0; setting < kSettingCount; ++setting) {
        traits.settingCodes[setting] = SettingCode(static_cast<ESetting>(setting), edid_I);
    }
    const SProductFamily* family = ProductFamilyOf(edid_I);
    if (family == nullptr) {
        return traits;  // a display of no known family: the standard codes, no quirks
    }
    traits.codeVariants.fineScaleGamma = family->gamma == EGammaScale::FineScale;
    traits.codeVariants.colorOffsetRedIsColorPreset =
        family->colorPresets == EColorPresetCode::ColorOffsetRed;
    // The fine-scale models were released before they reported mccs_ver.
    traits.acceptsMissingMccsVersion = family->gamma == EGammaScale::FineScale;
    traits.fixedColorPresets = family->fixedColorPresets;
    traits.extendedDisplayPresets = family->extendedDisplayPresets;
    traits.noFan = family->noFan;
    traits.batteryModeMissingZero = family->batteryModeMissingZero;

    traits.gammaScale = family->gamma;
    traits.tooDarkTest = family->tooDark;
    traits.powerLedDimmable = !family->fixedPowerLed;
    traits.restartsAfterFactoryReset = family->restartsAfterFactoryReset;
    traits.dynamicContrastExcludesUniformity = family->dynamicContrastExcludesUniformity;
    traits.customColorExcludesUniformity = family->customColorExcludesUniformity;
    traits.osdLanguageSetByHost = family->osdLanguageSetByHost;
    traits.helpPage = family->helpPage;
    return traits;
}
