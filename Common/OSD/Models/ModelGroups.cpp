#include "ModelGroups.h"

#include "Assert.h"
#include "CEdidBuilder.h"

namespace {

struct SModelGroupRow {
    EModelGroup group;
    const char* name;
    std::vector<uint16_t> productIds;
};

std::vector<uint16_t> Join(std::initializer_list<std::vector<uint16_t>> parts_I) {
    std::vector<uint16_t> all;
    for (const auto& part : parts_I) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

#define VLR_GROUP(name) EModelGroup::name, #name

// One row per group: which product families it holds, and why.
const std::vector<SModelGroupRow>& Rows() {
    // The product families, by series.
    static const std::vector<uint16_t> kEarlySerialModels = {0x0304, 0x0333, 0x0325};
    static const std::vector<uint16_t> kHdModels = {0x032B, 0x032A};
    static const std::vector<uint16_t> kProModels = {0x034F, 0x0350, 0x03B2, 0x037C, 0x0351, 0x0352};
    static const std::vector<uint16_t> kPenComputers = {0x034D, 0x034E, 0x0398, 0x0399};
    static const std::vector<uint16_t> kTouchModels = {0x0390, 0x0396, 0x0391};
    static const std::vector<uint16_t> kBatteryModels = {0x03AE, 0x03B0};
    static const std::vector<uint16_t> kStudioModels = {0x03A6, 0x03BD};
    static const std::vector<SModelGroupRow> rows = {
        // The first serial-port models predate the manufacturer colour codes and keep their
        // colour-temperature presets at 0xE4.
        {VLR_GROUP(ColorOffsetRedIsColorPreset), kEarlySerialModels},
        // The pro scaler exposes gamma as a fine scale and was released before it reported
        // mccs_ver.
        {VLR_GROUP(ContinuousGammaDefaultMccs), kProModels},
        // These panels list more colour presets than they can show and settle slowly after
        // a preset change.
        {VLR_GROUP(FixedColorPresets), kHdModels},
        // The pen computers choose their colour mode through 0xF0 and under-report its values.
        {VLR_GROUP(ExtendedDisplayPresets), kPenComputers},
        // Passively cooled panels whose firmware still lists Fan Speed.
        {VLR_GROUP(NoFan), kTouchModels},
        // The battery-powered models report Battery Mode 0 but leave it out of their list.
        {VLR_GROUP(BatteryModeMissingZero), kBatteryModels},

        // The touch models dim the backlight itself.
        {VLR_GROUP(BrightnessByBacklightControl), kTouchModels},
        {VLR_GROUP(BrightnessByWhiteBacklightLevel), Join({{0x03A6}, kBatteryModels, {0x03BD}})},
        {VLR_GROUP(ColorModeByDisplayPresets), kPenComputers},
        {VLR_GROUP(AspectRatioByMakerCode), kProModels},
        {VLR_GROUP(AspectRatioByDisplayScaling), Join({kTouchModels, kHdModels})},
        // The studio and battery models fit the picture through their scan mode.
        {VLR_GROUP(ScanModeFitsPicture), {0x03A6, 0x03AE, 0x03B0, 0x03BD}},
        {VLR_GROUP(GammaTwoChoices), kHdModels},
        {VLR_GROUP(GammaThreeChoices), kPenComputers},
        // The first studio model's LED has one brightness.
        {VLR_GROUP(FixedPowerLed), {0x03A6}},
        {VLR_GROUP(RestartsAfterFactoryReset), Join({kHdModels, kProModels, kPenComputers})},
        {VLR_GROUP(DynamicContrastExcludesUniformity), {0x037C, 0x0351}},
        {VLR_GROUP(CustomColorExcludesUniformity), kProModels},
        {VLR_GROUP(TooDarkWhenAllChannelsBelow20), Join({kEarlySerialModels, {0x037C, 0x0351}})},
        {VLR_GROUP(TooDarkWhenBlackFrom50), {0x034F, 0x0350, 0x03B2, 0x0352}},
        {VLR_GROUP(TooDarkWhenBlackFrom60), Join({kHdModels, kTouchModels, kBatteryModels, kStudioModels})},
        {VLR_GROUP(TooDarkWhenBlackFrom75), kPenComputers},

        {VLR_GROUP(HidPairedByModel), {0x03A6, 0x03BD, 0x03AE, 0x03B0}},
        {VLR_GROUP(LegacySerialPort), kEarlySerialModels},
        // Tested in this order; the first family that holds the display decides.
        {VLR_GROUP(LegacyFtdiBridge),
         {0x032B, 0x032A, 0x034F, 0x0350, 0x03B2, 0x037C, 0x0351, 0x0352, 0x0398, 0x0399, 0x0390, 0x03AE,
          0x0396, 0x03B0, 0x03A6, 0x03BD}},
        {VLR_GROUP(LegacyTiBridge), {0x034D, 0x034E}},
        // Earlier firmware starts its menu in English whatever the computer's language.
        {VLR_GROUP(OsdLanguageSetByHost), Join({kHdModels, kProModels})},
        {VLR_GROUP(PenComputerScreen), kPenComputers},
    };
    return rows;
}

#undef VLR_GROUP

const SModelGroupRow& RowOf(EModelGroup group_I) {
    for (const SModelGroupRow& row : Rows()) {
        if (row.group == group_I) {
            return row;
        }
    }
    VLR_ASSERT_FAIL("unknown model group");
    static const SModelGroupRow empty{group_I, "Unknown", {}};
    return empty;
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
    return IsInFamilies(RowOf(group_I).productIds, edidProductCode_I);
}

const std::vector<uint16_t>& ModelGroupProductIds(EModelGroup group_I) {
    return RowOf(group_I).productIds;
}

const char* ModelGroupName(EModelGroup group_I) {
    return RowOf(group_I).name;
}

bool IsInAnyFamily(std::initializer_list<uint16_t> productIds_I, uint16_t edidProductCode_I) {
    return IsInFamilies(std::vector<uint16_t>(productIds_I), edidProductCode_I);
}

bool IsInAnyFamily(const std::vector<uint16_t>& productIds_I, uint16_t edidProductCode_I) {
    return IsInFamilies(productIds_I, edidProductCode_I);
}
