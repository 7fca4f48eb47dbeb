#include "codes.h"

#include "DebugLog.h"

namespace {

const char kUnsupported[] = "Unsupported VPC Code";
const char kCommandNotFound[] = "Code not found";

std::string Unsupported(const char* function_I, const char* enumeration_I, unsigned value_I) {
    DLog("%s %s(0x%X)\n", function_I, enumeration_I, value_I);
    return kUnsupported;
}

// The text of a value of one of the table's enumerations.
std::string ValueText(EValueNames values_I, unsigned value_I) {
    for (const SValueNameRow& row : ValueNameRows(values_I)) {
        if (row.value == value_I && row.text != nullptr) {
            return row.text;
        }
    }
    return Unsupported("VCPCodeToString", ValueNamesTypeName(values_I), value_I);
}

}  // namespace

std::string VCPCodeToString(vcpCodes code_I) {
    const SVcpCodeRow* row = FindVcpCodeRow(code_I);
    if (row == nullptr || row->name == nullptr) {
        return Unsupported(__func__, "vcpCode", code_I);
    }
    return row->name;
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
    return ValueText(EValueNames::ColorPreset, code_I);
}

std::string VCPCodeToString(colorSpaceCode code_I) {
    return ValueText(EValueNames::ColorSpace, code_I);
}

std::string VCPCodeToString(displayPresetCode code_I) {
    return ValueText(EValueNames::DisplayPreset, code_I);
}

std::string VCPCodeToString(displayScalingCode code_I) {
    return ValueText(EValueNames::DisplayScaling, code_I);
}

std::string VCPCodeToString(gammaCode code_I) {
    return ValueText(EValueNames::Gamma, code_I);
}

std::string VCPCodeToString(ledBrightnessCode code_I) {
    return ValueText(EValueNames::LedBrightness, code_I);
}

std::string VCPCodeToString(uniformityCompCode code_I) {
    return ValueText(EValueNames::UniformityComp, code_I);
}
