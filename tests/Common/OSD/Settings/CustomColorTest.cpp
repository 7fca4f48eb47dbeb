#include <gtest/gtest.h>

#include "CustomColor.h"

namespace {
// The too-dark test of the display with this EDID product code.
bool TooDarkOn(const CColor& color, uint32_t type, uint16_t edid) {
    return IsColorTooDark(color, type, DisplayTraitsFor(edid).tooDark);
}
}  // namespace

TEST(CustomColor, RgbToCmykUsesTheMixedScale) {
    CColor empty;
    EXPECT_FALSE(empty.IsValid());
    EXPECT_EQ(empty.Black(), 1.0);

    CColor black = CColor::FromRGB(0, 0, 0);
    EXPECT_TRUE(black.IsValid());
    EXPECT_EQ(black.Cyan(), 0.0);
    EXPECT_EQ(black.Magenta(), 0.0);
    EXPECT_EQ(black.Yellow(), 0.0);
    EXPECT_EQ(black.Black(), 1.0);

    CColor orange = CColor::FromRGB(100, 50, 0);
    EXPECT_DOUBLE_EQ(orange.Cyan(), 0.0);
    EXPECT_DOUBLE_EQ(orange.Magenta(), 0.5);
    EXPECT_DOUBLE_EQ(orange.Yellow(), 1.0);
    EXPECT_DOUBLE_EQ(orange.Black(), 1.0 - 100.0 / 255.0);
}

TEST(CustomColor, CmykToRgbRoundsHalvesUp) {
    CColor white = CColor::FromCMYK(0, 0, 0, 0);
    EXPECT_EQ(white.Red(), 255);
    EXPECT_EQ(white.Green(), 255);
    EXPECT_EQ(white.Blue(), 255);
    EXPECT_EQ(CColor::FromCMYK(0.5, 0, 0, 0).Red(), 128);  // 127.5 goes up
    CColor kept = CColor::FromCMYK(0.25, 0.5, 0.75, 0.2);
    EXPECT_EQ(kept.Cyan(), 0.25);
    EXPECT_EQ(kept.Black(), 0.2);
    EXPECT_EQ(kept.Red(), 153);  // 0.75 * 204 + 0.5
    EXPECT_EQ(kept.Blue(), 51);
    EXPECT_EQ(CColor::FromCMYK(0, 0, 0, 1).Red(), 0);
}

TEST(CustomColor, NamesAndCodes) {
    EXPECT_STREQ(ColorModTypeName(0), "Hue");
    EXPECT_STREQ(ColorModTypeName(3), "Offset");
    EXPECT_STREQ(ColorModTypeName(4), "Unknown");
    EXPECT_STREQ(ColorChannelName(0), "Red");
    EXPECT_STREQ(ColorChannelName(6), "Black");
    EXPECT_STREQ(ColorChannelName(7), "Unknown");
    SColorModCodes codes{};
    ASSERT_TRUE(ColorModCodes(eColorModSaturation, codes));
    EXPECT_EQ(codes.red, 0x59);
    EXPECT_EQ(codes.green, 0x5B);
    EXPECT_EQ(codes.blue, 0x5D);
    ASSERT_TRUE(ColorModCodes(eColorModOffset, codes));
    EXPECT_EQ(codes.blue, 0xE6);
    EXPECT_FALSE(ColorModCodes(4, codes));
}

TEST(CustomColor, TooDarkThresholdsAtTheirEdges) {
    auto grey = [](uint8_t level) { return CColor::FromRGB(level, level, level); };
    // Every channel below 20, for every type, on the first models and family 0x037C.
    for (uint16_t code : {uint16_t(0x1040), uint16_t(0x1060)}) {
        EXPECT_TRUE(TooDarkOn(grey(19), eColorModHue, code));
        EXPECT_FALSE(TooDarkOn(CColor::FromRGB(20, 19, 19), eColorModHue, code));
    }
    // Families 0x032B/0x032A: black >= 0.6, which a percentage gain always reaches.
    EXPECT_TRUE(TooDarkOn(grey(50), eColorModGain, 0x1043));
    EXPECT_TRUE(TooDarkOn(grey(100), eColorModGain, 0x1049));
    EXPECT_FALSE(TooDarkOn(grey(103), eColorModGain, 0x1049));
    EXPECT_FALSE(TooDarkOn(grey(50), eColorModHue, 0x1043));  // only the gain is tested
    // Family 0x0352: black >= 0.5.
    EXPECT_TRUE(TooDarkOn(grey(127), eColorModGain, 0x1057));
    EXPECT_FALSE(TooDarkOn(grey(128), eColorModGain, 0x1057));
    // The pen computers: black >= 0.75.
    EXPECT_TRUE(TooDarkOn(grey(63), eColorModGain, 0x1052));
    EXPECT_FALSE(TooDarkOn(grey(64), eColorModGain, 0x1052));
    // The touch, battery and studio models: black >= 0.6.
    for (uint16_t code : {uint16_t(0x1064), uint16_t(0x1071), uint16_t(0x1070), uint16_t(0x1075)}) {
        EXPECT_TRUE(TooDarkOn(grey(102), eColorModGain, code));
        EXPECT_FALSE(TooDarkOn(grey(103), eColorModGain, code));
    }
    // Anything else is never too dark.
    EXPECT_FALSE(TooDarkOn(grey(0), eColorModGain, 0x2222));

    EXPECT_TRUE(IsColorTooDark(grey(19), true, true));
    EXPECT_FALSE(IsColorTooDark(grey(20), true, true));
    EXPECT_TRUE(IsColorTooDark(grey(100), false, true));
    EXPECT_FALSE(IsColorTooDark(grey(0), false, false));
}
