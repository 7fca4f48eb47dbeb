#include "ModelGroups.h"

#include "Assert.h"
#include "CEdidBuilder.h"

namespace {

struct SModelGroupRow {
    EModelGroup group;
    const char* name;
    std::vector<uint16_t> productIds;
};

// One row per group: which product families it holds, and why.
const std::vector<SModelGroupRow>& Rows() {
    static const std::vector<SModelGroupRow> rows = {
        // The first serial-port models predate the manufacturer colour codes and keep their
        // colour-temperature presets at 0xE4.
        {EModelGroup::ColorOffsetRedIsColorPreset, "ColorOffsetRedIsColorPreset", {0x0304, 0x0333, 0x0325}},
        // The scaler of the group-C models exposes gamma as a fine scale and was released
        // before it reported mccs_ver.
        {EModelGroup::ContinuousGammaDefaultMccs,
         "ContinuousGammaDefaultMccs",
         {0x034F, 0x0350, 0x03B2, 0x037C, 0x0351, 0x0352}},
        // These panels list more colour presets than they can show and settle slowly after
        // a preset change.
        {EModelGroup::FixedColorPresets, "FixedColorPresets", {0x032B, 0x032A}},
        // The pen-computer screens choose their colour mode through 0xF0 and under-report
        // its values.
        {EModelGroup::ExtendedDisplayPresets, "ExtendedDisplayPresets", {0x034D, 0x034E, 0x0398, 0x0399}},
        // Passively cooled panels whose firmware still lists Fan Speed.
        {EModelGroup::NoFan, "NoFan", {0x0390, 0x0396, 0x0391}},
        // The battery-powered models report Battery Mode 0 but leave it out of their list.
        {EModelGroup::BatteryModeMissingZero, "BatteryModeMissingZero", {0x03AE, 0x03B0}},
        {EModelGroup::HidPairedByModel, "HidPairedByModel", {0x03A6, 0x03BD, 0x03AE, 0x03B0}},
        {EModelGroup::LegacySerialPort, "LegacySerialPort", {0x0304, 0x0333, 0x0325}},
        // Tested in this order; the first family that holds the display decides.
        {EModelGroup::LegacyFtdiBridge,
         "LegacyFtdiBridge",
         {0x032B, 0x032A, 0x034F, 0x0350, 0x03B2, 0x037C, 0x0351, 0x0352, 0x0398, 0x0399, 0x0390, 0x03AE,
          0x0396, 0x03B0, 0x03A6, 0x03BD}},
        {EModelGroup::LegacyTiBridge, "LegacyTiBridge", {0x034D, 0x034E}},
        // Earlier firmware starts its menu in English whatever the computer's language.
        {EModelGroup::OsdLanguageSetByHost,
         "OsdLanguageSetByHost",
         {0x032B, 0x032A, 0x034F, 0x0350, 0x03B2, 0x037C, 0x0351, 0x0352}},
        {EModelGroup::PenComputerScreen, "PenComputerScreen", {0x034D, 0x034E, 0x0398, 0x0399}},
        {EModelGroup::GroupA, "GroupA", {0x0390, 0x0396, 0x0391}},
        {EModelGroup::GroupB, "GroupB", {0x03AE, 0x03B0}},
        {EModelGroup::GroupC, "GroupC", {0x034F, 0x0350, 0x03B2, 0x037C, 0x0351, 0x0352}},
        {EModelGroup::GroupD, "GroupD", {0x034D, 0x034E, 0x0398, 0x0399}},
    };
    return rows;
}

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
