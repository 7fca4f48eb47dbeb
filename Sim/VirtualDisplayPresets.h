#pragma once
// One virtual display per product family of the EDID-to-tablet table, each with the codes its
// family's settings use and the firmware quirks the program corrects for. The names are the
// demo's own.

#include <optional>
#include <string>
#include <vector>

#include "VirtualDisplayModel.h"

const std::vector<SVirtualDisplayModel>& VirtualDisplayPresets();

// By key ("canvas-22-pro"); null when there is none.
const SVirtualDisplayModel* FindVirtualDisplayPreset(const std::string& key_I);

// The preset of the family this EDID product code belongs to, reporting that product code.
std::optional<SVirtualDisplayModel> VirtualDisplayPresetForProductCode(uint16_t edidProductCode_I);
