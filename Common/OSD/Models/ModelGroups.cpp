#include "ModelGroups.h"

#include <array>

#include "CEdidBuilder.h"
#include "ProductFamilies.h"

namespace {

constexpr size_t kGroupCount = static_cast<size_t>(EModelGroup::PenComputerScreen) + 1;

// Whether a family is in a group: each group is a question about the family's row. (A group
// added to the enumeration without its question here does not compile.)
bool FamilyIsIn(const SProductFamily& family_I, EModelGroup group_I) {
    switch (group_I) {
        case EModelGroup::ColorOffsetRedIsColorPreset:
            return family_I.colorPresets == EColorPresetCode::ColorOffsetRed;
        case EModelGroup::ContinuousGammaDefaultMccs: return family_I.gamma == EGammaScale::FineScale;
        case EModelGroup::FixedColorPresets: return family_I.fixedColorPresets;
        case EModelGroup::ExtendedDisplayPresets: return family_I.extendedDisplayPresets;
        case EModelGroup::NoFan: return family_I.noFan;
        case EModelGroup::BatteryModeMissingZero: return family_I.batteryModeMissingZero;
        case EModelGroup::BrightnessByBacklightControl:
            return family_I.brightness == EBrightnessControl::BacklightControl;
        case EModelGroup::BrightnessByWhiteBacklightLevel:
            return family_I.brightness == EBrightnessControl::WhiteBacklightLevel;
        case EModelGroup::ColorModeByDisplayPresets: return family_I.colorModeByDisplayPresets;
        case EModelGroup::AspectRatioByMakerCode: return family_I.aspect == EAspectControl::MakerCode;
        case EModelGroup::AspectRatioByDisplayScaling:
            return family_I.aspect == EAspectControl::DisplayScaling;
        case EModelGroup::ScanModeFitsPicture: return family_I.aspect == EAspectControl::ScanMode;
        case EModelGroup::GammaTwoChoices: return family_I.gamma == EGammaScale::TwoChoices;
        case EModelGroup::GammaThreeChoices: return family_I.gamma == EGammaScale::ThreeChoices;
        case EModelGroup::FixedPowerLed: return family_I.fixedPowerLed;
        case EModelGroup::RestartsAfterFactoryReset: return family_I.restartsAfterFactoryReset;
        case EModelGroup::DynamicContrastExcludesUniformity:
            return family_I.dynamicContrastExcludesUniformity;
        case EModelGroup::CustomColorExcludesUniformity: return family_I.customColorExcludesUniformity;
        case EModelGroup::TooDarkWhenAllChannelsBelow20:
            return family_I.tooDark == ETooDarkTest::AllChannelsBelow20;
        case EModelGroup::TooDarkWhenBlackFrom50: return family_I.tooDark == ETooDarkTest::BlackFrom50;
        case EModelGroup::TooDarkWhenBlackFrom60: return family_I.tooDark == ETooDarkTest::BlackFrom60;
        case EModelGroup::TooDarkWhenBlackFrom75: return family_I.tooDark == ETooDarkTest::BlackFrom75;
        case EModelGroup::HidPairedByModel: return family_I.hidPairedByModel;
        case EModelGroup::LegacySerialPort: return family_I.legacyRoute == ELegacyRoute::SerialPort;
        case EModelGroup::LegacyFtdiBridge: return family_I.legacyRoute == ELegacyRoute::FtdiBridge;
        case EModelGroup::LegacyTiBridge: return family_I.legacyRoute == ELegacyRoute::TiBridge;
        case EModelGroup::OsdLanguageSetByHost: return family_I.osdLanguageSetByHost;
        case EModelGroup::PenComputerScreen: return family_I.penComputerScreen;
    }
    return false;
}

bool IsInFamilies(const std::vector<uint16_t>& productIds_I, uint16_t edidProductCode_I) {
    CEdidBuilder* pEdidBldr = CEdidBuilder::Instance();
    if (pEdidBldr == nullptr) {
        return false;
    }
    for (uint16_t productId : productIds_I) {
        if (pEdidBldr->IsInProductFamily(productId, edidProductCode_I)) {
            return true;
        }
    }
    return false;
}

}  // namespace

bool IsInModelGroup(EModelGroup group_I, uint16_t edidProductCode_I) {
    const SProductFamily* family = ProductFamilyOf(edidProductCode_I);
    return family != nullptr && FamilyIsIn(*family, group_I);
}

const std::vector<uint16_t>& ModelGroupProductIds(EModelGroup group_I) {
    static const std::array<std::vector<uint16_t>, kGroupCount> members = [] {
        std::array<std::vector<uint16_t>, kGroupCount> all;
        for (size_t group = 0; group < kGroupCount; ++group) {
            for (const SProductFamily& family : ProductFamilies()) {
                if (FamilyIsIn(family, static_cast<EModelGroup>(group))) {
                    all[group].push_back(family.productId);
                }
            }
        }
        return all;
    }();
    return members[static_cast<size_t>(group_I)];
}

const char* ModelGroupName(EModelGroup group_I) {
    switch (group_I) {
        case EModelGroup::ColorOffsetRedIsColorPreset: return "ColorOffsetRedIsColorPreset";
        case EModelGroup::ContinuousGammaDefaultMccs: return "ContinuousGammaDefaultMccs";
        case EModelGroup::FixedColorPresets: return "FixedColorPresets";
        case EModelGroup::ExtendedDisplayPresets: return "ExtendedDisplayPresets";
        case EModelGroup::NoFan: return "NoFan";
        case EModelGroup::BatteryModeMissingZero: return "BatteryModeMissingZero";
        case EModelGroup::BrightnessByBacklightControl: return "BrightnessByBacklightControl";
        case EModelGroup::BrightnessByWhiteBacklightLevel: return "BrightnessByWhiteBacklightLevel";
        case EModelGroup::ColorModeByDisplayPresets: return "ColorModeByDisplayPresets";
        case EModelGroup::AspectRatioByMakerCode: return "AspectRatioByMakerCode";
        case EModelGroup::AspectRatioByDisplayScaling: return "AspectRatioByDisplayScaling";
        case EModelGroup::ScanModeFitsPicture: return "ScanModeFitsPicture";
        case EModelGroup::GammaTwoChoices: return "GammaTwoChoices";
        case EModelGroup::GammaThreeChoices: return "GammaThreeChoices";
        case EModelGroup::FixedPowerLed: return "FixedPowerLed";
        case EModelGroup::RestartsAfterFactoryReset: return "RestartsAfterFactoryReset";
        case EModelGroup::DynamicContrastExcludesUniformity: return "DynamicContrastExcludesUniformity";
        case EModelGroup::CustomColorExcludesUniformity: return "CustomColorExcludesUniformity";
        case EModelGroup::TooDarkWhenAllChannelsBelow20: return "TooDarkWhenAllChannelsBelow20";
        case EModelGroup::TooDarkWhenBlackFrom50: return "TooDarkWhenBlackFrom50";
        case EModelGroup::TooDarkWhenBlackFrom60: return "TooDarkWhenBlackFrom60";
        case EModelGroup::TooDarkWhenBlackFrom75: return "TooDarkWhenBlackFrom75";
        case EModelGroup::HidPairedByModel: return "HidPairedByModel";
        case EModelGroup::LegacySerialPort: return "LegacySerialPort";
        case EModelGroup::LegacyFtdiBridge: return "LegacyFtdiBridge";
        case EModelGroup::LegacyTiBridge: return "LegacyTiBridge";
        case EModelGroup::OsdLanguageSetByHost: return "OsdLanguageSetByHost";
        case EModelGroup::PenComputerScreen: return "PenComputerScreen";
    }
    return "Unknown";
}

bool IsInAnyFamily(std::initializer_list<uint16_t> productIds_I, uint16_t edidProductCode_I) {
    return IsInFamilies(std::vector<uint16_t>(productIds_I), edidProductCode_I);
}

bool IsInAnyFamily(const std::vector<uint16_t>& productIds_I, uint16_t edidProductCode_I) {
    return IsInFamilies(productIds_I, edidProductCode_I);
}
