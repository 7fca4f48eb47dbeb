#include "SettingCodes.h"

#include <algorithm>

#include "StringIds.h"
#include "codes.h"

namespace {

// The families that carry a setting on another code than its row's, as questions to the family
// row. The first rule of a setting that the family answers decides; a family that answers none
// uses the row's code. Colour mode, aspect ratio and scan mode have no code of their own.
struct SCodeRule {
    ESetting setting;
    bool (*applies)(const SProductFamily&);
    uint8_t vcpCode;
};

constexpr SCodeRule kCodeRules[] = {
    {ESetting::Brightness,
     [](const SProductFamily& f) { return f.brightness == EBrightnessControl::BacklightControl; },
     vcpC_BacklightControl},
    {ESetting::Brightness,
     [](const SProductFamily& f) { return f.brightness == EBrightnessControl::WhiteBacklightLevel; },
     vcpC_BacklightLevelWhite},
    {ESetting::ColorSettingMode, [](const SProductFamily& f) { return f.colorModeByDisplayPresets; },
     vcpC_DisplayPresets},
    {ESetting::ColorTemperature,
     [](const SProductFamily& f) { return f.colorPresets == EColorPresetCode::ColorOffsetRed; },
     vcpC_ColorOffsetRed},
    {ESetting::AspectRatio, [](const SProductFamily& f) { return f.aspect == EAspectControl::MakerCode; },
     vcpC_AspectRatio},
    {ESetting::AspectRatio,
     [](const SProductFamily& f) { return f.aspect == EAspectControl::DisplayScaling; }, vcpC_DisplayScaling},
    {ESetting::AspectRatio, [](const SProductFamily& f) { return f.aspect == EAspectControl::ScanMode; },
     vcpC_ScanMode},
    {ESetting::ScanMode, [](const SProductFamily& f) { return f.aspect == EAspectControl::ScanMode; },
     vcpC_ScanMode},
};

}  // namespace

uint8_t SettingCode(ESetting setting_I, const SProductFamily& family_I) {
    for (const SCodeRule& rule : kCodeRules) {
        if (rule.setting == setting_I && rule.applies(family_I)) {
            return rule.vcpCode;
        }
    }
    return SettingRowOf(setting_I).code;
}

uint8_t SettingCode(ESetting setting_I, uint16_t edidProductCode_I) {
    return SettingCode(setting_I, FamilyRowOf(edidProductCode_I));
}

// What the dialogs call the values of each enumerated setting, in the order they list them.
// 5700 K comes second although its value (11) is last.
const std::vector<SEntry>& ColorTemperatureLabels() {
    static const std::vector<SEntry> labels = {
        {StringId::k5000K, cpc_5000K}, {StringId::k5700K, cpc_5700K}, {StringId::k6500K, cpc_6500K},
        {StringId::k7500K, cpc_7500K}, {StringId::k9300K, cpc_9300K}, {StringId::k10000K, cpc_10000K},
    };
    return labels;
}

// The combined sRGB/Rec 709 entry is labelled sRGB on displays that do not also offer plain sRGB.
const std::vector<SEntry>& ColorSpaceLabels() {
    static const std::vector<SEntry> labels = {
        {StringId::kSpaceNative, csc_Native},
        {StringId::kSpaceAdobeRGB, csc_AdobeRGB},
        {StringId::kSpaceSRGB, csc_sRGB},
        {StringId::kSpaceSRGB, csc_sRGBRec709},
        {StringId::kSpaceRec709, csc_Rec709},
        {StringId::kSpaceDCIP3, csc_DCI},
        {StringId::kSpaceRec2020, csc_Rec2020},
        {StringId::kSpaceEBU, csc_EBU},
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
