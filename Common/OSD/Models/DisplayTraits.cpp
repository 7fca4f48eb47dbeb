#include "DisplayTraits.h"

#include "ModelGroups.h"

namespace {

EGammaScale GammaScaleOf(uint16_t edid_I) {
    if (IsInModelGroup(EModelGroup::GammaTwoChoices, edid_I)) {
        return EGammaScale::TwoChoices;
    }
    if (IsInModelGroup(EModelGroup::ContinuousGammaDefaultMccs, edid_I)) {
        return EGammaScale::FineScale;
    }
    if (IsInModelGroup(EModelGroup::GammaThreeChoices, edid_I)) {
        return EGammaScale::ThreeChoices;
    }
    return EGammaScale::None;
}

ETooDarkTest TooDarkTestOf(uint16_t edid_I) {
    if (IsInModelGroup(EModelGroup::TooDarkWhenAllChannelsBelow20, edid_I)) {
        return ETooDarkTest::AllChannelsBelow20;
    }
    if (IsInModelGroup(EModelGroup::TooDarkWhenBlackFrom50, edid_I)) {
        return ETooDarkTest::BlackFrom50;
    }
    if (IsInModelGroup(EModelGroup::TooDarkWhenBlackFrom60, edid_I)) {
        return ETooDarkTest::BlackFrom60;
    }
    if (IsInModelGroup(EModelGroup::TooDarkWhenBlackFrom75, edid_I)) {
        return ETooDarkTest::BlackFrom75;
    }
    return ETooDarkTest::None;
}

}  // namespace

SDisplayTraits DisplayTraitsFor(uint16_t edid_I) {
    auto in = [edid_I](EModelGroup group_I) { return IsInModelGroup(group_I, edid_I); };
    SDisplayTraits traits;
    traits.edidProductCode = edid_I;

    traits.codeVariants.fineScaleGamma = in(EModelGroup::ContinuousGammaDefaultMccs);
    traits.codeVariants.colorOffsetRedIsColorPreset = in(EModelGroup::ColorOffsetRedIsColorPreset);
    traits.acceptsMissingMccsVersion = in(EModelGroup::ContinuousGammaDefaultMccs);
    traits.fixedColorPresets = in(EModelGroup::FixedColorPresets);
    traits.extendedDisplayPresets = in(EModelGroup::ExtendedDisplayPresets);
    traits.noFan = in(EModelGroup::NoFan);
    traits.batteryModeMissingZero = in(EModelGroup::BatteryModeMissingZero);

    for (size_t setting = 0; setting < kSettingCount; ++setting) {
        traits.settingCodes[setting] = SettingCode(static_cast<ESetting>(setting), edid_I);
    }
    traits.gammaScale = GammaScaleOf(edid_I);
    traits.tooDarkTest = TooDarkTestOf(edid_I);
    traits.powerLedDimmable = !in(EModelGroup::FixedPowerLed);
    traits.restartsAfterFactoryReset = in(EModelGroup::RestartsAfterFactoryReset);
    traits.dynamicContrastExcludesUniformity = in(EModelGroup::DynamicContrastExcludesUniformity);
    traits.customColorExcludesUniformity = in(EModelGroup::CustomColorExcludesUniformity);
    traits.osdLanguageSetByHost = in(EModelGroup::OsdLanguageSetByHost);
    traits.helpPage = HelpPageName(edid_I);
    return traits;
}
