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
