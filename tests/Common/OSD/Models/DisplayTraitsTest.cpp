#include <gtest/gtest.h>

#include "DisplayTraits.h"

TEST(DisplayTraits, EachSeriesGetsItsRecordOnce) {
    // A touch model: brightness by backlight control, no fan, aspect by display scaling.
    const SDisplayTraits touch = DisplayTraitsFor(0x1064);
    EXPECT_EQ(touch.SettingCode(ESetting::Brightness), 0x13);
    EXPECT_EQ(touch.SettingCode(ESetting::AspectRatio), 0x86);
    EXPECT_EQ(touch.SettingCode(ESetting::ScanMode), 0);
    EXPECT_TRUE(touch.noFan);
    EXPECT_EQ(touch.tooDark, ETooDarkTest::BlackFrom60);
    EXPECT_STREQ(touch.helpPage, "canvas-24-touch");
    // The first studio model: white backlight level, scan mode, an LED that does not dim.
    const SDisplayTraits studio = DisplayTraitsFor(0x1070);
    EXPECT_EQ(studio.SettingCode(ESetting::Brightness), 0x6B);
    EXPECT_EQ(studio.SettingCode(ESetting::AspectRatio), 0xDA);
    EXPECT_TRUE(studio.fixedPowerLed);
    EXPECT_FALSE(DisplayTraitsFor(0x1075).fixedPowerLed);
    // A pro model: fine gamma, missing mccs_ver accepted, custom colour excludes uniformity.
    const SDisplayTraits pro = DisplayTraitsFor(0x1060);
    EXPECT_EQ(pro.gamma, EGammaScale::FineScale);
    EXPECT_TRUE(pro.codeVariants.fineScaleGamma);
    EXPECT_TRUE(pro.AcceptsMissingMccsVersion());
    EXPECT_TRUE(pro.customColorExcludesUniformity);
    EXPECT_TRUE(pro.dynamicContrastExcludesUniformity);
    EXPECT_FALSE(DisplayTraitsFor(0x1057).dynamicContrastExcludesUniformity);
    // A pen computer: colour mode by display presets, three gamma choices.
    const SDisplayTraits slate = DisplayTraitsFor(0x1052);
    EXPECT_EQ(slate.SettingCode(ESetting::ColorSettingMode), 0xF0);
    EXPECT_EQ(slate.gamma, EGammaScale::ThreeChoices);
    EXPECT_TRUE(slate.restartsAfterFactoryReset);
    // The first serial models: colour temperature at 0xE4.
    EXPECT_EQ(DisplayTraitsFor(0x1040).SettingCode(ESetting::ColorTemperature), 0xE4);
    // A display of no known family gets the defaults.
    const SDisplayTraits other = DisplayTraitsFor(0x2222);
    EXPECT_EQ(other.SettingCode(ESetting::Brightness), 0x10);
    EXPECT_EQ(other.gamma, EGammaScale::None);
    EXPECT_EQ(other.tooDark, ETooDarkTest::None);
    EXPECT_STREQ(other.helpPage, "index");
}
