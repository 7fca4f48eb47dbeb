#include "VirtualDisplayPresets.h"

#include <algorithm>

#include "CEdidBuilder.h"
#include "StringUtilities.h"
#include "codes.h"

namespace {

enum class EGamma { None, TwoChoices, ThreeChoices, FineScale };

// What a family's firmware offers; everything not named is absent.
struct SFamily {
    const char* key = "";
    const char* monitorName = "";
    uint16_t productId = 0;
    uint16_t edidCode = 0;
    SFirmwareVersion firmware = {};
    uint8_t brightnessCode = vcpC_Luminance;
    EGamma gamma = EGamma::None;
    bool colourTemperatureAtE4 = false;  // the first models keep their presets at 0xE4
    bool limitedColourPresets = false;   // lists presets its panel cannot show
    bool fullCustomColour = false;       // hue, saturation and offsets besides the gains
    std::vector<uint16_t> colourSpaces = {};
    std::vector<uint16_t> displayPresets = {};
    uint8_t aspectCode = 0;
    bool uniformity = false;
    bool dynamicContrast = false;
    bool energySmart = false;
    bool lcdConditioning = false;
    bool autoPowerDown = false;
    bool osdLanguage = false;
    bool led = false;
    bool fan = false;
    bool fanListedWithoutFan = false;
    bool battery = false;
    bool batteryListedWithoutZero = false;
    bool listsMccsVersion = true;
    bool forgetsSettingsWhenOff = false;  // the first models keep nothing over a power cycle
};

SVirtualControl Continuous(uint8_t code, uint16_t factory, uint16_t maximum, bool colour = false) {
    SVirtualControl control;
    control.code = code;
    control.continuous = true;
    control.factoryValue = factory;
    control.maximum = maximum;
    control.colour = colour;
    return control;
}

SVirtualControl Choice(uint8_t code, uint16_t factory, std::vector<uint16_t> allowed, bool colour = false) {
    SVirtualControl control;
    control.code = code;
    control.factoryValue = factory;
    control.allowed = std::move(allowed);
    control.colour = colour;
    return control;
}

SVirtualControl Action(uint8_t code) {
    SVirtualControl control;
    control.code = code;
    control.access = EControlAccess::WriteOnly;
    return control;
}

SVirtualControl ReadOnly(uint8_t code, uint16_t value) {
    SVirtualControl control;
    control.code = code;
    control.access = EControlAccess::ReadOnly;
    control.factoryValue = value;
    return control;
}

const std::vector<uint16_t> kOsdLanguages = {0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07,
                                             0x08, 0x09, 0x0A, 0x0D, 0x14, 0x1E, 0x26};

SVirtualDisplayModel BuildModel(const SFamily& family) {
    SVirtualDisplayModel model;
    model.key = family.key;
    model.monitorName = family.monitorName;
    model.serialText = StringPrintf("VC%04XA%05u", family.edidCode, 40000u + family.productId);
    model.edidProductCode = family.edidCode;
    model.tabletProductId = family.productId;
    model.firmware = family.firmware;
    model.listsMccsVersion = family.listsMccsVersion;
    model.forgetsSettingsWhenOff = family.forgetsSettingsWhenOff;

    std::vector<SVirtualControl>& c = model.controls;
    c.push_back(Action(vcpC_RestoreFactoryDefaults));
    c.push_back(Action(vcpC_RestoreFactoryLuminanceAndContrastDefaults));
    c.push_back(Action(vcpC_RestoreFactoryColorDefaults));
    c.push_back(Continuous(family.brightnessCode, 70, 100));
    c.push_back(Continuous(vcpC_Contrast, 50, 100));
    if (family.colourTemperatureAtE4) {
        c.push_back(Choice(vcpC_ColorOffsetRed, 0x05, {0x04, 0x05, 0x06, 0x08}, true));
    } else if (family.limitedColourPresets) {
        SVirtualControl presets = Choice(vcpC_SelectColorPreset, 0x05, {0x04, 0x05, 0x08, 0x0B}, true);
        presets.listedValues = "01 04 05 06 08 0B";
        c.push_back(presets);
    } else {
        c.push_back(Choice(vcpC_SelectColorPreset, 0x05, {0x04, 0x05, 0x06, 0x08, 0x0B}, true));
    }
    for (uint8_t gain : {vcpC_VideoGainRed, vcpC_VideoGainGreen, vcpC_VideoGainBlue}) {
        c.push_back(Continuous(gain, 100, 100, true));
    }
    if (family.fullCustomColour) {
        for (uint8_t code :
             {vcpC_6AxisSaturationControlRed, vcpC_6AxisSaturationControlGreen,
              vcpC_6AxisSaturationControlBlue, vcpC_6AxisHueControlRed, vcpC_6AxisHueControlGreen,
              vcpC_6AxisHueControlBlue, vcpC_ColorOffsetRed, vcpC_ColorOffsetGreen, vcpC_ColorOffsetBlue}) {
            c.push_back(Continuous(code, 50, 100, true));
        }
    }
    switch (family.gamma) {
        case EGamma::TwoChoices: c.push_back(Choice(vcpC_Gamma, 0x01, {0x01, 0x02}, true)); break;
        case EGamma::ThreeChoices: c.push_back(Choice(vcpC_Gamma, 0x02, {0x01, 0x02, 0x03}, true)); break;
        case EGamma::FineScale: c.push_back(Continuous(vcpC_Gamma, 22, 40, true)); break;
        case EGamma::None: break;
    }
    if (family.aspectCode == vcpC_ScanMode) {
        c.push_back(Choice(vcpC_ScanMode, 0x00, {0x00, 0x01}));
    } else if (family.aspectCode != 0) {
        // 0x86 and 0xE2 take display-scaling values: full screen, 1:1, keep proportions.
        c.push_back(Choice(family.aspectCode, 0x02, {0x01, 0x02, 0x05}));
    }
    c.push_back(Continuous(vcpC_Sharpness, 2, 4));
    c.push_back(ReadOnly(vcpC_DisplayTechnologyType, 0x03));
    c.push_back(ReadOnly(vcpC_DisplayControllerType, 0x05));
    c.push_back(ReadOnly(vcpC_DisplayFirmwareLevel, 0));
    if (family.osdLanguage) {
        c.push_back(Choice(vcpC_OSDLanguage, 0x02, kOsdLanguages));
    }
    if (!family.displayPresets.empty()) {
        SVirtualControl presets = Choice(vcpC_DisplayPresets, 0x07,
                                         {0x00, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0A, 0x0B, 0x0C, 0x0D}, true);
        std::string listed;
        for (uint16_t value : family.displayPresets) {
            if (!listed.empty()) {
                listed += ' ';
            }
            listed += StringPrintf("%02X", value);
        }
        presets.listedValues = listed;
        c.push_back(presets);
    }
    c.push_back(ReadOnly(vcpC_VCPVersion, 0x0202));
    if (family.uniformity) {
        c.push_back(Choice(vcpC_UniformityCompensation, 0x00, {0x00, 0x01}));
    }
    if (!family.colourSpaces.empty()) {
        c.push_back(Choice(vcpC_ColorSpace, family.colourSpaces.front(), family.colourSpaces, true));
    }
    if (family.dynamicContrast) {
        c.push_back(Choice(vcpC_DynamicContrast, 0x00, {0x00, 0x01}));
    }
    if (family.energySmart) {
        c.push_back(Choice(vcpC_EnergySmart, 0x00, {0x00, 0x01}));
    }
    if (family.lcdConditioning) {
        c.push_back(Action(vcpC_LCDConditioning));
    }
    if (family.autoPowerDown) {
        c.push_back(Choice(vcpC_AutoPowerDown, 0x01, {0x00, 0x01}));
    }
    if (family.led) {
        c.push_back(Choice(vcpC_LedBrightness, 0x02, {0x00, 0x01, 0x02, 0x03}));
    }
    SVirtualControl info;
    info.code = vcpC_DisplayInfo;
    info.access = EControlAccess::ReadOnly;
    c.push_back(info);
    if (family.fan || family.fanListedWithoutFan) {
        c.push_back(Choice(vcpC_FanSpeed, 0x01, {0x00, 0x01}));
    }
    if (family.battery) {
        // The firmware runs on mains power (0) until told otherwise.
        SVirtualControl battery = Choice(vcpC_BatteryMode, 0x00, {0x00, 0x02, 0x03});
        if (family.batteryListedWithoutZero) {
            battery.listedValues = "02 03";
        }
        c.push_back(battery);
    }
    std::sort(c.begin(), c.end(),
              [](const SVirtualControl& a, const SVirtualControl& b) { return a.code < b.code; });
    return model;
}

// A family with nothing but its identity; the helpers below add what it offers.
SFamily Identity(const char* key, const char* name, uint16_t productId, uint16_t edidCode,
                 SFirmwareVersion fw) {
    SFamily family;
    family.key = key;
    family.monitorName = name;
    family.productId = productId;
    family.edidCode = edidCode;
    family.firmware = fw;
    return family;
}

std::vector<SFamily> Families() {
    const std::vector<uint16_t> standardSpaces = {0x00, 0x01, 0x03};
    const std::vector<uint16_t> wideSpaces = {0x00, 0x01, 0x02, 0x03, 0x04, 0x07};
    const std::vector<uint16_t> slatePresets = {0x00, 0x05, 0x06, 0x07, 0x08, 0x09};
    auto early = [](const char* key, const char* name, uint16_t productId, uint16_t edidCode,
                    SFirmwareVersion fw) {
        SFamily family = Identity(key, name, productId, edidCode, fw);
        family.colourTemperatureAtE4 = true;
        family.forgetsSettingsWhenOff = true;
        return family;
    };
    auto hd = [&](const char* key, const char* name, uint16_t productId, uint16_t edidCode) {
        SFamily family = Identity(key, name, productId, edidCode, {2, 0, 5, 5, 0});
        family.gamma = EGamma::TwoChoices;
        family.limitedColourPresets = true;
        family.fullCustomColour = true;
        family.colourSpaces = standardSpaces;
        family.aspectCode = vcpC_DisplayScaling;
        family.osdLanguage = true;
        family.led = true;
        return family;
    };
    auto pro = [&](const char* key, const char* name, uint16_t productId, uint16_t edidCode,
                   SFirmwareVersion fw, bool withFan) {
        SFamily family = Identity(key, name, productId, edidCode, fw);
        family.gamma = EGamma::FineScale;
        family.fullCustomColour = true;
        family.colourSpaces = wideSpaces;
        family.aspectCode = vcpC_AspectRatio;
        family.uniformity = true;
        family.dynamicContrast = productId == 0x037C;
        family.energySmart = true;
        family.lcdConditioning = true;
        family.autoPowerDown = true;
        family.osdLanguage = true;
        family.led = true;
        family.fan = withFan;
        family.listsMccsVersion = false;
        return family;
    };
    auto slate = [&](const char* key, const char* name, uint16_t productId, uint16_t edidCode,
                     SFirmwareVersion fw, const std::vector<uint16_t>& spaces) {
        SFamily family = Identity(key, name, productId, edidCode, fw);
        family.gamma = EGamma::ThreeChoices;
        family.fullCustomColour = true;
        family.colourSpaces = spaces;
        family.displayPresets = slatePresets;
        family.battery = true;
        return family;
    };
    auto touch = [&](const char* key, const char* name, uint16_t productId, uint16_t edidCode,
                     SFirmwareVersion fw) {
        SFamily family = Identity(key, name, productId, edidCode, fw);
        family.brightnessCode = vcpC_BacklightControl;
        family.fullCustomColour = true;
        family.colourSpaces = wideSpaces;
        family.aspectCode = vcpC_DisplayScaling;
        family.uniformity = true;
        family.energySmart = true;
        family.autoPowerDown = true;
        family.led = true;
        family.fanListedWithoutFan = true;
        return family;
    };
    auto go = [&](const char* key, const char* name, uint16_t productId, uint16_t edidCode) {
        SFamily family = Identity(key, name, productId, edidCode, {5, 0, 2, 5, 0});
        family.brightnessCode = vcpC_BacklightLevelWhite;
        family.fullCustomColour = true;
        family.colourSpaces = standardSpaces;
        family.aspectCode = vcpC_ScanMode;
        family.energySmart = true;
        family.autoPowerDown = true;
        family.led = true;
        family.battery = true;
        family.batteryListedWithoutZero = true;
        return family;
    };
    auto studio = [&](const char* key, const char* name, uint16_t productId, uint16_t edidCode,
                      SFirmwareVersion fw, bool withLed) {
        SFamily family = Identity(key, name, productId, edidCode, fw);
        family.brightnessCode = vcpC_BacklightLevelWhite;
        family.fullCustomColour = true;
        family.colourSpaces = wideSpaces;
        family.aspectCode = vcpC_ScanMode;
        family.uniformity = true;
        family.energySmart = true;
        family.autoPowerDown = true;
        family.led = withLed;
        family.fan = true;
        return family;
    };
    return {
        early("canvas-12", "Canvas 12", 0x0304, 0x1040, {1, 0, 8, 5, 0}),
        early("canvas-21", "Canvas 21", 0x0333, 0x1046, {1, 1, 2, 5, 0}),
        early("canvas-24", "Canvas 24", 0x0325, 0x1042, {1, 2, 0, 5, 0}),
        hd("canvas-13-hd", "Canvas 13 HD", 0x032B, 0x1043),
        hd("canvas-16-hd", "Canvas 16 HD", 0x032A, 0x1044),
        pro("canvas-22-pro", "Canvas 22 Pro", 0x037C, 0x1060, {3, 1, 2, 5, 0}, false),
        pro("canvas-27-pro", "Canvas 27 Pro", 0x0352, 0x1057, {3, 1, 4, 5, 0}, true),
        pro("canvas-32-pro", "Canvas 32 Pro", 0x03B2, 0x1073, {3, 2, 0, 5, 0}, true),
        slate("slate-13", "Slate 13", 0x034D, 0x1052, {1, 4, 0, 5, 0}, standardSpaces),
        slate("slate-16", "Slate 16", 0x034E, 0x1053, {1, 4, 0, 5, 0}, standardSpaces),
        slate("slate-13-pro", "Slate 13 Pro", 0x0398, 0x1066, {2, 1, 1, 5, 0}, wideSpaces),
        slate("slate-16-pro", "Slate 16 Pro", 0x0399, 0x1067, {2, 1, 1, 5, 0}, wideSpaces),
        touch("canvas-24-touch", "Canvas 24 T", 0x0390, 0x1064, {4, 0, 3, 5, 0}),
        touch("canvas-32-touch", "Canvas 32 T", 0x0391, 0x1065, {4, 0, 3, 5, 0}),
        touch("canvas-27-touch", "Canvas 27 T", 0x0396, 0x1068, {4, 1, 0, 5, 0}),
        go("canvas-16-go", "Canvas 16 Go", 0x03AE, 0x1071),
        go("canvas-13-go", "Canvas 13 Go", 0x03B0, 0x1072),
        studio("studio-24", "Studio 24", 0x03A6, 0x1070, {6, 0, 1, 5, 0}, false),
        studio("studio-32", "Studio 32", 0x03BD, 0x1075, {6, 1, 0, 5, 0}, true),
    };
}

}  // namespace

const std::vector<SVirtualDisplayModel>& VirtualDisplayPresets() {
    static const std::vector<SVirtualDisplayModel> presets = [] {
        std::vector<SVirtualDisplayModel> models;
        for (const SFamily& family : Families()) {
            models.push_back(BuildModel(family));
        }
        return models;
    }();
    return presets;
}

const SVirtualDisplayModel* FindVirtualDisplayPreset(const std::string& key_I) {
    for (const SVirtualDisplayModel& model : VirtualDisplayPresets()) {
        if (model.key == key_I) {
            return &model;
        }
    }
    return nullptr;
}

std::optional<SVirtualDisplayModel> VirtualDisplayPresetForProductCode(uint16_t edidProductCode_I) {
    CEdidBuilder* pEdidBldr = CEdidBuilder::Instance();
    if (pEdidBldr == nullptr) {
        return std::nullopt;
    }
    for (const SVirtualDisplayModel& model : VirtualDisplayPresets()) {
        if (pEdidBldr->IsInProductFamily(model.tabletProductId, edidProductCode_I)) {
            SVirtualDisplayModel copy = model;
            copy.edidProductCode = edidProductCode_I;
            copy.serialText = StringPrintf("VC%04XA%05u", edidProductCode_I, 40000u + model.tabletProductId);
            return copy;
        }
    }
    return std::nullopt;
}
