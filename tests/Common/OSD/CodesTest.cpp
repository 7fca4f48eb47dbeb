#include <gtest/gtest.h>

#include "LogCapture.h"
#include "codes.h"

TEST(Codes, VcpCodeNamesKeepTheirExactTexts) {
    EXPECT_EQ(VCPCodeToString(vcpC_Undefined), "Undefined");
    EXPECT_EQ(VCPCodeToString(vcpC_Luminance), "Luminance");
    EXPECT_EQ(VCPCodeToString(vcpC_RestoreFactoryColorDefaults), "Restore Factory Color Defaults");
    EXPECT_EQ(VCPCodeToString(static_cast<vcpCodes>(0x0A)), "Resetore Factory TV Defaults");
    EXPECT_EQ(VCPCodeToString(static_cast<vcpCodes>(0x74)), "Single Point LUT OPeration");
    EXPECT_EQ(VCPCodeToString(static_cast<vcpCodes>(0xAC)), "HorizontalFrequency");
    EXPECT_EQ(VCPCodeToString(static_cast<vcpCodes>(0x3E)), "ClockPhase");
    EXPECT_EQ(VCPCodeToString(static_cast<vcpCodes>(0x8B)), "TV-Channel Up/Down");
    EXPECT_EQ(VCPCodeToString(vcpC_ColorOffsetRed), "Color Offset Red");
    EXPECT_EQ(VCPCodeToString(vcpC_DisplayPresets), "Display Presets");
    EXPECT_EQ(VCPCodeToString(vcpC_FanSpeed), "Fan Speed");
    EXPECT_EQ(VCPCodeToString(vcpC_BatteryMode), "Battery Mode");
    EXPECT_EQ(vcpC_BatteryMode, 0xF4);
    EXPECT_EQ(vcpC_SelectColorPreset, 0x14);
    EXPECT_EQ(vcpC_UniformityCompensation, 0xE0);
}

TEST(Codes, EveryCodeOutsideTheTableIsUnsupportedWithOneLogLine) {
    const int named[] = {
        0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x08, 0x0A, 0x0B, 0x0C, 0x0E, 0x10, 0x11, 0x12, 0x13,
        0x14, 0x16, 0x17, 0x18, 0x1A, 0x1C, 0x1E, 0x1F, 0x20, 0x22, 0x24, 0x26, 0x28, 0x29, 0x2A, 0x2C,
        0x2E, 0x30, 0x32, 0x34, 0x36, 0x38, 0x39, 0x3A, 0x3C, 0x3E, 0x40, 0x41, 0x42, 0x43, 0x44, 0x46,
        0x48, 0x4A, 0x4C, 0x52, 0x54, 0x56, 0x58, 0x59, 0x5A, 0x5B, 0x5C, 0x5D, 0x5E, 0x60, 0x62, 0x63,
        0x64, 0x66, 0x6C, 0x6E, 0x70, 0x72, 0x73, 0x74, 0x75, 0x76, 0x78, 0x7C, 0x82, 0x84, 0x86, 0x87,
        0x88, 0x8A, 0x8B, 0x8C, 0x8D, 0x8E, 0x8F, 0x90, 0x91, 0x92, 0x93, 0x94, 0x95, 0x96, 0x97, 0x98,
        0x9A, 0x9B, 0x9C, 0x9D, 0x9E, 0x9F, 0xA0, 0xA2, 0xA4, 0xA5, 0xAA, 0xAC, 0xAE, 0xB0, 0xB2, 0xB4,
        0xB5, 0xB6, 0xC0, 0xC2, 0xC3, 0xC4, 0xC6, 0xC8, 0xC9, 0xCA, 0xCC, 0xCD, 0xCE, 0xCF, 0xD0, 0xD2,
        0xD4, 0xD6, 0xD7, 0xDA, 0xDB, 0xDC, 0xDE, 0xDF, 0xE0, 0xE1, 0xE2, 0xE3, 0xE4, 0xE5, 0xE6, 0xE7,
        0xE8, 0xE9, 0xEA, 0xEB, 0xEC, 0xED, 0xEE, 0xEF, 0xF0, 0xF2, 0xF3, 0xF4};
    ASSERT_EQ(std::size(named), 156u);
    size_t next = 0;
    for (int code = 0; code <= 0xFF; ++code) {
        CLogCapture log;
        std::string text = VCPCodeToString(static_cast<vcpCodes>(code));
        bool isNamed = next < std::size(named) && named[next] == code;
        if (isNamed) {
            ++next;
            EXPECT_NE(text, "Unsupported VPC Code") << std::hex << code;
            EXPECT_TRUE(log.Writes().empty()) << std::hex << code;
        } else {
            EXPECT_EQ(text, "Unsupported VPC Code") << std::hex << code;
            char expected[64];
            std::snprintf(expected, sizeof(expected), "VCPCodeToString vcpCode(0x%X)\n", code);
            EXPECT_EQ(log.Writes(), std::vector<std::string>{expected});
        }
    }
    CLogCapture log;
    EXPECT_EQ(VCPCodeName(0x110), "Unsupported VPC Code");
}

TEST(Codes, CommandCodeTextsAreTheirEnumeratorNames) {
    EXPECT_EQ(VCPCodeToString(ddcCC_CapabilitiesRequest), "ddcCC_CapabilitiesRequest");
    EXPECT_EQ(VCPCodeToString(ddcCC_SaveCurrentSettingsRequest), "ddcCC_SaveCurrentSettingsRequest");
    EXPECT_EQ(VCPCodeToString(static_cast<ddcCommandCodes>(0xE5)), "ddcCC_EnableApplicationReportRequest");
    CLogCapture log;
    EXPECT_EQ(VCPCodeToString(static_cast<ddcCommandCodes>(0x00)), "Code not found");
    EXPECT_EQ(VCPCodeToString(static_cast<ddcCommandCodes>(0xF4)), "Code not found");
    EXPECT_EQ(log.Writes(), (std::vector<std::string>{"VCPCodeToString ddcCommandCodes(0x0)\n",
                                                      "VCPCodeToString ddcCommandCodes(0xF4)\n"}));
}

TEST(Codes, ValueEnumerationsNameTheirValuesAndLogTheGaps) {
    EXPECT_EQ(VCPCodeToString(static_cast<colorPresetCode>(11)), "5700k");
    EXPECT_EQ(VCPCodeToString(cpc_6500K), "6500k");
    EXPECT_EQ(VCPCodeToString(csc_sRGBRec709), "sRGB/Rec 709");
    EXPECT_EQ(VCPCodeToString(csc_XRite2), "Xrite2");
    EXPECT_EQ(VCPCodeToString(dpc_XRite2_bj), "XRite2_bj");
    EXPECT_EQ(VCPCodeToString(dsc_MaxVerticalImageNoAR), "Max Vertical Image No AR/Aspect Mode");
    EXPECT_EQ(VCPCodeToString(gc_FollowColorSpace), "Follow Color Space/2.4");
    EXPECT_EQ(VCPCodeToString(lbc_Medium), "LED Brightness medium");
    EXPECT_EQ(VCPCodeToString(static_cast<uniformityCompCode>(0)), "None");

    CLogCapture log;
    EXPECT_EQ(VCPCodeToString(static_cast<colorPresetCode>(3)), "Unsupported VPC Code");
    EXPECT_EQ(VCPCodeToString(static_cast<colorSpaceCode>(5)), "Unsupported VPC Code");
    EXPECT_EQ(VCPCodeToString(static_cast<displayPresetCode>(10)), "Unsupported VPC Code");
    EXPECT_EQ(VCPCodeToString(static_cast<displayScalingCode>(11)), "Unsupported VPC Code");
    EXPECT_EQ(VCPCodeToString(static_cast<gammaCode>(4)), "Unsupported VPC Code");
    EXPECT_EQ(VCPCodeToString(static_cast<ledBrightnessCode>(4)), "Unsupported VPC Code");
    EXPECT_EQ(VCPCodeToString(static_cast<uniformityCompCode>(0x10)), "Unsupported VPC Code");
    EXPECT_EQ(log.Writes(),
              (std::vector<std::string>{
                  "VCPCodeToString colorPresetCode(0x3)\n", "VCPCodeToString colorSpaceCode(0x5)\n",
                  "VCPCodeToString displayPresetCode(0xA)\n", "VCPCodeToString displayScalingCode(0xB)\n",
                  "VCPCodeToString gammaCode(0x4)\n", "VCPCodeToString ledBrightnessCode(0x4)\n",
                  "VCPCodeToString uniformityCompCode(0x10)\n"}));
}
