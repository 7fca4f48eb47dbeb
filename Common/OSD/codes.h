#pragma once
// The vocabulary the program speaks to a display: MCCS VCP codes, DDC/CI command codes and
// the value sets of the enumerated VCP options, each with the text printed for it in the
// trace and in option dumps. Codes and values are made from the rows of the code table;
// the user interface takes its labels from the string tables.

#include <cstdint>
#include <string>

#include "VcpCodeTable.h"

enum vcpCodes : uint8_t {
#define VLR_VCP_ENUMERATOR(code, name, text, access, type, readSize, writeSize, values) vcpC_##name = code,
    VLR_VCP_CODE_TABLE(VLR_VCP_ENUMERATOR)
#undef VLR_VCP_ENUMERATOR
};

enum ddcCommandCodes : uint8_t {
    ddcCC_GetVCPFeatureRequest = 0x01,
    ddcCC_VCPReplyCode = 0x02,
    ddcCC_SetVCPFeatureRequest = 0x03,
    ddcCC_GetTimingReportResponse = 0x06,
    ddcCC_GetTimingReportRequest = 0x07,
    ddcCC_VCPResetReplyCode = 0x09,
    ddcCC_SaveCurrentSettingsRequest = 0x0C,
    ddcCC_DiagnosticsReplyCode = 0xA1,
    ddcCC_DiagnosticsRequest = 0xB1,
    ddcCC_IdentificationReplyCode = 0xE1,
    ddcCC_TableReadRequest = 0xE2,
    ddcCC_CapabilitiesReplyCode = 0xE3,
    ddcCC_TableReadReplyCode = 0xE4,
    ddcCC_EnableApplicationReportRequest = 0xE5,
    ddcCC_TableWriteRequest = 0xE7,
    ddcCC_IdentificationRequest = 0xF1,
    ddcCC_CapabilitiesRequest = 0xF3,
};

#define VLR_VALUE_ENUMERATOR(value, enumerator, text) enumerator = value,
enum colorPresetCode : uint8_t { VLR_COLOR_PRESET_VALUES(VLR_VALUE_ENUMERATOR) };
enum colorSpaceCode : uint8_t { VLR_COLOR_SPACE_VALUES(VLR_VALUE_ENUMERATOR) };
enum displayPresetCode : uint8_t { VLR_DISPLAY_PRESET_VALUES(VLR_VALUE_ENUMERATOR) };
enum displayScalingCode : uint8_t { VLR_DISPLAY_SCALING_VALUES(VLR_VALUE_ENUMERATOR) };
enum gammaCode : uint8_t { VLR_GAMMA_VALUES(VLR_VALUE_ENUMERATOR) };
enum ledBrightnessCode : uint8_t { VLR_LED_BRIGHTNESS_VALUES(VLR_VALUE_ENUMERATOR) };
enum uniformityCompCode : uint8_t { VLR_UNIFORMITY_COMP_VALUES(VLR_VALUE_ENUMERATOR) };
#undef VLR_VALUE_ENUMERATOR

// Texts for a code or value; unknown values give "Unsupported VPC Code" ("Code not found"
// for command codes) and one trace line naming the enumeration.
std::string VCPCodeToString(vcpCodes code_I);
std::string VCPCodeToString(ddcCommandCodes code_I);
std::string VCPCodeToString(colorPresetCode code_I);
std::string VCPCodeToString(colorSpaceCode code_I);
std::string VCPCodeToString(displayPresetCode code_I);
std::string VCPCodeToString(displayScalingCode code_I);
std::string VCPCodeToString(gammaCode code_I);
std::string VCPCodeToString(ledBrightnessCode code_I);
std::string VCPCodeToString(uniformityCompCode code_I);

// The name of a VCP code given as a plain number (option codes are 32-bit).
std::string VCPCodeName(uint32_t code_I);
