#include "VcpCodeTable.h"

#include <array>
#include <vector>

namespace {

// The short forms the table's columns use.
namespace Column {
constexpr uint32_t RO = eAccessReadOnly;
constexpr uint32_t WO = eAccessWriteOnly;
constexpr uint32_t RW = eAccessReadWrite;
constexpr uint32_t NA = eAccessPlaceholder;
constexpr uint32_t C = eTypeContinuous;
constexpr uint32_t NC = eTypeNonContinuous;
constexpr uint32_t T = eTypeTable;
constexpr bool HasInfo(uint32_t access_I) {
    return access_I != NA;
}
}  // namespace Column

constexpr SVcpCodeRow kRows[] = {
#define VLR_CODE_ROW(code, enumerator, name, access, type, readSize, writeSize, values) \
    {code,                                                                              \
     name,                                                                              \
     Column::HasInfo(Column::access),                                                   \
     Column::access,                                                                    \
     Column::type,                                                                      \
     readSize,                                                                          \
     writeSize,                                                                         \
     EValueNames::values},
    VLR_VCP_CODE_TABLE(VLR_CODE_ROW)
#undef VLR_CODE_ROW
};

// Row index by code; -1 where the table has none.
constexpr std::array<int16_t, 256> BuildIndex() {
    std::array<int16_t, 256> index{};
    index.fill(-1);
    for (size_t i = 0; i < std::size(kRows); ++i) {
        index[kRows[i].code] = static_cast<int16_t>(i);
    }
    return index;
}
constexpr std::array<int16_t, 256> kIndex = BuildIndex();

struct SVariantRow {
    bool SCodeVariants::*applies;
    SVcpCodeRow row;
};

// The variant rows, each with the printed name of the code it replaces.
const std::vector<SVariantRow>& VariantRows() {
    static const std::vector<SVariantRow> rows = [] {
        std::vector<SVariantRow> built = {
#define VLR_VARIANT_ROW(variant, code, access, type, readSize, writeSize, values) \
    {&SCodeVariants::VLR_VARIANT_MEMBER_##variant,                                \
     {code, nullptr, true, Column::access, Column::type, readSize, writeSize, EValueNames::values}},
#define VLR_VARIANT_MEMBER_FineScaleGamma fineScaleGamma
#define VLR_VARIANT_MEMBER_ColorOffsetRedIsColorPreset colorOffsetRedIsColorPreset
            VLR_VCP_CODE_VARIANTS(VLR_VARIANT_ROW)
#undef VLR_VARIANT_MEMBER_FineScaleGamma
#undef VLR_VARIANT_MEMBER_ColorOffsetRedIsColorPreset
#undef VLR_VARIANT_ROW
        };
        for (SVariantRow& variant : built) {
            const int16_t base = kIndex[variant.row.code];
            variant.row.name = base >= 0 ? kRows[base].name : nullptr;
        }
        return built;
    }();
    return rows;
}

#define VLR_VALUE_ROW(value, enumerator, text) {value, text},
constexpr SValueNameRow kColorPresetValues[] = {VLR_COLOR_PRESET_VALUES(VLR_VALUE_ROW)};
constexpr SValueNameRow kColorSpaceValues[] = {VLR_COLOR_SPACE_VALUES(VLR_VALUE_ROW)};
constexpr SValueNameRow kDisplayPresetValues[] = {VLR_DISPLAY_PRESET_VALUES(VLR_VALUE_ROW)};
constexpr SValueNameRow kDisplayScalingValues[] = {VLR_DISPLAY_SCALING_VALUES(VLR_VALUE_ROW)};
constexpr SValueNameRow kGammaValues[] = {VLR_GAMMA_VALUES(VLR_VALUE_ROW)};
constexpr SValueNameRow kLedBrightnessValues[] = {VLR_LED_BRIGHTNESS_VALUES(VLR_VALUE_ROW)};
constexpr SValueNameRow kUniformityCompValues[] = {VLR_UNIFORMITY_COMP_VALUES(VLR_VALUE_ROW)};
#undef VLR_VALUE_ROW

}  // namespace

std::span<const SVcpCodeRow> VcpCodeRows() {
    return kRows;
}

const SVcpCodeRow* FindVcpCodeRow(uint8_t code_I, const SCodeVariants& variants_I) {
    for (const SVariantRow& variant : VariantRows()) {
        if (variants_I.*variant.applies && variant.row.code == code_I) {
            return &variant.row;
        }
    }
    return kIndex[code_I] >= 0 ? &kRows[kIndex[code_I]] : nullptr;
}

std::span<const SValueNameRow> ValueNameRows(EValueNames values_I) {
    switch (values_I) {
        case EValueNames::ColorPreset: return kColorPresetValues;
        case EValueNames::ColorSpace: return kColorSpaceValues;
        case EValueNames::DisplayPreset: return kDisplayPresetValues;
        case EValueNames::DisplayScaling: return kDisplayScalingValues;
        case EValueNames::Gamma: return kGammaValues;
        case EValueNames::LedBrightness: return kLedBrightnessValues;
        case EValueNames::UniformityComp: return kUniformityCompValues;
        case EValueNames::None: break;
    }
    return {};
}

const char* ValueNamesTypeName(EValueNames values_I) {
    switch (values_I) {
        case EValueNames::ColorPreset: return "colorPresetCode";
        case EValueNames::ColorSpace: return "colorSpaceCode";
        case EValueNames::DisplayPreset: return "displayPresetCode";
        case EValueNames::DisplayScaling: return "displayScalingCode";
        case EValueNames::Gamma: return "gammaCode";
        case EValueNames::LedBrightness: return "ledBrightnessCode";
        case EValueNames::UniformityComp: return "uniformityCompCode";
        case EValueNames::None: break;
    }
    return "vcpCode";
}
