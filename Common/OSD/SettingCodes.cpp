#include "SettingCodes.h"

#include <algorithm>

#include "ModelGroups.h"
#include "StringIds.h"
#include "codes.h"

namespace {

// A row applies to the listed families, or to every display when the list is empty. The first
// row of a setting that applies decides.
struct SSettingRow {
    ESetting setting;
    std::vector<uint16_t> families;
    uint8_t vcpCode;
};

std::vector<uint16_t> Join(std::initializer_list<std::vector<uint16_t>> parts_I) {
    std::vector<uint16_t> all;
    for (const auto& part : parts_I) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

const std::vector<SSettingRow>& Rows() {
    const auto& groupA = ModelGroupProductIds(EModelGroup::GroupA);
    const auto& groupB = ModelGroupProductIds(EModelGroup::GroupB);
    const auto& groupC = ModelGroupProductIds(EModelGroup::GroupC);
    const auto& groupD = ModelGroupProductIds(EModelGroup::GroupD);
    const auto& earlyModels = ModelGroupProductIds(EModelGroup::ColorOffsetRedIsColorPreset);
    static const std::vector<SSettingRow> rows = {
        // Group A dims the backlight itself.
        {ESetting::Brightness, groupA, vcpC_BacklightControl},
        // The studio and mobile models set the white backlight level.
        {ESetting::Brightness, Join({{0x03A6}, groupB, {0x03BD}}), vcpC_BacklightLevelWhite},
        {ESetting::Brightness, {}, vcpC_Luminance},
        {ESetting::Contrast, {}, vcpC_Contrast},
        // The pen computers switch between temperature, space and custom colour with presets.
        {ESetting::ColorSettingMode, groupD, vcpC_DisplayPresets},
        // The first models keep their colour-temperature presets at 0xE4.
        {ESetting::ColorTemperature, earlyModels, vcpC_ColorOffsetRed},
        {ESetting::ColorTemperature, {}, vcpC_SelectColorPreset},
        {ESetting::ColorSpace, {}, vcpC_ColorSpace},
        {ESetting::Gamma, {}, vcpC_Gamma},
        // Group C scales the picture with the maker's aspect code.
        {ESetting::AspectRatio, groupC, vcpC_AspectRatio},
        // Group A and the HD models use the standard display scaling.
        {ESetting::AspectRatio, Join({groupA, {0x032B, 0x032A}}), vcpC_DisplayScaling},
        // The studio and mobile models fit the picture through their scan mode.
        {ESetting::AspectRatio, Join({{0x03A6}, groupB, {0x03BD}}), vcpC_ScanMode},
        {ESetting::PowerLedBrightness, {}, vcpC_LedBrightness},
        {ESetting::Sharpness, {}, vcpC_Sharpness},
        {ESetting::UniformityCompensation, {}, vcpC_UniformityCompensation},
        {ESetting::EnergySmart, {}, vcpC_EnergySmart},
        {ESetting::DynamicContrast, {}, vcpC_DynamicContrast},
        {ESetting::AutoPowerDown, {}, vcpC_AutoPowerDown},
        {ESetting::FanSpeed, {}, vcpC_FanSpeed},
        {ESetting::LcdConditioning, {}, vcpC_LCDConditioning},
        {ESetting::BatteryMode, {}, vcpC_BatteryMode},
        // Only these four families have a scan mode.
        {ESetting::ScanMode, {0x03A6, 0x03AE, 0x03B0, 0x03BD}, vcpC_ScanMode},
        {ESetting::OsdLanguage, {}, vcpC_OSDLanguage},
    };
    return rows;
}

}  // namespace

uint8_t SettingCode(ESetting setting_I, uint16_t edidProductCode_I) {
    for (const SSettingRow& row : Rows()) {
        if (row.setting != setting_I) {
            continue;
        }
        if (row.families.empty() || IsInAnyFamily(row.families, edidProductCode_I)) {
            return row.vcpCode;
        }
    }
    return 0;
}

const std::vector<SEntry>& ColorTemperatureLabels() {
    static const std::vector<SEntry> labels = {
        {StringId::k5000K, cpc_5000K}, {StringId::k5700K, cpc_5700K}, {StringId::k6500K, cpc_6500K},
        {StringId::k7500K, cpc_7500K}, {StringId::k9300K, cpc_9300K}, {StringId::k10000K, cpc_10000K},
    };
    return labels;
}

const std::vector<SEntry>& ColorSpaceLabels() {
    // Values 5 and 6 are the firmware's Rec 2020 and EBU; the combined sRGB/Rec 709 entry is
    // shown as sRGB on displays that do not also offer plain sRGB.
    static const std::vector<SEntry> labels = {
        {StringId::kSpaceNative, csc_Native},
        {StringId::kSpaceAdobeRGB, csc_AdobeRGB},
        {StringId::kSpaceSRGB, csc_sRGB},
        {StringId::kSpaceSRGB, csc_sRGBRec709},
        {StringId::kSpaceRec709, csc_Rec709},
        {StringId::kSpaceDCIP3, csc_DCI},
        {StringId::kSpaceRec2020, 5},
        {StringId::kSpaceEBU, 6},
        {StringId::kSpaceColorManager1, csc_XRite1},
        {StringId::kSpaceColorManager2, csc_XRite2},
    };
    return labels;
}

std::vector<SEntry> AspectRatioLabels(uint8_t vcpCode_I) {
    if (vcpCode_I == vcpC_ScanMode) {
        // Scan mode 0 fills the screen, 1 keeps the picture's proportions.
        return {{StringId::kAspectFullScreen, 0}, {StringId::kAspectKeepRatio, 1}};
    }
    // 0x86 and 0xE2 share the display-scaling values.
    return {{StringId::kAspectFullScreen, dsc_MaxImage},
            {StringId::kAspectKeepRatio, dsc_MaxVerticalImageWithAR},
            {StringId::kAspectOneToOne, dsc_NoScaling}};
}

const std::vector<SEntry>& PowerLedLabels() {
    static const std::vector<SEntry> labels = {{StringId::kOff, lbc_Off},
                                               {StringId::kLevelLow, lbc_Low},
                                               {StringId::kLevelMedium, lbc_Medium},
                                               {StringId::kLevelHigh, lbc_High}};
    return labels;
}

const std::vector<SEntry>& UniformityLabels() {
    static const std::vector<SEntry> labels = {{StringId::kOff, ucc_None},
                                               {StringId::kOn, ucc_Table1},
                                               {StringId::kUniformityMode2, ucc_Table2},
                                               {StringId::kUniformityMode3, ucc_Table3}};
    return labels;
}

const std::vector<SEntry>& OffOnLabels() {
    static const std::vector<SEntry> labels = {{StringId::kOff, 0}, {StringId::kOn, 1}};
    return labels;
}

const std::vector<SEntry>& FanSpeedLabels() {
    static const std::vector<SEntry> labels = {{StringId::kFanAuto, 1}, {StringId::kFanLowSpeed, 0}};
    return labels;
}

const std::vector<SEntry>& BatteryModeLabels() {
    static const std::vector<SEntry> labels = {{StringId::kBatteryStandard, 0}, {StringId::kBatterySaver, 1}};
    return labels;
}

uint32_t ColorTemperatureKelvin(int32_t presetValue_I) {
    switch (presetValue_I) {
        case cpc_5000K: return 5000;
        case cpc_5700K: return 5700;
        case cpc_6500K: return 6500;
        case cpc_7500K: return 7500;
        case cpc_9300K: return 9300;
        case cpc_10000K: return 10000;
        default: return 0;
    }
}

EGammaScale GammaScale(uint16_t edidProductCode_I) {
    if (IsInAnyFamily({0x032B, 0x032A}, edidProductCode_I)) {
        return EGammaScale::TwoChoices;
    }
    if (IsInModelGroup(EModelGroup::GroupC, edidProductCode_I)) {
        // Group C's gamma is a fine scale where the code information says so, otherwise it
        // takes the choice itself.
        return IsInModelGroup(EModelGroup::ContinuousGammaDefaultMccs, edidProductCode_I)
                   ? EGammaScale::FineScale
                   : EGammaScale::DirectChoices;
    }
    if (IsInModelGroup(EModelGroup::GroupD, edidProductCode_I)) {
        return EGammaScale::ThreeChoices;
    }
    return EGammaScale::None;
}

int32_t DisplayPresetForColorMode(int32_t mode_I) {
    switch (mode_I) {
        case eColorModeTemperature: return dpc_ColorTemp;
        case eColorModeSpace: return dpc_ColorSpace;
        case eColorModeCustom: return dpc_CustomColor;
        default: return 0;
    }
}

int32_t ColorModeForDisplayPreset(int32_t presetValue_I) {
    switch (presetValue_I) {
        case dpc_ColorSpace: return eColorModeSpace;
        case dpc_CustomColor: return eColorModeCustom;
        default: return eColorModeTemperature;
    }
}

const char* HelpPageName(uint16_t edidProductCode_I) {
    struct SHelpPage {
        uint16_t productId;
        const char* page;
    };
    // One page per family of the online help.
    static const SHelpPage kPages[] = {
        {0x0304, "canvas-12"},       {0x0333, "canvas-21"},       {0x0325, "canvas-24"},
        {0x032B, "canvas-13-hd"},    {0x032A, "canvas-16-hd"},    {0x037C, "canvas-22-pro"},
        {0x0352, "canvas-27-pro"},   {0x03B2, "canvas-32-pro"},   {0x034F, "canvas-pro"},
        {0x0350, "canvas-pro"},      {0x0351, "canvas-pro"},      {0x034D, "slate-13"},
        {0x034E, "slate-16"},        {0x0398, "slate-13-pro"},    {0x0399, "slate-16-pro"},
        {0x0390, "canvas-24-touch"}, {0x0391, "canvas-32-touch"}, {0x0396, "canvas-27-touch"},
        {0x03AE, "canvas-16-go"},    {0x03B0, "canvas-13-go"},    {0x03A6, "studio-24"},
        {0x03BD, "studio-32"},
    };
    for (const SHelpPage& page : kPages) {
        if (IsInAnyFamily({page.productId}, edidProductCode_I)) {
            return page.page;
        }
    }
    return "index";
}
