#pragma once
// What one display does differently from the others, worked out once from its EDID product
// code when the display object is made: its family's row (traits and waits), the variants of
// its code table that the row implies, and the VCP code behind each setting. The display, the
// settings delegate and the colour model read this record.

#include <array>
#include <cstdint>

#include "ProductFamilies.h"
#include "SettingCodes.h"
#include "VcpCodeTable.h"

struct SDisplayTraits : SProductFamily {
    SDisplayTraits() : SProductFamily(UnknownFamily()) {}

    uint16_t edidProductCode = 0;
    SCodeVariants codeVariants;
    std::array<uint8_t, kSettingCount> settingCodes{};

    // The VCP code of the setting; 0 when the family has none.
    uint8_t SettingCode(ESetting setting_I) const { return settingCodes[static_cast<size_t>(setting_I)]; }
    // The fine-scale models were released before they reported mccs_ver.
    bool AcceptsMissingMccsVersion() const { return gamma == EGammaScale::FineScale; }
};

SDisplayTraits DisplayTraitsFor(uint16_t edidProductCode_I);
