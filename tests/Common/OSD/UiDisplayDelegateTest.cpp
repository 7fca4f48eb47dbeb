#include <gtest/gtest.h>

#include "DdcPackets.h"
#include "LogCapture.h"
#include "StringIds.h"
#include "UiDisplayDelegate.h"
#include "VirtualBench.h"

namespace {

using SDelegateBench = TVirtualBench<UiDisplayDelegate>;

// The set requests the display received, as (code, value).
std::vector<std::pair<int, int>> Sets(const CVirtualDisplay& display) {
    std::vector<std::pair<int, int>> sets;
    for (const STransaction& t : display.Transactions()) {
        if (t.request.size() == 8 && t.request[3] == ddcCC_SetVCPFeatureRequest) {
            sets.emplace_back(t.request[4], (t.request[5] << 8) | t.request[6]);
        }
    }
    return sets;
}

using Writes = std::vector<std::pair<int, int>>;

std::vector<long long> Ms(std::initializer_list<long long> values) {
    return values;
}

std::unique_ptr<SDelegateBench> Ready(const char* key) {
    auto bench = std::make_unique<SDelegateBench>(key);
    EXPECT_TRUE(bench->InitializeAndReadAll()) << key;
    return bench;
}

}  // namespace

TEST(UiDisplayDelegate, BrightnessGoesToTheFamilysCode) {
    const std::pair<const char*, int> cases[] = {
        {"canvas-24-touch", vcpC_BacklightControl},  // touch
        {"studio-24", vcpC_BacklightLevelWhite},     // family 0x03A6
        {"canvas-16-go", vcpC_BacklightLevelWhite},  // battery
        {"studio-32", vcpC_BacklightLevelWhite},     // family 0x03BD
        {"canvas-22-pro", vcpC_Luminance},           // pro
        {"slate-13", vcpC_Luminance},                // pen computer
        {"canvas-13-hd", vcpC_Luminance},            // family 0x032B
    };
    for (const auto& [key, code] : cases) {
        SCOPED_TRACE(key);
        auto bench = Ready(key);
        EXPECT_TRUE(bench->cdisplay->SetBrightness(33));
        EXPECT_EQ(Sets(*bench->display), (Writes{{code, 33}}));
        EXPECT_EQ(bench->display->Value(static_cast<uint8_t>(code)), 33);
        EXPECT_TRUE(bench->cdisplay->SetContrast(44));
        EXPECT_EQ(bench->display->Value(vcpC_Contrast), 44);
    }
}

TEST(UiDisplayDelegate, GammaChoicesFollowTheFamily) {
    auto hd = Ready("canvas-13-hd");  // family 0x032B: 2.2 and 2.4 only
    EXPECT_FALSE(hd->cdisplay->SetGamma(0));
    EXPECT_FALSE(hd->cdisplay->SetGamma(3));
    EXPECT_TRUE(hd->cdisplay->SetGamma(2));
    EXPECT_TRUE(hd->cdisplay->SetGamma(1));
    EXPECT_EQ(Sets(*hd->display), (Writes{{0x72, 2}, {0x72, 1}}));
    EXPECT_FALSE(hd->cdisplay->SetGammaValue(20));

    auto slate = Ready("slate-13");  // pen computer: choice + 1
    EXPECT_TRUE(slate->cdisplay->SetGamma(0));
    EXPECT_TRUE(slate->cdisplay->SetGamma(2));
    EXPECT_FALSE(slate->cdisplay->SetGamma(3));
    EXPECT_EQ(Sets(*slate->display), (Writes{{0x72, 1}, {0x72, 3}}));
    SSettingState gamma = slate->cdisplay->GetSetting(ESetting::Gamma);
    EXPECT_EQ(
        gamma.entries,
        (std::vector<SEntry>{{StringId::kGamma1_9, 0}, {StringId::kGamma2_2, 1}, {StringId::kGamma2_4, 2}}));
    EXPECT_EQ(gamma.value, 2);

    auto pro = Ready("canvas-22-pro");  // pro: the fine scale
    EXPECT_TRUE(pro->cdisplay->SetGammaValue(25));
    EXPECT_EQ(Sets(*pro->display), (Writes{{0x72, 25}}));
    gamma = pro->cdisplay->GetSetting(ESetting::Gamma);
    ASSERT_EQ(gamma.entries.size(), 36u);
    EXPECT_EQ(gamma.entries.front(), (SEntry{StringId::kGammaFine0_5, 5}));
    EXPECT_EQ(gamma.entries[17], (SEntry{2072, 22}));
    EXPECT_EQ(gamma.entries.back(), (SEntry{StringId::kGammaFine4_0, 40}));
    EXPECT_EQ(gamma.value, 25);

    auto studio = Ready("studio-24");  // no gamma at all
    EXPECT_FALSE(studio->cdisplay->SetGamma(1));
    EXPECT_FALSE(studio->cdisplay->GetSetting(ESetting::Gamma).supported);
    EXPECT_TRUE(Sets(*studio->display).empty());
}

TEST(UiDisplayDelegate, FamilyRulesOfTheAdvancedSetters) {
    auto pro = Ready("canvas-22-pro");  // family 0x037C
    ASSERT_TRUE(pro->cdisplay->SetUniformityCompensation(1));
    EXPECT_TRUE(pro->cdisplay->SetDynamicContrast(1));
    EXPECT_TRUE(pro->cdisplay->SetDynamicContrast(0));
    EXPECT_EQ(Sets(*pro->display), (Writes{{0xE0, 1}, {0xE0, 0}, {0xE8, 1}, {0xE8, 0}}));
    EXPECT_FALSE(pro->cdisplay->SetScanMode(1));  // not a scan-mode family

    auto studio = Ready("studio-24");  // family 0x03A6
    EXPECT_FALSE(studio->cdisplay->SetPowerLEDBrightness(1));
    EXPECT_FALSE(studio->cdisplay->GetSetting(ESetting::PowerLedBrightness).supported);
    EXPECT_TRUE(studio->cdisplay->SetScanMode(1));
    EXPECT_FALSE(studio->cdisplay->SetScanMode(2));
    EXPECT_TRUE(studio->cdisplay->SetSharpness(4));
    EXPECT_TRUE(studio->cdisplay->SetEnergySmart(1));
    EXPECT_TRUE(studio->cdisplay->SetAutoPowerDown(0));
    EXPECT_TRUE(studio->cdisplay->SetFanSpeed(eFanSpeed_LowSpeed));
    EXPECT_EQ(Sets(*studio->display), (Writes{{0xDA, 1}, {0x87, 4}, {0xE9, 1}, {0xEE, 0}, {0xF3, 0}}));

    auto studio32 = Ready("studio-32");  // family 0x03BD: its LED dims
    EXPECT_TRUE(studio32->cdisplay->SetPowerLEDBrightness(1));
    CLogCapture log;
    EXPECT_TRUE(studio32->cdisplay->SetFanSpeed(eFanSpeed_Auto));
    EXPECT_TRUE(studio32->cdisplay->SetFanSpeed(7));
    EXPECT_EQ(log.Asserts(),
              std::vector<std::string>{
                  "fanSpeed_I >= EFanSpeed::eFanSpeed_LowSpeed && fanSpeed_I <= EFanSpeed::eFanSpeed_Auto"});
    EXPECT_EQ(Sets(*studio32->display), (Writes{{0xEF, 1}, {0xF3, 0}}));  // 1 was already current

    auto hd = Ready("canvas-13-hd");
    EXPECT_TRUE(hd->cdisplay->SetOSDLanguage(0x04));
    EXPECT_EQ(hd->display->Value(vcpC_OSDLanguage), 0x04);
    auto conditioning = Ready("canvas-27-pro");
    EXPECT_TRUE(conditioning->cdisplay->SetLCDConditioning(1));
    EXPECT_EQ(Sets(*conditioning->display), (Writes{{0xEA, 1}}));
}

TEST(UiDisplayDelegate, RevertWritesAStartedLcdConditioningBackAndAResetKeepsTheStartWorking) {
    auto pro = Ready("canvas-27-pro");
    UiDisplayDelegate& delegate = *pro->cdisplay;
    ASSERT_TRUE(delegate.SetLCDConditioning(1));
    EXPECT_TRUE(delegate.Revert());
    EXPECT_EQ(Sets(*pro->display), (Writes{{0xEA, 1}, {0xEA, 0}}));
    // The advanced page's start: revert, reset 0xEA's data, write 1; also after a Save.
    pro->display->ClearTransactions();
    ASSERT_TRUE(delegate.SetLCDConditioning(1));
    EXPECT_TRUE(delegate.Save());
    delegate.Revert();
    delegate.ResetOptionData(vcpC_LCDConditioning);
    EXPECT_TRUE(delegate.SetLCDConditioning(1));
    EXPECT_EQ(Sets(*pro->display), (Writes{{0xEA, 1}, {0xEA, 1}}));
}

TEST(UiDisplayDelegate, BatteryModeNeedsAValidBatteryValue) {
    auto go = Ready("canvas-16-go");
    EXPECT_TRUE(go->cdisplay->SetBatteryMode(1));
    EXPECT_TRUE(go->cdisplay->SetBatteryMode(0));
    EXPECT_FALSE(go->cdisplay->SetBatteryMode(2));
    EXPECT_EQ(Sets(*go->display), (Writes{{0xF4, 3}, {0xF4, 2}}));
    EXPECT_EQ(go->cdisplay->GetSetting(ESetting::BatteryMode).value, 0);

    // When 0xF4 cannot be read, nothing is written.
    go->display->ClearTransactions();
    go->cdisplay->ResetOptionData(vcpC_BatteryMode);
    go->display->Faults().FailNext(EFault::NoReply, 1, ddcCC_GetVCPFeatureRequest, vcpC_BatteryMode);
    EXPECT_FALSE(go->cdisplay->SetBatteryMode(1));
    EXPECT_TRUE(Sets(*go->display).empty());

    auto studio = Ready("studio-24");  // no battery
    EXPECT_FALSE(studio->cdisplay->SetBatteryMode(0));
    EXPECT_TRUE(studio->display->Transactions().empty());
}

TEST(UiDisplayDelegate, EveryReportedFailureLeavesItsDetailAndTheNextOperationClearsIt) {
    auto go = Ready("canvas-16-go");
    UiDisplayDelegate& delegate = *go->cdisplay;
    // A write the display does not take.
    go->display->Faults().FailNext(EFault::NoReply, 2, ddcCC_SetVCPFeatureRequest, vcpC_Contrast);
    EXPECT_FALSE(delegate.SetContrast(20));
    EXPECT_EQ(delegate.LastFailure(), "Contrast: Send request failed");
    // The next operation starts clean, whether it succeeds...
    EXPECT_TRUE(delegate.SetContrast(21));
    EXPECT_EQ(delegate.LastFailure(), "");
    // ...or fails for a reason of its own: Save at the display's store step,
    go->display->Faults().FailNext(EFault::NoReply, 1, ddcCC_SaveCurrentSettingsRequest);
    EXPECT_FALSE(delegate.Save());
    EXPECT_EQ(delegate.LastFailure(), "Save: the display did not confirm storing the settings");
    // a battery mode that is not a choice,
    EXPECT_FALSE(delegate.SetBatteryMode(5));
    EXPECT_EQ(delegate.LastFailure(), "Battery Mode: no such choice");
    // a battery mode that cannot be read,
    delegate.ResetOptionData(vcpC_BatteryMode);
    go->display->Faults().FailNext(EFault::NoReply, 1, ddcCC_GetVCPFeatureRequest, vcpC_BatteryMode);
    EXPECT_FALSE(delegate.SetBatteryMode(1));
    EXPECT_EQ(delegate.LastFailure(), "Battery Mode: Send request failed");
    // and a colour reset the display does not offer.
    UiDisplayDelegate plain(nullptr, 0x1070);
    ASSERT_TRUE(
        plain.Initialize("(prot(monitor)type(lcd)model(x)cmds(01 02 03 0C F3)vcp(10 12)mccs_ver(2.2))"));
    EXPECT_FALSE(plain.ResetColor());
    EXPECT_EQ(plain.LastFailure(), "Restore Factory Color Defaults: not supported by this display");
    EXPECT_TRUE(delegate.Revert());
    EXPECT_EQ(delegate.LastFailure(), "");
}

TEST(UiDisplayDelegate, SaveStoresOnlyTheChangesWithOneSaveCommand) {
    auto bench = Ready("canvas-27-pro");
    UiDisplayDelegate& delegate = *bench->cdisplay;
    EXPECT_FALSE(delegate.HasUnsavedChanges());
    ASSERT_TRUE(delegate.SetBrightness(20));
    ASSERT_TRUE(delegate.SetContrast(70));
    EXPECT_TRUE(delegate.HasUnsavedChanges());
    bench->display->ClearTransactions();
    bench->clock.ClearPauses();

    EXPECT_TRUE(delegate.Save());
    EXPECT_EQ(bench->display->CountRequests(ddcCC_SaveCurrentSettingsRequest), 1u);
    EXPECT_EQ(bench->display->Transactions().size(), 1u);
    EXPECT_EQ(bench->clock.PausesMs(), Ms({220, 200}));  // the save's wait, then the settle pause
    EXPECT_FALSE(delegate.HasUnsavedChanges());
    EXPECT_EQ(delegate.Option(vcpC_Luminance)->GetOriginal(), 20);
    EXPECT_EQ(delegate.Option(vcpC_Sharpness)->GetOriginal(), 2);

    // What was saved survives a power cycle; a later unsaved change does not.
    ASSERT_TRUE(delegate.SetContrast(10));
    bench->display->PowerCycle();
    EXPECT_EQ(bench->display->Value(vcpC_Luminance), 20);
    EXPECT_EQ(bench->display->Value(vcpC_Contrast), 70);

    // A display that does not acknowledge the save reports it.
    bench->display->Faults().FailNext(EFault::NoReply, 1, ddcCC_SaveCurrentSettingsRequest);
    EXPECT_FALSE(delegate.Save());
}

TEST(UiDisplayDelegate, RevertRestoresTheOriginalsWithOneRetryAfter60ms) {
    auto bench = Ready("studio-24");
    UiDisplayDelegate& delegate = *bench->cdisplay;
    ASSERT_TRUE(delegate.SetContrast(70));
    ASSERT_TRUE(delegate.SetColorSpace(csc_AdobeRGB));
    EXPECT_EQ(delegate.ColorSettingMode(), eColorModeSpace);
    bench->display->ClearTransactions();
    bench->clock.ClearPauses();

    CLogCapture log;
    bench->display->Faults().FailNext(EFault::NoReply, 1, ddcCC_SetVCPFeatureRequest, vcpC_Contrast);
    EXPECT_TRUE(delegate.Revert());
    EXPECT_EQ(bench->display->Value(vcpC_Contrast), 50);
    EXPECT_EQ(bench->display->Value(vcpC_ColorSpace), 0);
    EXPECT_EQ(Sets(*bench->display), (Writes{{0x12, 50}, {0x12, 50}, {0xE3, 0}}));
    // Contrast: write, 50, 60, write, 50, read; colour space: write, 50, read.
    EXPECT_EQ(bench->clock.PausesMs(), Ms({70, 50, 60, 70, 50, 70, 70, 50, 70}));
    EXPECT_EQ(log.Asserts(), std::vector<std::string>{"!opt.second->HasError()"});
    EXPECT_FALSE(delegate.HasUnsavedChanges());
    EXPECT_EQ(delegate.ColorSettingMode(), eColorModeTemperature);
}

TEST(UiDisplayDelegate, FactoryResetWaitsTenSecondsOnlyForTheSlowScalers) {
    const std::pair<const char*, bool> cases[] = {
        {"canvas-13-hd", true}, {"canvas-22-pro", true},    {"slate-13", true},
        {"studio-24", false},   {"canvas-24-touch", false}, {"canvas-12", false},
    };
    int withPresets = 0;
    for (const auto& [key, slow] : cases) {
        SCOPED_TRACE(key);
        auto bench = Ready(key);
        ASSERT_TRUE(bench->cdisplay->SetContrast(90));
        bench->clock.ClearPauses();
        EXPECT_TRUE(bench->cdisplay->FactoryReset());
        std::vector<long long> expected = {70, 50, 5000};
        if (slow) {
            expected.push_back(10000);
        }
        EXPECT_EQ(bench->clock.PausesMs(), expected);
        EXPECT_EQ(bench->display->Value(vcpC_Contrast), 50);
        // Everything is read afresh, the colour mode's preset too.
        EXPECT_FALSE(bench->cdisplay->Option(vcpC_Contrast)->HasOriginal());
        if (VCPOptionPtr presets = bench->cdisplay->Option(vcpC_DisplayPresets)) {
            EXPECT_FALSE(presets->HasOriginal());
            ++withPresets;
        }
        EXPECT_EQ(bench->cdisplay->GetSetting(ESetting::Contrast).value, 50);
        // And a second reset is sent again.
        EXPECT_TRUE(bench->cdisplay->FactoryReset());
        EXPECT_EQ(bench->display->CountRequests(ddcCC_SetVCPFeatureRequest, vcpC_RestoreFactoryDefaults), 2u);
    }
    EXPECT_GT(withPresets, 0);
}

TEST(UiDisplayDelegate, ResetColorNeedsRestoreFactoryColorDefaults) {
    auto bench = Ready("canvas-27-pro");
    ASSERT_TRUE(bench->cdisplay->SetColorSpace(csc_AdobeRGB));
    ASSERT_TRUE(bench->cdisplay->SetContrast(80));
    EXPECT_TRUE(bench->cdisplay->ResetColor());
    EXPECT_EQ(bench->display->Value(vcpC_ColorSpace), 0);
    EXPECT_EQ(bench->display->Value(vcpC_Contrast), 80);  // not a colour setting
    EXPECT_EQ(bench->cdisplay->ColorSettingMode(), eColorModeTemperature);

    CLogCapture log;
    SDelegateBench without("studio-24");
    ASSERT_TRUE(without.cdisplay->Initialize(
        "(prot(monitor)type(lcd)model(x)cmds(01)vcp(04 10 12 14(05 08))mccs_ver(2.2))"));
    EXPECT_FALSE(without.cdisplay->ResetColor());
    EXPECT_TRUE(log.Contains("UiDisplayDelegate::SetResetColor - not supported\n"));
    EXPECT_EQ(without.display->CountRequests(ddcCC_SetVCPFeatureRequest), 0u);

    // A display that takes the request but never acknowledges it.
    log.Clear();
    bench->display->Faults().FailNext(EFault::NoReply, 2, ddcCC_SetVCPFeatureRequest,
                                      vcpC_RestoreFactoryColorDefaults);
    EXPECT_FALSE(bench->cdisplay->ResetColor());
    EXPECT_EQ(log.Asserts(),
              std::vector<std::string>{"\"FAILED vcpC_RestoreFactoryColorDefaults - should have worked!\""});
}

TEST(UiDisplayDelegate, ColourTemperatureAndSpaceOfferWhatTheDisplayAllows) {
    auto hd = Ready("canvas-13-hd");  // lists 01 04 05 06 08 0B, shows 5000, 5700, 6500, 9300 K
    SSettingState temperature = hd->cdisplay->GetSetting(ESetting::ColorTemperature);
    EXPECT_EQ(
        temperature.entries,
        (std::vector<SEntry>{
            {StringId::k5000K, 4}, {StringId::k5700K, 11}, {StringId::k6500K, 5}, {StringId::k9300K, 8}}));
    EXPECT_EQ(temperature.value, 5);
    EXPECT_TRUE(hd->cdisplay->SetColorTemperature(cpc_9300K));
    EXPECT_EQ(Sets(*hd->display), (Writes{{0x14, 8}}));

    auto early = Ready("canvas-12");  // keeps its presets at 0xE4
    EXPECT_EQ(early->cdisplay->GetSetting(ESetting::ColorTemperature).entries.size(), 4u);
    EXPECT_TRUE(early->cdisplay->SetColorTemperature(cpc_7500K));
    EXPECT_EQ(Sets(*early->display), (Writes{{0xE4, 6}}));
    SSettingState modes = early->cdisplay->GetSetting(ESetting::ColorSettingMode);
    EXPECT_EQ(modes.entries, (std::vector<SEntry>{{StringId::kColorTemperatureMode, eColorModeTemperature},
                                                  {StringId::kCustomColorMode, eColorModeCustom}}));
    EXPECT_FALSE(early->cdisplay->GetSetting(ESetting::ColorSpace).supported);

    // The pen computers switch modes with display presets first.
    auto slate = Ready("slate-13");
    EXPECT_EQ(slate->cdisplay->ColorSettingMode(), eColorModeTemperature);
    EXPECT_TRUE(slate->cdisplay->SetColorSpace(csc_AdobeRGB));
    EXPECT_EQ(Sets(*slate->display), (Writes{{0xF0, 8}, {0xE3, 1}}));
    EXPECT_EQ(slate->cdisplay->ColorSettingMode(), eColorModeSpace);
    EXPECT_EQ(slate->cdisplay->GetSetting(ESetting::ColorSpace).entries,
              (std::vector<SEntry>{
                  {StringId::kSpaceAdobeRGB, 1}, {StringId::kSpaceSRGB, 0}, {StringId::kSpaceRec709, 3}}));
    EXPECT_TRUE(slate->cdisplay->SetColorSettingMode(eColorModeCustom));
    EXPECT_EQ(Sets(*slate->display).back(), (std::pair<int, int>{0xF0, 9}));

    // Custom colour on the pro models switches uniformity compensation off.
    auto pro = Ready("canvas-22-pro");
    ASSERT_TRUE(pro->cdisplay->SetUniformityCompensation(1));
    EXPECT_TRUE(pro->cdisplay->SetColorSettingMode(eColorModeCustom));
    EXPECT_EQ(Sets(*pro->display), (Writes{{0xE0, 1}, {0xE0, 0}}));
    EXPECT_TRUE(pro->cdisplay->HasUnsavedChanges());
    EXPECT_FALSE(pro->cdisplay->SetColorSettingMode(7));
}

TEST(UiDisplayDelegate, AspectRatioUsesTheFamilysCode) {
    const std::pair<const char*, int> cases[] = {{"canvas-22-pro", vcpC_AspectRatio},
                                                 {"canvas-24-touch", vcpC_DisplayScaling},
                                                 {"canvas-13-hd", vcpC_DisplayScaling},
                                                 {"studio-24", vcpC_ScanMode},
                                                 {"canvas-16-go", vcpC_ScanMode}};
    for (const auto& [key, code] : cases) {
        SCOPED_TRACE(key);
        auto bench = Ready(key);
        SSettingState aspect = bench->cdisplay->GetSetting(ESetting::AspectRatio);
        ASSERT_TRUE(aspect.supported);
        ASSERT_GE(aspect.entries.size(), 2u);
        const SEntry other = aspect.entries[1];
        EXPECT_TRUE(bench->cdisplay->SetAspectRatio(other.value));
        EXPECT_EQ(Sets(*bench->display), (Writes{{code, other.value}}));
    }
    auto slate = Ready("slate-13");
    EXPECT_FALSE(slate->cdisplay->GetSetting(ESetting::AspectRatio).supported);
    EXPECT_FALSE(slate->cdisplay->SetAspectRatio(1));
}

TEST(UiDisplayDelegate, PowerWarningListsRaisedTemperatureAndBrightness) {
    auto bench = Ready("studio-32");
    UiDisplayDelegate& delegate = *bench->cdisplay;
    EXPECT_TRUE(delegate.PowerIncreasingChanges().empty());
    ASSERT_TRUE(delegate.SetBrightness(90));
    EXPECT_EQ(delegate.PowerIncreasingChanges(), std::vector<uint32_t>{ePowerKindBrightness});
    ASSERT_TRUE(delegate.SetColorTemperature(cpc_9300K));
    EXPECT_EQ(delegate.PowerIncreasingChanges(),
              (std::vector<uint32_t>{ePowerKindColorTemperature, ePowerKindBrightness}));
    ASSERT_TRUE(delegate.SetColorTemperature(cpc_5000K));
    ASSERT_TRUE(delegate.SetBrightness(10));
    EXPECT_TRUE(delegate.PowerIncreasingChanges().empty());
    EXPECT_TRUE(delegate.HasUnsavedChanges());
}

TEST(UiDisplayDelegate, DarkScreenQuestionFollowsTheFamilysThreshold) {
    auto go = Ready("canvas-16-go");  // battery model: black >= 0.6
    EXPECT_FALSE(go->cdisplay->IsPictureTooDark(70, 50));
    EXPECT_FALSE(go->cdisplay->IsPictureTooDark(41, 50));
    EXPECT_TRUE(go->cdisplay->IsPictureTooDark(40, 50));
    EXPECT_TRUE(go->cdisplay->IsPictureTooDark(80, 20));
    // Contrast above the middle passes white through but does not raise it.
    EXPECT_TRUE(go->cdisplay->IsPictureTooDark(40, 100));
    auto pro = Ready("canvas-22-pro");  // family 0x037C: every channel below 20 (of 255)
    EXPECT_FALSE(pro->cdisplay->IsPictureTooDark(8, 50));
    EXPECT_TRUE(pro->cdisplay->IsPictureTooDark(7, 50));
    auto slate = Ready("slate-13");  // pen computer: black >= 0.75
    EXPECT_FALSE(slate->cdisplay->IsPictureTooDark(25, 50));
    EXPECT_TRUE(slate->cdisplay->IsPictureTooDark(24, 50));
}

TEST(UiDisplayDelegate, CustomColourReadAndWrite) {
    auto bench = Ready("canvas-27-pro");
    UiDisplayDelegate& delegate = *bench->cdisplay;
    EXPECT_EQ(delegate.CustomColorText(), "100, 100, 100");
    EXPECT_EQ(delegate.FirmwareVersionText(), "3.1.4");

    CLogCapture log;
    EXPECT_TRUE(delegate.SetCustomRGBColorMod(eColorModGain, CColor::FromRGB(90, 80, 70)));
    EXPECT_EQ(Sets(*bench->display), (Writes{{0x16, 90}, {0x18, 80}, {0x1A, 70}}));
    CColor gain = delegate.GetCustomRGBColorMod(eColorModGain, true);
    EXPECT_TRUE(gain.IsValid());
    EXPECT_EQ(gain.Red(), 90);
    EXPECT_EQ(gain.Blue(), 70);
    EXPECT_TRUE(delegate.SetCustomRGBColorMod(eColorModHue, CColor::FromRGB(40, 50, 60)));
    EXPECT_EQ(bench->display->Value(vcpC_6AxisHueControlGreen), 50);
    EXPECT_TRUE(log.Asserts().empty());

    // A failing channel stops the rest.
    bench->display->ClearTransactions();
    bench->display->Faults().FailNext(EFault::NoReply, 2, ddcCC_SetVCPFeatureRequest, vcpC_VideoGainGreen);
    EXPECT_FALSE(delegate.SetCustomRGBColorMod(eColorModGain, CColor::FromRGB(10, 20, 30)));
    EXPECT_TRUE(log.Contains("CDisplay::SetCustomRGBColorMod(Gain) GREEN error\n"));
    EXPECT_EQ(bench->display->CountRequests(ddcCC_SetVCPFeatureRequest, vcpC_VideoGainBlue), 0u);
    EXPECT_EQ(bench->display->Value(vcpC_VideoGainRed), 10);  // not undone
    EXPECT_EQ(delegate.LastFailure(), "Video Gain Green: Send request failed");

    // Out-of-range percentages are reported and still written.
    log.Clear();
    EXPECT_TRUE(delegate.SetCustomRGBColorMod(eColorModOffset, CColor::FromRGB(101, 50, 50)));
    EXPECT_EQ(log.Asserts(),
              std::vector<std::string>{"color_I.Red() >= 0 && color_I.Red() <= MAX_COLOR_RGB_PERCENT"});
    delegate.SetAllowRawColorValues(true);
    log.Clear();
    EXPECT_TRUE(delegate.SetCustomRGBColorMod(eColorModOffset, CColor::FromRGB(100, 50, 50)));
    EXPECT_TRUE(log.Asserts().empty());

    // Unknown types fail before any traffic; unsupported adjustments read as the empty record.
    bench->display->ClearTransactions();
    EXPECT_FALSE(delegate.SetCustomRGBColorMod(4, CColor::FromRGB(1, 2, 3)));
    EXPECT_FALSE(delegate.GetCustomRGBColorMod(4, true).IsValid());
    EXPECT_TRUE(
        log.Contains("CDisplay::SetCustomRGBColorMod(Unknown) error, problem with type of color mod\n"));
    EXPECT_TRUE(
        log.Contains("CDisplay::GetCustomRGBColorMod(Unknown) error, problem with type of color mod\n"));
    EXPECT_TRUE(bench->display->Transactions().empty());
    auto early = Ready("canvas-12");
    CColor hue = early->cdisplay->GetCustomRGBColorMod(eColorModHue, false);
    EXPECT_FALSE(hue.IsValid());
    EXPECT_EQ(hue.Black(), 1.0);
    EXPECT_TRUE(log.Contains("CDisplay::GetCustomRGBColorMod(Hue) error, option not supported\n"));
}

TEST(UiDisplayDelegate, SettingStatesDescribeWhatTheDialogsShow) {
    auto bench = Ready("canvas-24-touch");
    UiDisplayDelegate& delegate = *bench->cdisplay;
    SSettingState brightness = delegate.GetSetting(ESetting::Brightness);
    EXPECT_TRUE(brightness.supported && brightness.writable && brightness.valid);
    EXPECT_EQ(brightness.range, (SRange{0, 100}));
    EXPECT_EQ(brightness.value, 70);
    SSettingState led = delegate.GetSetting(ESetting::PowerLedBrightness);
    EXPECT_EQ(led.entries.size(), 4u);
    EXPECT_EQ(led.value, 2);
    SSettingState uniformity = delegate.GetSetting(ESetting::UniformityCompensation);
    EXPECT_EQ(uniformity.entries, (std::vector<SEntry>{{StringId::kOff, 0}, {StringId::kOn, 1}}));
    EXPECT_FALSE(delegate.GetSetting(ESetting::FanSpeed).supported);  // listed, but no fan
    EXPECT_FALSE(delegate.GetSetting(ESetting::BatteryMode).supported);
    SSettingState conditioning = delegate.GetSetting(ESetting::LcdConditioning);
    EXPECT_FALSE(conditioning.supported);

    // The generic setter reaches the same operations.
    EXPECT_TRUE(delegate.SetSetting(ESetting::Sharpness, 3));
    EXPECT_TRUE(delegate.SetSetting(ESetting::AspectRatio, dsc_NoScaling));
    EXPECT_EQ(Sets(*bench->display), (Writes{{0x87, 3}, {0x86, 1}}));
    EXPECT_EQ(delegate.GetSetting(ESetting::AspectRatio).value, dsc_NoScaling);
}

TEST(UiDisplayDelegate, ASetterWhoseFirstReadFailsReportsTheFailureAndWritesNothing) {
    SDelegateBench bench("canvas-22-pro");
    ASSERT_TRUE(bench.Initialize());  // contrast not read yet, as before the dialog shows it
    bench.display->Faults().FailNext(EFault::NoReply, 100, ddcCC_GetVCPFeatureRequest, vcpC_Contrast);
    const int before = bench.display->Value(vcpC_Contrast);
    EXPECT_FALSE(bench.cdisplay->SetContrast(before + 5));
    EXPECT_EQ(bench.display->CountRequests(ddcCC_SetVCPFeatureRequest, vcpC_Contrast), 0u);
    EXPECT_EQ(bench.cdisplay->LastFailure().rfind("Contrast: ", 0), 0u) << bench.cdisplay->LastFailure();

    // Once the display answers, the same change goes through.
    bench.display->Faults().Clear();
    EXPECT_TRUE(bench.cdisplay->SetContrast(before + 5));
    EXPECT_EQ(bench.display->Value(vcpC_Contrast), before + 5);
}
