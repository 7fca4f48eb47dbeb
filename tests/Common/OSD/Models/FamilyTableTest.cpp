// Every family's traits, written out by hand from the settings delegate's and the colour
// model's rules (not derived from the code's own tables), so that a family dropped from a
// group or a wrong code in a row shows.

#include <gtest/gtest.h>

#include "CEdidBuilder.h"
#include "DisplayTraits.h"

namespace {

constexpr uint8_t L = 0x10;    // Luminance
constexpr uint8_t BC = 0x13;   // Backlight Control
constexpr uint8_t WBL = 0x6B;  // white backlight level

struct SFamilyRow {
    uint16_t family;
    uint16_t edid;
    uint8_t brightness;
    EGammaScale gamma;
    ETooDarkTest tooDark;
    bool ledDimmable;
    bool scanMode;
    bool restartsAfterReset;
    bool dynamicContrastExcludesUniformity;
    bool noFan;
    bool fineGamma;
};

using G = EGammaScale;
using T = ETooDarkTest;

// The families without a shipped EDID product code get one for this test.
constexpr uint16_t kTestCode034F = 0x1F4F;
constexpr uint16_t kTestCode0350 = 0x1F50;
constexpr uint16_t kTestCode0351 = 0x1F51;

const SFamilyRow kFamilies[] = {
    // family  edid    bright gamma              too dark               LED    scan   restart dynC   noFan
    // fine
    {0x0304, 0x1040, L, G::None, T::AllChannelsBelow20, true, false, false, false, false, false},
    {0x0333, 0x1046, L, G::None, T::AllChannelsBelow20, true, false, false, false, false, false},
    {0x0325, 0x1042, L, G::None, T::AllChannelsBelow20, true, false, false, false, false, false},
    {0x032B, 0x1043, L, G::TwoChoices, T::BlackFrom60, true, false, true, false, false, false},
    {0x032B, 0x1048, L, G::TwoChoices, T::BlackFrom60, true, false, true, false, false, false},
    {0x032A, 0x1044, L, G::TwoChoices, T::BlackFrom60, true, false, true, false, false, false},
    {0x032A, 0x1049, L, G::TwoChoices, T::BlackFrom60, true, false, true, false, false, false},
    {0x037C, 0x1060, L, G::FineScale, T::AllChannelsBelow20, true, false, true, true, false, true},
    {0x037C, 0x1063, L, G::FineScale, T::AllChannelsBelow20, true, false, true, true, false, true},
    {0x0351, kTestCode0351, L, G::FineScale, T::AllChannelsBelow20, true, false, true, true, false, true},
    {0x0352, 0x1057, L, G::FineScale, T::BlackFrom50, true, false, true, false, false, true},
    {0x03B2, 0x1073, L, G::FineScale, T::BlackFrom50, true, false, true, false, false, true},
    {0x034F, kTestCode034F, L, G::FineScale, T::BlackFrom50, true, false, true, false, false, true},
    {0x0350, kTestCode0350, L, G::FineScale, T::BlackFrom50, true, false, true, false, false, true},
    {0x034D, 0x1052, L, G::ThreeChoices, T::BlackFrom75, true, false, true, false, false, false},
    {0x034E, 0x1053, L, G::ThreeChoices, T::BlackFrom75, true, false, true, false, false, false},
    {0x0398, 0x1066, L, G::ThreeChoices, T::BlackFrom75, true, false, true, false, false, false},
    {0x0399, 0x1067, L, G::ThreeChoices, T::BlackFrom75, true, false, true, false, false, false},
    {0x0390, 0x1064, BC, G::None, T::BlackFrom60, true, false, false, false, true, false},
    {0x0391, 0x1065, BC, G::None, T::BlackFrom60, true, false, false, false, true, false},
    {0x0396, 0x1068, BC, G::None, T::BlackFrom60, true, false, false, false, true, false},
    {0x03AE, 0x1071, WBL, G::None, T::BlackFrom60, true, true, false, false, false, false},
    {0x03B0, 0x1072, WBL, G::None, T::BlackFrom60, true, true, false, false, false, false},
    {0x03A6, 0x1070, WBL, G::None, T::BlackFrom60, false, true, false, false, false, false},
    {0x03BD, 0x1075, WBL, G::None, T::BlackFrom60, true, true, false, false, false, false},
    // A display of no known family.
    {0x0000, 0x2222, L, G::None, T::None, true, false, false, false, false, false},
};

}  // namespace

TEST(FamilyTable, EveryFamilyHasTheTraitsItsRulesGiveIt) {
    CEdidBuilder* builder = CEdidBuilder::Instance();
    builder->Add(MakeTabletId(0x034F), kTestCode034F);
    builder->Add(MakeTabletId(0x0350), kTestCode0350);
    builder->Add(MakeTabletId(0x0351), kTestCode0351);
    for (const SFamilyRow& row : kFamilies) {
        SCOPED_TRACE(testing::Message() << "family 0x" << std::hex << row.family << " edid 0x" << row.edid);
        const SDisplayTraits traits = DisplayTraitsFor(row.edid);
        EXPECT_EQ(traits.SettingCode(ESetting::Brightness), row.brightness);
        // The same standard and maker codes for every family.
        EXPECT_EQ(traits.SettingCode(ESetting::Contrast), 0x12);
        EXPECT_EQ(traits.SettingCode(ESetting::Sharpness), 0x87);
        EXPECT_EQ(traits.SettingCode(ESetting::Gamma), 0x72);
        EXPECT_EQ(traits.SettingCode(ESetting::ColorSpace), 0xE3);
        EXPECT_EQ(traits.SettingCode(ESetting::OsdLanguage), 0xCC);
        EXPECT_EQ(traits.gamma, row.gamma);
        EXPECT_EQ(traits.tooDark, row.tooDark);
        EXPECT_EQ(!traits.fixedPowerLed, row.ledDimmable);
        EXPECT_EQ(traits.SettingCode(ESetting::ScanMode), row.scanMode ? 0xDA : 0);
        EXPECT_EQ(traits.restartsAfterFactoryReset, row.restartsAfterReset);
        EXPECT_EQ(traits.dynamicContrastExcludesUniformity, row.dynamicContrastExcludesUniformity);
        EXPECT_EQ(traits.noFan, row.noFan);
        EXPECT_EQ(traits.codeVariants.fineScaleGamma, row.fineGamma);
        EXPECT_EQ(traits.AcceptsMissingMccsVersion(), row.fineGamma);
        EXPECT_EQ(traits.customColorExcludesUniformity, row.fineGamma);  // the pro models
    }
}

namespace {

enum class ELegacy { None, Serial, Ftdi, Ti };

struct SFamilyGroups {
    uint16_t edid;
    uint8_t aspectCode;
    uint8_t colorTemperatureCode;
    ELegacy legacy;
    bool hidPairedByModel;
    bool colorModeByPresets;
    bool fixedColorPresets;
    bool extendedDisplayPresets;
    bool batteryMissingZero;
    bool osdLanguageByHost;
    bool penComputer;
    const char* helpPage;
};

using Lg = ELegacy;

const SFamilyGroups kFamilyGroups[] = {
    // edid   aspect ctemp legacy     hidModel modeF0 fixed14 extF0  bat0   osd    penPC  help
    {0x1040, 0x00, 0xE4, Lg::Serial, false, false, false, false, false, false, false, "canvas-12"},
    {0x1046, 0x00, 0xE4, Lg::Serial, false, false, false, false, false, false, false, "canvas-21"},
    {0x1042, 0x00, 0xE4, Lg::Serial, false, false, false, false, false, false, false, "canvas-24"},
    {0x1043, 0x86, 0x14, Lg::Ftdi, false, false, true, false, false, true, false, "canvas-13-hd"},
    {0x1044, 0x86, 0x14, Lg::Ftdi, false, false, true, false, false, true, false, "canvas-16-hd"},
    {0x1060, 0xE2, 0x14, Lg::Ftdi, false, false, false, false, false, true, false, "canvas-22-pro"},
    {kTestCode0351, 0xE2, 0x14, Lg::Ftdi, false, false, false, false, false, true, false, "canvas-pro"},
    {0x1057, 0xE2, 0x14, Lg::Ftdi, false, false, false, false, false, true, false, "canvas-27-pro"},
    {0x1073, 0xE2, 0x14, Lg::Ftdi, false, false, false, false, false, true, false, "canvas-32-pro"},
    {kTestCode034F, 0xE2, 0x14, Lg::Ftdi, false, false, false, false, false, true, false, "canvas-pro"},
    {kTestCode0350, 0xE2, 0x14, Lg::Ftdi, false, false, false, false, false, true, false, "canvas-pro"},
    {0x1052, 0x00, 0x14, Lg::Ti, false, true, false, true, false, false, true, "slate-13"},
    {0x1053, 0x00, 0x14, Lg::Ti, false, true, false, true, false, false, true, "slate-16"},
    {0x1066, 0x00, 0x14, Lg::Ftdi, false, true, false, true, false, false, true, "slate-13-pro"},
    {0x1067, 0x00, 0x14, Lg::Ftdi, false, true, false, true, false, false, true, "slate-16-pro"},
    {0x1064, 0x86, 0x14, Lg::Ftdi, false, false, false, false, false, false, false, "canvas-24-touch"},
    {0x1065, 0x86, 0x14, Lg::None, false, false, false, false, false, false, false, "canvas-32-touch"},
    {0x1068, 0x86, 0x14, Lg::Ftdi, false, false, false, false, false, false, false, "canvas-27-touch"},
    {0x1071, 0xDA, 0x14, Lg::Ftdi, true, false, false, false, true, false, false, "canvas-16-go"},
    {0x1072, 0xDA, 0x14, Lg::Ftdi, true, false, false, false, true, false, false, "canvas-13-go"},
    {0x1070, 0xDA, 0x14, Lg::Ftdi, true, false, false, false, false, false, false, "studio-24"},
    {0x1075, 0xDA, 0x14, Lg::Ftdi, true, false, false, false, false, false, false, "studio-32"},
    {0x2222, 0x00, 0x14, Lg::None, false, false, false, false, false, false, false, "index"},
};

}  // namespace

TEST(FamilyTable, EveryFamilyHasTheTraitsOfItsOptionsSettingsAndDiscovery) {
    CEdidBuilder* builder = CEdidBuilder::Instance();
    builder->Add(MakeTabletId(0x034F), kTestCode034F);
    builder->Add(MakeTabletId(0x0350), kTestCode0350);
    builder->Add(MakeTabletId(0x0351), kTestCode0351);
    for (const SFamilyGroups& row : kFamilyGroups) {
        SCOPED_TRACE(testing::Message() << "edid 0x" << std::hex << row.edid);
        const SDisplayTraits traits = DisplayTraitsFor(row.edid);
        EXPECT_EQ(traits.SettingCode(ESetting::AspectRatio), row.aspectCode);
        EXPECT_EQ(traits.SettingCode(ESetting::ColorTemperature), row.colorTemperatureCode);
        EXPECT_EQ(traits.codeVariants.colorOffsetRedIsColorPreset, row.colorTemperatureCode == 0xE4);
        EXPECT_EQ(traits.SettingCode(ESetting::ColorSettingMode), row.colorModeByPresets ? 0xF0 : 0);
        EXPECT_EQ(traits.fixedColorPresets, row.fixedColorPresets);
        EXPECT_EQ(traits.extendedDisplayPresets, row.extendedDisplayPresets);
        EXPECT_EQ(traits.batteryModeMissingZero, row.batteryMissingZero);
        EXPECT_EQ(traits.osdLanguageSetByHost, row.osdLanguageByHost);
        EXPECT_STREQ(traits.helpPage, row.helpPage);
        EXPECT_EQ(traits.legacyRoute == ELegacyRoute::SerialPort, row.legacy == Lg::Serial);
        EXPECT_EQ(traits.legacyRoute == ELegacyRoute::FtdiBridge, row.legacy == Lg::Ftdi);
        EXPECT_EQ(traits.legacyRoute == ELegacyRoute::TiBridge, row.legacy == Lg::Ti);
        EXPECT_EQ(traits.hidPairedByModel, row.hidPairedByModel);
        EXPECT_EQ(traits.penComputerScreen, row.penComputer);
    }
}
