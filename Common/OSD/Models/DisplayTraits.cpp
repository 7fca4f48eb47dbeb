#include "DisplayTraits.h"

SDisplayTraits DisplayTraitsFor(uint16_t edid_I) {
    SDisplayTraits traits;
    static_cast<SProductFamily&>(traits) = FamilyRowOf(edid_I);
    traits.edidProductCode = edid_I;
    traits.codeVariants.fineScaleGamma = traits.gamma == EGammaScale::FineScale;
    traits.codeVariants.colorOffsetRedIsColorPreset = traits.colorPresets == EColorPresetCode::ColorOffsetRed;
    for (size_t setting = 0; setting < kSettingCount; ++setting) {
        traits.settingCodes[setting] = SettingCode(static_cast<ESetting>(setting), traits);
    }
    return traits;
}
