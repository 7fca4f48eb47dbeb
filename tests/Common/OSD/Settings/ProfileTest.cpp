// Profiles over virtual displays of every family: saved, checked and applied as a display that
// lost its settings needs them back, with the transaction log as the witness of what was written.

#include <gtest/gtest.h>

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Profile.h"
#include "UiDisplayDelegate.h"
#include "VirtualBench.h"

namespace {

using SDelegateBench = TVirtualBench<UiDisplayDelegate>;

std::set<std::string> NamesWith(const SProfileReport& report_I, EProfileOutcome outcome_I) {
    std::set<std::string> names;
    for (const SProfileItem& item : report_I.items) {
        if (item.outcome == outcome_I) {
            names.insert(item.name);
        }
    }
    return names;
}

std::string Shown(const SProfileReport& report_I) {
    std::string text;
    for (const SProfileItem& item : report_I.items) {
        text += item.name + " " + ProfileOutcomeName(item.outcome) + " " + item.detail + "\n";
    }
    return text;
}

SProfile Parsed(const std::string& text_I) {
    std::string problem;
    std::optional<SProfile> profile = ProfileFromText(text_I, problem);
    EXPECT_TRUE(profile.has_value()) << problem;
    return profile.value_or(SProfile{});
}

// A state the simulator can put a display in: its power source and its colour mode.
struct SDeskState {
    std::string name;
    std::optional<uint16_t> batteryMode;  // 0xF4 as the display's own menu leaves it
    std::optional<int32_t> colourMode;
};

std::vector<SDeskState> StatesOf(const SVirtualDisplayModel& model_I) {
    std::vector<SDeskState> states{{"as delivered", {}, {}}};
    SDelegateBench probe(model_I);
    EXPECT_TRUE(probe.InitializeAndReadAll());
    if (probe.display->Supports(0xF4)) {
        states.push_back({"on mains", 0, {}});
        states.push_back({"on battery, standard", 2, {}});
        states.push_back({"on battery, saver", 3, {}});
    }
    for (const SEntry& mode : probe.cdisplay->GetSetting(ESetting::ColorSettingMode).entries) {
        states.push_back({"colour mode " + std::to_string(mode.value), {}, mode.value});
    }
    return states;
}

void PutIn(SDelegateBench& bench_I, const SDeskState& state_I) {
    if (state_I.batteryMode) {
        bench_I.display->SetValueFromMenu(0xF4, *state_I.batteryMode);
    }
    ASSERT_TRUE(bench_I.InitializeAndReadAll());
    if (state_I.colourMode) {
        ASSERT_TRUE(bench_I.cdisplay->SetColorSettingMode(*state_I.colourMode));
    }
}

}  // namespace

TEST(Profile, WhatIsSavedInAnyStateOfAnyFamilyIsAppliedInEveryOtherWithoutRefusals) {
    for (const SVirtualDisplayModel& model : VirtualDisplayPresets()) {
        const std::vector<SDeskState> states = StatesOf(model);
        for (const SDeskState& saved : states) {
            SDelegateBench source(model);
            PutIn(source, saved);
            // Saved as the tool saves it: to the file's text and back.
            std::string problem;
            const std::optional<SProfile> profile =
                ProfileFromText(ProfileText(CaptureProfile(*source.cdisplay, model.key, "S1")), problem);
            ASSERT_TRUE(profile.has_value()) << model.key << ", " << saved.name << ": " << problem;
            for (const SDeskState& now : states) {
                SCOPED_TRACE(model.key + ": saved " + saved.name + ", applied " + now.name);
                SDelegateBench target(model);
                PutIn(target, now);
                const SProfileReport applied = ApplyProfile(*target.cdisplay, *profile);
                EXPECT_FALSE(applied.Any(EProfileOutcome::Failed)) << Shown(applied);
                EXPECT_FALSE(applied.Any(EProfileOutcome::Invalid)) << Shown(applied);
                EXPECT_FALSE(applied.Any(EProfileOutcome::Skipped)) << Shown(applied);
                if (saved.batteryMode == 2 || saved.batteryMode == 3) {
                    EXPECT_EQ(target.display->Value(0xF4), *saved.batteryMode);
                }
                if (saved.batteryMode == 0 && now.batteryMode) {
                    EXPECT_EQ(target.display->Value(0xF4),
                              *now.batteryMode);  // on mains: nothing to give back
                }
            }
        }
    }
}

TEST(Profile, OnEveryFamilyAPowerCycleThatLostTheBrightnessIsFoundAndOnlyThatIsWrittenBack) {
    for (const SVirtualDisplayModel& model : VirtualDisplayPresets()) {
        SCOPED_TRACE(model.key);
        SDelegateBench bench(model);
        ASSERT_TRUE(bench.InitializeAndReadAll());
        const uint8_t brightnessCode = bench.cdisplay->Traits().SettingCode(ESetting::Brightness);
        ASSERT_TRUE(bench.cdisplay->SetBrightness(63));
        const SProfile profile = CaptureProfile(*bench.cdisplay, model.key, "S1");

        // Nothing drifted: checking and applying read and write nothing back.
        bench.display->ClearTransactions();
        EXPECT_TRUE(CheckProfile(*bench.cdisplay, profile).Matches());
        const SProfileReport calm = ApplyProfile(*bench.cdisplay, profile);
        EXPECT_TRUE(calm.Matches());
        EXPECT_FALSE(calm.Any(EProfileOutcome::Restored));
        EXPECT_TRUE(CodesWritten(*bench.display).empty());

        // The display forgets what was not saved.
        bench.display->PowerCycle();
        const SProfileReport check = CheckProfile(*bench.cdisplay, profile);
        EXPECT_EQ(NamesWith(check, EProfileOutcome::Drifted), std::set<std::string>{"brightness"});
        bench.display->ClearTransactions();
        const SProfileReport applied = ApplyProfile(*bench.cdisplay, profile);
        EXPECT_EQ(NamesWith(applied, EProfileOutcome::Restored), std::set<std::string>{"brightness"});
        EXPECT_EQ(CodesWritten(*bench.display), std::vector<uint8_t>{brightnessCode});
        EXPECT_EQ(bench.display->Value(brightnessCode), 63);
        EXPECT_TRUE(CheckProfile(*bench.cdisplay, profile).Matches());
    }
}

TEST(Profile, TheColourModeIsWrittenBeforeItsValuesAndTheOtherModesValuesAreLeftAlone) {
    // The pen computers choose the colour mode with display presets (0xF0 = 7, 8, 9).
    SDelegateBench bench("slate-13-pro");
    ASSERT_TRUE(bench.InitializeAndReadAll());
    ASSERT_TRUE(bench.cdisplay->SetColorTemperature(6));  // 6500 K, temperature mode
    ASSERT_EQ(bench.display->Value(0xF0), 7);
    bench.display->ClearTransactions();
    const SProfile profile = Parsed(R"({"settings": {"colour-space": "adobe-rgb", "colour-temperature": 4,
                                        "colour-mode": "space", "brightness": 40}})");
    const SProfileReport report = ApplyProfile(*bench.cdisplay, profile);
    EXPECT_FALSE(report.Any(EProfileOutcome::Failed)) << Shown(report);
    // 0xF0 first, then the colour space, then brightness; colour temperature (0x14) untouched.
    EXPECT_EQ(CodesWritten(*bench.display), (std::vector<uint8_t>{0xF0, 0xE3, 0x10}));
    EXPECT_EQ(bench.display->Value(0xF0), 8);
    EXPECT_EQ(bench.display->Value(0xE3), 1);  // Adobe RGB
    EXPECT_EQ(bench.cdisplay->ColorSettingMode(), eColorModeSpace);
    EXPECT_EQ(NamesWith(report, EProfileOutcome::Restored),
              (std::set<std::string>{"colour-mode", "colour-space", "brightness"}));
}

TEST(Profile, AProfileOfOneFamilyAppliedToAnotherAppliesWhatBothHaveAndNamesWhatItSkipped) {
    SDelegateBench studio("studio-24");
    ASSERT_TRUE(studio.InitializeAndReadAll());
    ASSERT_TRUE(studio.cdisplay->SetFanSpeed(eFanSpeed_LowSpeed));
    ASSERT_TRUE(studio.cdisplay->SetContrast(41));
    const SProfile profile = CaptureProfile(*studio.cdisplay, "Studio 24", "S2");

    SDelegateBench early("canvas-12");  // no fan, no colour space
    ASSERT_TRUE(early.InitializeAndReadAll());
    const SProfileReport report = ApplyProfile(*early.cdisplay, profile);
    EXPECT_FALSE(report.Any(EProfileOutcome::Failed));
    const std::set<std::string> skipped = NamesWith(report, EProfileOutcome::Skipped);
    EXPECT_TRUE(skipped.count("fan") == 1 && skipped.count("colour-space") == 1) << Shown(report);
    for (const SProfileItem& item : report.items) {
        if (item.outcome == EProfileOutcome::Skipped) {
            EXPECT_FALSE(item.detail.empty()) << item.name;
        }
    }
    EXPECT_EQ(early.display->Value(0x12), 41);
}

TEST(Profile, ADisplayThatStopsAnsweringMidRestoreIsReportedAndNothingAfterIsClaimed) {
    SDelegateBench bench("canvas-22-pro");
    ASSERT_TRUE(bench.InitializeAndReadAll());
    const SProfile profile = Parsed(R"({"settings": {"brightness": 33, "contrast": 44, "sharpness": 3}})");
    // The display stops answering after brightness went back: contrast's read is unanswered.
    bench.display->Faults().FailNext(EFault::NoReply, 1000, CFaultPlan::kAny, 0x12);
    bench.display->ClearTransactions();
    const SProfileReport report = ApplyProfile(*bench.cdisplay, profile);
    EXPECT_FALSE(report.Matches());
    EXPECT_EQ(NamesWith(report, EProfileOutcome::Restored), std::set<std::string>{"brightness"});
    EXPECT_EQ(NamesWith(report, EProfileOutcome::Failed), (std::set<std::string>{"contrast", "sharpness"}));
    EXPECT_EQ(bench.display->CountRequests(0x01, 0x87), 0u);  // not asked again and again
    EXPECT_EQ(bench.display->Value(0x10), 33);
}

TEST(Profile, AValuePlannedWhileItsReadFailedIsStillWrittenOnceTheDisplayAnswers) {
    // A fresh display object, as the keeper and the tool make after a search: the plan's read of
    // sharpness is lost (no range known yet), the read just before the write answers.
    SDelegateBench bench("canvas-22-pro");
    ASSERT_TRUE(bench.Initialize());
    bench.display->Faults().FailNext(EFault::NoReply, 1, 0x01, 0x87);
    const SProfileReport report = ApplyProfile(*bench.cdisplay, Parsed(R"({"settings": {"sharpness": 4}})"));
    EXPECT_GE(bench.display->CountRequests(0x01, 0x87), 2u);
    EXPECT_EQ(NamesWith(report, EProfileOutcome::Restored), std::set<std::string>{"sharpness"})
        << Shown(report);
    EXPECT_EQ(bench.display->Value(0x87), 4);
}

TEST(Profile, HostileProfilesAreRefusedOrTheirBadValuesNamedNeverWritten) {
    std::string problem;
    for (const char* text : {"", "{", "[]", "{\"settings\": []}", "{\"settings\": 3}", "null"}) {
        problem.clear();
        EXPECT_FALSE(ProfileFromText(text, problem).has_value()) << text;
        EXPECT_EQ(problem, "not a profile (a JSON object with \"settings\")");
    }
    SDelegateBench bench("canvas-22-pro");
    ASSERT_TRUE(bench.InitializeAndReadAll());
    bench.display->ClearTransactions();
    const SProfile profile = Parsed(R"({"model": 5, "settings": {
        "brightness": 4294967297, "contrast": true, "gamma": 2.25, "sharpness": {"a": 1},
        "volume": 3, "Brightness": 20, "colour-space": "ultraviolet", "gain-red": 250,
        "lcd-conditioning": 1}})");
    const SProfileReport report = ApplyProfile(*bench.cdisplay, profile);
    EXPECT_TRUE(CodesWritten(*bench.display).empty());
    EXPECT_EQ(NamesWith(report, EProfileOutcome::Invalid),
              (std::set<std::string>{"brightness", "contrast", "gamma", "sharpness", "volume", "Brightness",
                                     "colour-space", "gain-red"}));  // 250: refused, as a set of it is
    EXPECT_EQ(NamesWith(report, EProfileOutcome::Skipped), (std::set<std::string>{"lcd-conditioning"}));
}
