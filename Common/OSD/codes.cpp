#include "codes.h"

#include "DebugLog.h"

namespace {

const char kUnsupported[] = "Unsupported VPC Code";
const char kCommandNotFound[] = "Code not found";

std::string Unsupported(const char* function_I, const char* enumeration_I, unsigned value_I) {
    DLog("%s %s(0x%X)\n", function_I, enumeration_I, value_I);
    return kUnsupported;
}

}  // namespace

std::string VCPCodeToString(vcpCodes code_I) {
    switch (code_I) {
#define VLR_VCP_CASE(code, name, text) \
    case vcpC_##name: return text;
        VLR_VCP_CODE_NAMES(VLR_VCP_CASE)
#undef VLR_VCP_CASE
        default: return Unsupported(__func__, "vcpCode", code_I);
    }
}

std::string VCPCodeName(uint32_t code_I) {
    if (code_I > 0xFF) {
        return Unsupported(__func__, "vcpCode", code_I);
    }
    return VCPCodeToString(static_cast<vcpCodes>(code_I));
}

std::string VCPCodeToString(ddcCommandCodes code_I) {
    switch (code_I) {
#define VLR_DDC_CASE(name) \
    case name: return #name;
        VLR_DDC_CASE(ddcCC_GetVCPFeatureRequest)
        VLR_DDC_CASE(ddcCC_VCPReplyCode)
        VLR_DDC_CASE(ddcCC_SetVCPFeatureRequest)
        VLR_DDC_CASE(ddcCC_GetTimingReportResponse)
        VLR_DDC_CASE(ddcCC_GetTimingReportRequest)
        VLR_DDC_CASE(ddcCC_VCPResetReplyCode)
        VLR_DDC_CASE(ddcCC_SaveCurrentSettingsRequest)
        VLR_DDC_CASE(ddcCC_DiagnosticsReplyCode)
        VLR_DDC_CASE(ddcCC_DiagnosticsRequest)
        VLR_DDC_CASE(ddcCC_IdentificationReplyCode)
        VLR_DDC_CASE(ddcCC_TableReadRequest)
        VLR_DDC_CASE(ddcCC_CapabilitiesReplyCode)
        VLR_DDC_CASE(ddcCC_TableReadReplyCode)
        VLR_DDC_CASE(ddcCC_EnableApplicationReportRequest)
        VLR_DDC_CASE(ddcCC_TableWriteRequest)
        VLR_DDC_CASE(ddcCC_IdentificationRequest)
        VLR_DDC_CASE(ddcCC_CapabilitiesRequest)
#undef VLR_DDC_CASE
        default:
            DLog("%s ddcCommandCodes(0x%X)\n", __func__, static_cast<unsigned>(code_I));
            return kCommandNotFound;
    }
}

std::string VCPCodeToString(colorPresetCode code_I) {
    switch (code_I) {
        case cpc_Reserved: return "Reserved";
        case cpc_sRGB: return "sRGB";
        case cpc_DisplayNative: return "Display Native";
        case cpc_5000K: return "5000k";
        case cpc_6500K: return "6500k";
        case cpc_7500K: return "7500k";
        case cpc_9300K: return "9300k";
        case cpc_10000K: return "10000k";
        case cpc_5700K: return "5700k";
        default: return Unsupported(__func__, "colorPresetCode", code_I);
    }
}

std::string VCPCodeToString(colorSpaceCode code_I) {
    switch (code_I) {
        case csc_sRGB: return "sRGB";
        case csc_AdobeRGB: return "AdobeRGB";
        case csc_sRGBRec709: return "sRGB/Rec 709";
        case csc_Rec709: return "Rec 709";
        case csc_DCI: return "DCI";
        case csc_Native: return "Native";
        case csc_XRite1: return "XRite1";
        case csc_XRite2: return "Xrite2";
        default: return Unsupported(__func__, "colorSpaceCode", code_I);
    }
}

std::string VCPCodeToString(displayPresetCode code_I) {
    switch (code_I) {
        case dpc_Native: return "Native";
        case dpc_Standard: return "Standard";
        case dpc_Multimedia: return "Multimedia";
        case dpc_Movie: return "Movie";
        case dpc_Game: return "Game";
        case dpc_XRitePreset1: return "XRite Preset 1";
        case dpc_XRitePreset2: return "XRite Preset 2";
        case dpc_ColorTemp: return "Color Temp";
        case dpc_ColorSpace: return "Color Space";
        case dpc_CustomColor: return "Custom Color";
        case dpc_XRite1_bj: return "XRite1_bj";
        case dpc_XRite2_bj: return "XRite2_bj";
        default: return Unsupported(__func__, "displayPresetCode", code_I);
    }
}

std::string VCPCodeToString(displayScalingCode code_I) {
    switch (code_I) {
        case dsc_Reserved: return "Reserved";
        case dsc_NoScaling: return "No Scaling/Full Image/1 to 1";
        case dsc_MaxImage: return "Max Image/1 to 1";
        case dsc_MaxVerticalImageNoAR: return "Max Vertical Image No AR/Aspect Mode";
        case dsc_MaxHorizontalImageNoAR: return "Max Horizontal Image No AR";
        case dsc_MaxVerticalImageWithAR: return "Max Vertical Image with AR";
        case dsc_MaxHorizontalImageWithAR: return "Max Horizontal Image with AR";
        case dsc_FullMode: return "Full Mode";
        case dsc_ZoomMode: return "Zoom Mode";
        case dsc_SqueezeMode: return "Squeeze Mode";
        case dsc_Variable: return "Variable";
        default: return Unsupported(__func__, "displayScalingCode", code_I);
    }
}

std::string VCPCodeToString(gammaCode code_I) {
    switch (code_I) {
        case gc_1_9: return "1.9";
        case gc_2_2: return "2.2/1.9";
        case gc_2_4: return "2.4/2.2";
        case gc_FollowColorSpace: return "Follow Color Space/2.4";
        default: return Unsupported(__func__, "gammaCode", code_I);
    }
}

std::string VCPCodeToString(ledBrightnessCode code_I) {
    switch (code_I) {
        case lbc_Off: return "LED Brightness off";
        case lbc_Low: return "LED Brightness low";
        case lbc_Medium: return "LED Brightness medium";
        case lbc_High: return "LED Brightness high";
        default: return Unsupported(__func__, "ledBrightnessCode", code_I);
    }
}

std::string VCPCodeToString(uniformityCompCode code_I) {
    switch (code_I) {
        case ucc_None: return "None";
        case ucc_Table1: return "Uniformity Table 1";
        case ucc_Table2: return "Uniformity Table 2";
        case ucc_Table3: return "Uniformity Table 3";
        default: return Unsupported(__func__, "uniformityCompCode", code_I);
    }
}
