// The command-line tool over the demo's virtual displays: each command's output and exit code,
// what reached the displays, and profiles.

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <future>
#include <sstream>
#include <thread>

#ifndef _WIN32
#include <sys/stat.h>
#endif

#include "CVirtualDisplayConnector.h"
#include "CommandLineTool.h"
#include "DemoDisplays.h"
#include "DisplayLock.h"
#include "DisplayLockScope.h"
#include "SettingNames.h"
#include "SettingTable.h"
#include "ToolBench.h"
#include "VirtualClock.h"

TEST(CommandLineTool, ListsEveryDisplayWithItsRouteAsTextAndJson) {
    SToolBench bench;
    SRun run = bench.Run({"list"});
    EXPECT_EQ(run.code, CliExit::kDone);
    EXPECT_EQ(run.out,
              "0  Canvas 22 Pro  serial VC1060A40892  via graphics driver  firmware 3.1.2\n"
              "1  Studio 24  serial VC1070A40934  via HID  firmware 6.0.1\n"
              "2  Canvas 12  serial VC1040A40772  via serial  firmware 1.0.8\n"
              "3  Canvas 13 HD  serial VC1043A40811  via FTDI  firmware 2.0.5\n");
    run = bench.Run({"list", "--json"});
    EXPECT_EQ(run.code, CliExit::kDone);
    EXPECT_NE(run.out.find("\"route\": \"HID\""), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("\"serial\": \"VC1043A40811\""), std::string::npos);

    run = bench.Run({"--help"});
    EXPECT_EQ(run.code, CliExit::kDone);
    EXPECT_NE(run.out.find("profile"), std::string::npos);
    run = bench.Run({"set", "--help"});
    EXPECT_EQ(run.code, CliExit::kDone);
    EXPECT_NE(run.out.find("SETTING=VALUE"), std::string::npos) << run.out;
    EXPECT_EQ(bench.Run({}).code, CliExit::kBadUsage);
    EXPECT_EQ(bench.Run({"frobnicate"}).code, CliExit::kBadUsage);
}

TEST(CommandLineTool, GetAndSetGoThroughTheDelegatesPerFamilyCodes) {
    SToolBench bench;
    auto studio = bench.Virtual(1);  // brightness is the white backlight level (0x6B) here
    studio->ClearTransactions();
    SRun run = bench.Run({"set", "1", "brightness=42", "contrast=61"});
    EXPECT_EQ(run.code, CliExit::kDone) << run.err;
    EXPECT_EQ(studio->Value(0x6B), 42);
    EXPECT_EQ(studio->Value(0x12), 61);
    EXPECT_EQ(studio->CountRequests(0x03, 0x10), 0u);  // not Luminance

    run = bench.Run({"get", "1", "brightness", "0x12"});
    EXPECT_EQ(run.code, CliExit::kDone);
    EXPECT_EQ(run.out, "brightness = 42\nContrast = 61\n");
    run = bench.Run({"get", "1", "0x6B"});  // a vendor code goes by the setting it serves
    EXPECT_EQ(run.out, "brightness = 42\n");
    run = bench.Run({"get", "0", "colour-temperature", "--json"});
    EXPECT_NE(run.out.find("\"text\": \"6500k\""), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("\"choices\""), std::string::npos);

    // Values by name; --save stores them.
    run = bench.Run({"set", "0", "colour-temperature=5000k", "--save"});
    EXPECT_EQ(run.code, CliExit::kDone) << run.err;
    EXPECT_EQ(bench.Virtual(0)->SavedValue(0x14), 4);
}

TEST(CommandLineTool, ChoicesGoByTheDialogsLabelsOnEveryFamily) {
    SToolBench bench;
    // The colour mode the program keeps itself (no display here reports it) is still a setting.
    for (const char* display : {"0", "1", "2", "3"}) {
        const SRun mode = bench.Run({"get", display, "colour-mode"});
        EXPECT_EQ(mode.code, CliExit::kDone) << display << ": " << mode.err;
        EXPECT_EQ(mode.out, "colour-mode = 1 (temperature)\n") << display;
    }
    EXPECT_EQ(bench.Run({"set", "0", "colour-mode=space", "colour-space=dci-p3"}).code, CliExit::kDone);
    EXPECT_EQ(bench.Virtual(0)->Value(0xE3), 4);
    SRun run = bench.Run({"set", "0", "colour-space=Adobe-RGB", "gamma=2.4", "aspect-ratio=keep-ratio"});
    EXPECT_EQ(run.code, CliExit::kDone) << run.err;
    auto canvas = bench.Virtual(0);
    EXPECT_EQ(canvas->Value(0xE3), 1);
    EXPECT_EQ(canvas->Value(0xE2), 5);  // keep the picture's proportions, in this family's code
    run = bench.Run({"get", "0", "colour-space", "gamma", "aspect-ratio"});
    EXPECT_EQ(run.out, "colour-space = 1 (adobe-rgb)\ngamma = 24 (2.4)\naspect-ratio = 5 (keep-ratio)\n");

    // The same names whatever code the family uses: the serial model keeps colour temperature in
    // a maker's code, which caps names by the setting rather than by another family's meaning.
    run = bench.Run({"set", "2", "colour-temperature=9300k"});
    EXPECT_EQ(run.code, CliExit::kDone) << run.err;
    EXPECT_EQ(bench.Virtual(2)->Value(0xE4), 8);
    EXPECT_NE(bench.Run({"caps", "2"}).out.find("0xE4  colour-temperature  (read-write)\n        4  5000k\n"),
              std::string::npos);
    run = bench.Run({"set", "1", "fan=low-speed"});
    EXPECT_EQ(run.code, CliExit::kDone) << run.err;
    EXPECT_EQ(bench.Run({"get", "1", "fan"}).out, "fan = 0 (low-speed)\n");

    // A code goes by the code table's names.
    EXPECT_EQ(bench.Run({"set", "0", "0xE3=AdobeRGB"}).code, CliExit::kDone);
    EXPECT_EQ(bench.Run({"get", "0", "0xE3"}).out, "colour-space = 1 (AdobeRGB)\n");

    // A wrong name says which names there are.
    run = bench.Run({"set", "0", "colour-space=p3"});
    EXPECT_EQ(run.code, CliExit::kBadUsage);
    EXPECT_EQ(
        run.err,
        "colour-space=p3: the value is not a number or one of native, adobe-rgb, srgb, rec-709, dci-p3\n");

    // Hand-written profiles may name choices.
    const std::string file = TempFile("vlr-named-profile-test.json");
    std::ofstream(file) << R"({"settings": {"colour-space": "srgb", "gamma": "2.2", "contrast": "loud"}})";
    run = bench.Run({"profile", "apply", "0", file});
    EXPECT_EQ(run.code, CliExit::kBadUsage);
    EXPECT_EQ(run.out, "colour-space: 1 (adobe-rgb) -> 0 (srgb)\ngamma: 24 (2.4) -> 22 (2.2)\n");
    EXPECT_EQ(run.err, "contrast: skipped (\"loud\" is not one of its choices here)\n");
    std::remove(file.c_str());
    EXPECT_EQ(bench.Run({"profile", "apply", "0", file}).err, file + ": cannot be read\n");
}

TEST(CommandLineTool, CapsNamesEachCodeAndTheSettingThatReachesIt) {
    SToolBench bench;
    SRun run = bench.Run({"caps", "0"});
    EXPECT_EQ(run.code, CliExit::kDone);
    EXPECT_NE(run.out.find("0x10  Luminance  (read-write)  as brightness\n"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("0x12  Contrast  (read-write)\n"), std::string::npos);
    EXPECT_NE(run.out.find("0x14  Select Color Preset  (read-write)  as colour-temperature\n"
                           "        4  5000k\n"),
              std::string::npos);
    EXPECT_NE(run.out.find("0x04  Restore Factory Defaults  (write)\n"), std::string::npos);

    // The HID family's backlight code has no standard name; it is shown as what it serves.
    run = bench.Run({"caps", "1", "--json"});
    EXPECT_NE(run.out.find("\"code\": 107,\n    \"name\": \"brightness\",\n    \"setting\": \"brightness\""),
              std::string::npos)
        << run.out;
    EXPECT_EQ(run.out.find("Unsupported VPC Code"), std::string::npos);
    EXPECT_EQ(bench.Run({"caps", "7"}).code, CliExit::kNoSuchDisplay);
}

TEST(CommandLineTool, RefusedValuesWriteNothingAndSayWhy) {
    SToolBench bench;
    auto canvas = bench.Virtual(0);
    const uint16_t brightness = canvas->Value(0x10);
    canvas->ClearTransactions();
    SRun run = bench.Run({"set", "0", "brightness=50", "contrast=101"});
    EXPECT_EQ(run.code, CliExit::kBadUsage);
    EXPECT_EQ(run.err, "contrast=101: outside 0 to 100; nothing was written\n");
    EXPECT_EQ(canvas->Value(0x10), brightness);  // checked before anything was written
    EXPECT_EQ(canvas->CountRequests(0x03, 0x10), 0u);

    run = bench.Run({"set", "0", "colour-space=42"});
    EXPECT_EQ(run.code, CliExit::kBadUsage);
    EXPECT_EQ(run.err,
              "colour-space=42: not one of the values this display offers (7 native, 1 adobe-rgb, 0 srgb, "
              "3 rec-709, 4 dci-p3); nothing was written\n");
    EXPECT_EQ(bench.Run({"set", "0", "fan=1"}).code, CliExit::kBadUsage);  // no fan setting here
    // Written the way get is: the form meant is shown.
    run = bench.Run({"set", "0", "brightness", "30"});
    EXPECT_EQ(run.code, CliExit::kBadUsage);
    EXPECT_EQ(run.err, "brightness 30: write brightness=30; nothing was written\n");
    run = bench.Run({"set", "0", "contrast=40", "brightness"});
    EXPECT_EQ(run.code, CliExit::kBadUsage);
    EXPECT_EQ(run.err, "brightness: write brightness=VALUE; nothing was written\n");
    EXPECT_EQ(canvas->CountRequests(0x03, 0x12), 0u);
    EXPECT_EQ(bench.Run({"get", "0", "0x99"}).code, CliExit::kBadUsage);
    run = bench.Run({"get", "7", "brightness"});
    EXPECT_EQ(run.code, CliExit::kNoSuchDisplay);
    EXPECT_EQ(run.err,
              "no display 7: no display found has that index or serial number (index 0 to 3; see list)\n");
    run = bench.Run({"get", "0", "contrats"});
    EXPECT_EQ(run.code, CliExit::kBadUsage);
    EXPECT_EQ(run.err, "contrats: not a setting name or a VCP code (did you mean contrast?)\n");
    EXPECT_EQ(bench.Run({"get", "VC1070A40934", "brightness"}).code, CliExit::kDone);  // by serial
    run = bench.Run({"set", "0", "brightness=4294967346"});  // 2^32 + 50 must not wrap to 50
    EXPECT_EQ(run.code, CliExit::kBadUsage);
    EXPECT_EQ(run.err, "brightness=4294967346: far outside what any setting takes; nothing was written\n");
    run = bench.Run({"reset", "0", "bogus"});
    EXPECT_EQ(run.code, CliExit::kBadUsage);
    EXPECT_EQ(run.err, "reset takes factory or colour, not bogus\n");

    // A factory reset only when confirmed; a person at a terminal is told what the wait is.
    run = bench.Run({"reset", "0", "factory"});
    EXPECT_EQ(run.code, CliExit::kBadUsage);
    EXPECT_EQ(canvas->CountRequests(0x03, 0x04), 0u);
    EXPECT_EQ(bench.Run({"reset", "0", "factory", "--yes"}).code, CliExit::kDone);
    EXPECT_EQ(canvas->CountRequests(0x03, 0x04), 1u);
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(
        RunCommandLineTool({"reset", "0", "factory", "--yes"}, bench.displays, out, err, {}, {}, {}, true),
        CliExit::kDone);
    EXPECT_EQ(err.str().substr(0, 91),
              "Canvas 22 Pro: back to the factory settings; the display restarts, which takes about 20 "
              "sec");
    EXPECT_EQ(err.str().substr(err.str().size() - 6), " done\n");

    // A display that stops answering: communication failure.
    canvas->Faults().FailNext(EFault::NoReply, 100);
    run = bench.Run({"get", "0", "contrast"});
    EXPECT_EQ(run.code, CliExit::kCommunicationFailure);
    EXPECT_NE(run.err.find("contrast: the display did not answer as expected"), std::string::npos) << run.err;
}

TEST(CommandLineTool, AProfileRoundTripsAndApplyWritesOnlyWhatDiffers) {
    SToolBench bench;
    const std::string file = TempFile("vlr-profile-test.json");
    ASSERT_EQ(bench.Run({"profile", "save", "0", file}).code, CliExit::kDone);
    std::ifstream in(file);
    const std::string text((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    EXPECT_NE(text.find("\"brightness\": 70"), std::string::npos) << text;
    EXPECT_EQ(text.find("lcd-conditioning"), std::string::npos);  // an action, not kept

    ASSERT_EQ(bench.Run({"set", "0", "brightness=30", "contrast=20"}).code, CliExit::kDone);
    auto canvas = bench.Virtual(0);
    canvas->ClearTransactions();
    SRun run = bench.Run({"profile", "apply", "0", file});
    EXPECT_EQ(run.code, CliExit::kDone) << run.err;
    EXPECT_EQ(run.out, "brightness: 30 -> 70\ncontrast: 20 -> 50\n");
    EXPECT_EQ(canvas->Value(0x10), 70);
    size_t sets = 0;
    for (const STransaction& t : canvas->Transactions()) {
        sets += t.request.size() > 3 && t.request[3] == 0x03;
    }
    EXPECT_EQ(sets, 2u);  // nothing else was written

    // A display that refuses a value: reported, the rest still applied.
    ASSERT_EQ(bench.Run({"set", "0", "brightness=30", "contrast=20"}).code, CliExit::kDone);
    canvas->Faults().FailNext(EFault::NoReply, 100, 0x03, 0x12);
    run = bench.Run({"profile", "apply", "0", file});
    EXPECT_EQ(run.code, CliExit::kCommunicationFailure);
    EXPECT_NE(run.err.find("contrast: the display did not answer as expected"), std::string::npos) << run.err;
    EXPECT_EQ(canvas->Value(0x10), 70);

    // Choices are kept by name, so a profile of another family sets the same choices there;
    // only what that display lacks is skipped.
    canvas->Faults().Clear();
    ASSERT_EQ(bench.Run({"set", "0", "contrast=50"}).code, CliExit::kDone);
    ASSERT_EQ(bench.Run({"set", "1", "aspect-ratio=keep-ratio"}).code, CliExit::kDone);
    ASSERT_EQ(bench.Run({"profile", "save", "1", file}).code, CliExit::kDone);
    std::ifstream saved(file);
    const std::string named(std::istreambuf_iterator<char>(saved), {});
    EXPECT_NE(named.find("\"aspect-ratio\": \"keep-ratio\""), std::string::npos) << named;
    EXPECT_NE(named.find("\"colour-temperature\": \"6500k\""), std::string::npos) << named;
    run = bench.Run({"profile", "apply", "0", file});
    EXPECT_EQ(run.code, CliExit::kDone) << run.err;
    EXPECT_EQ(run.out,
              "aspect-ratio: 2 (full-screen) -> 5 (keep-ratio)\nfan: skipped (not on this display)\n");
    EXPECT_EQ(canvas->Value(0xE2), 5);

    // A value the display refuses is refused as set refuses it: exit code 1, nothing written.
    std::ofstream(file) << R"({"settings": {"brightness": -1}})";
    canvas->ClearTransactions();
    run = bench.Run({"profile", "apply", "0", file});
    EXPECT_EQ(run.code, CliExit::kBadUsage);
    EXPECT_EQ(run.err, "brightness: skipped (\"-1\" is not a value this display offers)\n");
    std::ofstream(file) << R"({"settings": {"brightness": 4294967346}})";  // 2^32 + 50, never cut to 50
    run = bench.Run({"profile", "apply", "0", file});
    EXPECT_EQ(run.code, CliExit::kBadUsage);
    EXPECT_EQ(run.err, "brightness: skipped (\"4294967346\" is far outside what any setting takes)\n");
    EXPECT_EQ(canvas->CountRequests(0x03), 0u);

    // Not a profile.
    std::ofstream(file) << "{ this is not json";
    EXPECT_EQ(bench.Run({"profile", "apply", "0", file}).code, CliExit::kBadUsage);
    std::remove(file.c_str());
}

TEST(CommandLineTool, CheckKeepAndRestorePutBackWhatAPowerCycleLostAndSayWhatTheyDid) {
    SToolBench bench;
    bench.keptFile = TempFile("vlr-kept-test/kept.json");
    std::filesystem::remove_all(std::filesystem::path(bench.keptFile).parent_path());
    const std::string profile = TempFile("vlr-kept-profile.json");
    ASSERT_EQ(bench.Run({"set", "0", "brightness=64", "contrast=45"}).code, CliExit::kDone);
    ASSERT_EQ(bench.Run({"profile", "save", "0", profile}).code, CliExit::kDone);

    SRun run = bench.Run({"check", "0", profile});
    EXPECT_EQ(run.code, CliExit::kDone);
    EXPECT_EQ(run.out, "matches " + profile + "\n");
    bench.Virtual(0)->PowerCycle();  // unsaved: back to 70 and 50
    run = bench.Run({"check", "0", profile});
    EXPECT_EQ(run.code, CliExit::kDrifted);
    EXPECT_EQ(run.out, "brightness: expected 64, has 70\ncontrast: expected 45, has 50\n");
    run = bench.Run({"check", "0", profile, "--json"});
    EXPECT_EQ(run.code, CliExit::kDrifted);
    EXPECT_NE(run.out.find("\"matches\": false"), std::string::npos);

    // Nothing kept yet: restore has nothing to do.
    EXPECT_EQ(bench.Run({"restore"}).out, "no display found keeps a profile\n");
    EXPECT_EQ(bench.Run({"restore", "0"}).code, CliExit::kBadUsage);
    EXPECT_EQ(bench.Run({"keep", "0"}).code, CliExit::kBadUsage);
    EXPECT_EQ(bench.Run({"keep", "0", TempFile("vlr-no-such-profile.json")}).code, CliExit::kBadUsage);
    run = bench.Run({"keep", "0", profile});
    ASSERT_EQ(run.code, CliExit::kDone) << run.err;
    EXPECT_EQ(run.out, "Canvas 22 Pro (serial VC1060A40892) keeps " + profile + "\n");
    EXPECT_EQ(bench.Run({"keep", "--list"}).out,
              "Canvas 22 Pro  serial VC1060A40892  keeps " + profile + "\n");

    auto canvas = bench.Virtual(0);
    canvas->ClearTransactions();
    run = bench.Run({"restore"});
    EXPECT_EQ(run.code, CliExit::kDone) << run.err;
    EXPECT_EQ(run.out, "Canvas 22 Pro (serial VC1060A40892):\nbrightness: 70 -> 64\ncontrast: 50 -> 45\n");
    EXPECT_EQ(canvas->Value(0x10), 64);
    EXPECT_EQ(canvas->CountRequests(0x03), 2u);  // only what drifted
    canvas->ClearTransactions();
    run = bench.Run({"restore", "--all"});
    EXPECT_EQ(run.out, "Canvas 22 Pro (serial VC1060A40892):\nnothing drifted\n");
    EXPECT_EQ(canvas->CountRequests(0x03), 0u);

    // A display that does not answer, and a kept profile that went missing: said, not hidden.
    canvas->Faults().FailNext(EFault::NoReply, 1000);
    canvas->PowerCycle();
    EXPECT_EQ(bench.Run({"restore", "0"}).code, CliExit::kCommunicationFailure);
    canvas->Faults().Clear();
    std::remove(profile.c_str());
    run = bench.Run({"restore"});
    EXPECT_EQ(run.code, CliExit::kBadUsage);
    EXPECT_EQ(run.err, profile + ": cannot be read\n");

    // The settings window or the keeper holds the display: nothing is sent to it.
    std::ofstream(profile) << R"({"settings": {"contrast": 30}})";
    {
        // Held by another thread, as another process would (a Windows mutex is its thread's).
        std::promise<bool> held;
        std::promise<void> letGo;
        std::thread holder([&] {
            const std::unique_ptr<CDisplayLock> lock =
                HoldDisplayLock("VC1060A40892", std::chrono::milliseconds(0));
            held.set_value(lock != nullptr);
            letGo.get_future().wait();
        });
        const bool holding = held.get_future().get();
        canvas->ClearTransactions();
        run = bench.Run({"restore"});
        EXPECT_EQ(run.code, CliExit::kCommunicationFailure);
        EXPECT_EQ(run.err,
                  "Canvas 22 Pro (serial VC1060A40892) is in use by the settings window or the keeper; "
                  "try again once it is done\n");
        EXPECT_EQ(bench.Run({"set", "0", "contrast=20"}).code, CliExit::kCommunicationFailure);
        EXPECT_TRUE(canvas->Transactions().empty());
        letGo.set_value();
        holder.join();
        ASSERT_TRUE(holding);
    }
    EXPECT_EQ(bench.Run({"restore"}).out,
              "Canvas 22 Pro (serial VC1060A40892):\ncontrast: 50 -> 30\n");  // the power cycle above

    EXPECT_EQ(bench.Run({"keep", "0", "--off"}).out,
              "Canvas 22 Pro (serial VC1060A40892) keeps no profile now\n");
    EXPECT_EQ(bench.Run({"keep", "--list"}).out, "no display keeps a profile\n");
    // A damaged list of kept profiles is reported and never overwritten.
    std::ofstream(bench.keptFile) << "{\"kept\": 7}";
    EXPECT_EQ(bench.Run({"keep", "1", profile}).code, CliExit::kBadUsage);
    std::ifstream in(bench.keptFile);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(in), {}), "{\"kept\": 7}");
    // A folder where the list should be: named, never read as a stream (which ends the tool).
    in.close();
    std::filesystem::remove(bench.keptFile);
    std::filesystem::create_directory(bench.keptFile);
    run = bench.Run({"keep", "--list"});
    EXPECT_EQ(run.code, CliExit::kBadUsage);
    EXPECT_EQ(run.err,
              bench.keptFile +
                  ": is a folder, not a file\nthe kept profiles cannot be read; nothing was changed\n");
    EXPECT_EQ(bench.Run({"restore"}).code, CliExit::kBadUsage);
}

TEST(CommandLineTool, RestoreGivesADisplayThatIsStillStartingTheSecondsItIsTold) {
    const std::string profile = TempFile("vlr-wait-profile.json");
    std::ofstream(profile) << R"({"settings": {"contrast": 31}})";
    for (const int wait : {0, 5}) {
        SToolBench bench;
        bench.keptFile = TempFile("vlr-wait-test/kept.json");
        std::filesystem::remove_all(std::filesystem::path(bench.keptFile).parent_path());
        ASSERT_EQ(bench.Run({"keep", "1", profile}).code, CliExit::kDone);
        bench.Virtual(1)->AnswerNothingFor(std::chrono::milliseconds(2500));
        const SRun run = bench.Run({"restore", "--wait", std::to_string(wait)});
        if (wait == 0) {
            EXPECT_EQ(run.code, CliExit::kCommunicationFailure);
            EXPECT_EQ(run.err, "Studio 24 (serial VC1070A40934) does not answer\n");
        } else {
            EXPECT_EQ(run.code, CliExit::kDone) << run.err;
            EXPECT_EQ(run.out, "Studio 24 (serial VC1070A40934):\ncontrast: 50 -> 31\n");
            EXPECT_GE(bench.clock.Now(), std::chrono::milliseconds(2500));
            EXPECT_LT(bench.clock.Now(), std::chrono::seconds(5));
        }
    }
    EXPECT_EQ(SToolBench().Run({"restore", "--wait", "9999"}).code, CliExit::kBadUsage);
}

TEST(CommandLineTool, TheDemoKeepsItsDisplaysValuesBetweenRuns) {
    ScopeDisplayLocksToThisProcess();
    const std::string state = TempFile("vlr-demo-state-test.json");
    std::remove(state.c_str());
    CVirtualClock clock;
    CScopedClock scopedClock{clock};
    std::ostringstream out;
    std::ostringstream err;
    {
        CDemoDisplays displays(state);
        ASSERT_EQ(RunCommandLineTool({"set", "2", "contrast=33"}, displays, out, err), CliExit::kDone)
            << err.str();
    }
    {
        CDemoDisplays displays(state);
        ASSERT_EQ(RunCommandLineTool({"get", "2", "contrast"}, displays, out, err), CliExit::kDone);
        EXPECT_EQ(out.str(), "contrast = 33\n");
    }
    // A damaged state file: a fresh start, not a failure.
    std::ofstream(state) << "[1, 2";
    CDemoDisplays displays(state);
    EXPECT_EQ(RunCommandLineTool({"list"}, displays, out, err), CliExit::kDone);
    std::remove(state.c_str());
}

TEST(CommandLineTool, ADisplayThatDoesNotAnswerIsListedAsSuchAndOnlyItFails) {
    SToolBench bench;
    bench.Virtual(2)->Faults().FailNext(EFault::NoReply, 1000);
    SRun run = bench.Run({"list"});
    EXPECT_EQ(run.code, CliExit::kDone);
    EXPECT_NE(run.out.find("2  Canvas 12  serial VC1040A40772  via serial  firmware (not answering)\n"),
              std::string::npos)
        << run.out;
    run = bench.Run({"get", "2", "contrast"});
    EXPECT_EQ(run.code, CliExit::kCommunicationFailure);
    EXPECT_EQ(run.err, "display 2 (Canvas 12) does not answer\n");
    EXPECT_EQ(bench.Run({"get", "3", "contrast"}).code, CliExit::kDone);

    // A get reads only the display it names.
    SToolBench fresh;
    EXPECT_EQ(fresh.Run({"get", "1", "contrast"}).code, CliExit::kDone);
    EXPECT_TRUE(fresh.Virtual(0)->Transactions().empty());
}

TEST(CommandLineTool, RevertUndoesTheUnsavedChangesOfEarlierRuns) {
    const std::string changes = TempFile("vlr-changes-test.json");
    std::remove(changes.c_str());
    SToolBench bench;
    auto run = [&](const std::vector<std::string>& args) {
        std::ostringstream out;
        std::ostringstream err;
        const int code = RunCommandLineTool(args, bench.displays, out, err, changes);
        return std::make_pair(code, out.str() + err.str());
    };
    auto canvas = bench.Virtual(0);
    EXPECT_EQ(run({"revert", "0"}).second, "nothing to revert: no unsaved changes made with this tool\n");
    ASSERT_EQ(run({"set", "0", "contrast=20"}).first, CliExit::kDone);
    ASSERT_EQ(run({"set", "0", "contrast=30", "brightness=40"}).first, CliExit::kDone);
    EXPECT_EQ(canvas->Value(0x12), 30);
    auto [code, text] = run({"revert", "0"});
    EXPECT_EQ(code, CliExit::kDone);
    EXPECT_EQ(text, "brightness: back to 70\ncontrast: back to 50\n");  // the values before the first change
    EXPECT_EQ(canvas->Value(0x12), 50);
    EXPECT_EQ(canvas->Value(0x10), 70);
    EXPECT_EQ(run({"revert", "0"}).first, CliExit::kDone);  // nothing left

    // Saved changes are the display's now: nothing to undo.
    ASSERT_EQ(run({"set", "0", "contrast=25", "--save"}).first, CliExit::kDone);
    EXPECT_EQ(run({"revert", "0"}).second, "nothing to revert: no unsaved changes made with this tool\n");
    EXPECT_EQ(canvas->Value(0x12), 25);

    // Choices are named as the display names them; damaged notes are said, the good ones still undone.
    ASSERT_EQ(run({"set", "0", "colour-space=adobe-rgb"}).first, CliExit::kDone);
    EXPECT_EQ(run({"revert", "0"}).second, "colour-space: back to 0 (sRGB)\n");
    std::ofstream(changes) << R"({"VC1060A40892": {"zz": 5, "12": 70000, "10": 33}})";
    std::tie(code, text) = run({"revert", "0"});
    EXPECT_EQ(code, CliExit::kBadUsage);
    EXPECT_EQ(text, "brightness: back to 33\n" + changes +
                        ": damaged revert notes (\"12\": 70000 is not a VCP code and its value); left out\n" +
                        changes +
                        ": damaged revert notes (\"zz\": 5 is not a VCP code and its value); left out\n");
    EXPECT_EQ(canvas->Value(0x10), 33);
    EXPECT_EQ(canvas->Value(0x12), 25);
    std::ofstream(changes) << "[1, 2";
    EXPECT_EQ(run({"revert", "0"}).second,
              "nothing to revert: no unsaved changes made with this tool\n" + changes +
                  ": damaged revert notes (not a JSON object); started afresh\n");
    std::remove(changes.c_str());
}

TEST(CommandLineTool, EverySettingsRowIsANameScriptsCanWriteBothWays) {
    for (const SSettingRow& row : SettingRows()) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(SettingByName(row.name), std::optional<ESetting>(row.setting));
        EXPECT_STREQ(SettingName(row.setting), row.name);
        if (row.alias != nullptr) {
            EXPECT_EQ(SettingByName(row.alias), std::optional<ESetting>(row.setting));
        }
    }
    EXPECT_EQ(AllSettings().size(), kSettingCount);
    // Any letter case; a name of no row is none, never another setting.
    EXPECT_EQ(SettingByName("Color-Temperature"), std::optional<ESetting>(ESetting::ColorTemperature));
    EXPECT_EQ(SettingByName("colour"), std::nullopt);
}

TEST(CommandLineTool, AFreshRunReadsOnlyWhatTheCommandNeedsAndTakesCapabilitiesFromTheCache) {
    const std::string cacheFile = TempFile("vlr-cli-capabilities.json");
    std::filesystem::remove(cacheFile);
    auto capabilitiesReads = [](const CVirtualDisplay& display) {
        size_t reads = 0;
        for (const STransaction& t : display.Transactions()) {
            reads += t.request.size() > 3 && t.request[3] == 0xF3 ? 1 : 0;
        }
        return reads;
    };
    // Each run a fresh process: displays found afresh, the cache file kept.
    auto run = [&](std::vector<std::string> args, std::vector<size_t>* capsReads = nullptr,
                   std::vector<size_t>* transactions = nullptr) {
        SToolBench bench;
        std::ostringstream out;
        std::ostringstream err;
        SRun result;
        result.code = RunCommandLineTool(args, bench.displays, out, err, {}, {}, cacheFile);
        result.out = out.str();
        result.err = err.str();
        for (size_t i = 0; i < bench.displays.Displays().size(); ++i) {
            if (capsReads) {
                capsReads->push_back(capabilitiesReads(*bench.Virtual(i)));
            }
            if (transactions) {
                transactions->push_back(bench.Virtual(i)->Transactions().size());
            }
        }
        return result;
    };

    // list asks each display for its firmware version and nothing else.
    std::vector<size_t> caps;
    std::vector<size_t> transactions;
    SRun listed = run({"list"}, &caps, &transactions);
    EXPECT_EQ(listed.code, CliExit::kDone);
    EXPECT_EQ(caps, (std::vector<size_t>{0, 0, 0, 0}));
    EXPECT_EQ(transactions, (std::vector<size_t>{1, 1, 1, 1}));
    EXPECT_EQ(run({"list", "--serial-init"}).out, listed.out);

    // The first get reads display 0's capabilities; the next run takes them from the cache and
    // reads the firmware version and the one value.
    caps.clear();
    transactions.clear();
    const SRun first = run({"get", "0", "brightness"}, &caps, &transactions);
    ASSERT_EQ(first.code, CliExit::kDone) << first.err;
    EXPECT_GT(caps[0], 0u);
    EXPECT_EQ(std::vector<size_t>(transactions.begin() + 1, transactions.end()),
              (std::vector<size_t>{0, 0, 0}))
        << "only the display named is initialised";
    caps.clear();
    transactions.clear();
    const SRun second = run({"get", "0", "brightness"}, &caps, &transactions);
    EXPECT_EQ(second.code, CliExit::kDone);
    EXPECT_EQ(second.out, first.out);
    EXPECT_EQ(caps[0], 0u);
    EXPECT_EQ(transactions, (std::vector<size_t>{2, 0, 0, 0})) << "the firmware version and brightness";

    caps.clear();
    EXPECT_EQ(run({"get", "0", "brightness", "--no-cache"}, &caps).out, first.out);
    EXPECT_GT(caps[0], 0u);
    std::filesystem::remove(cacheFile);
}

TEST(CommandLineTool, ApplyingAStudioFileChangesWhatDiffersOnceAndReportsItAsAConfigurationEngineNeeds) {
    SToolBench bench;
    bench.keptFile = TempFile("vlr-studio-test/kept.json");
    const std::filesystem::path folder = std::filesystem::path(bench.keptFile).parent_path();
    std::filesystem::remove_all(folder);
    const std::string studio = TempFile("vlr-studio-test.json");
    // The Studio 24's own entry wins over its model's; the two are not merged.
    std::ofstream(studio) << R"({"displays": [
        {"model": "Canvas 22 Pro", "settings": {"brightness": 60, "colour-space": "adobe-rgb"}, "keep": true},
        {"model": "Velor Studio 24", "settings": {"brightness": 80, "sharpness": 1}},
        {"model": "studio-24", "serial": "VC1070A40934", "settings": {"brightness": 45, "contrast": 40}}]})";
    auto canvas = bench.Virtual(0);
    auto studio24 = bench.Virtual(1);

    SRun run = bench.Run({"apply", studio, "--check"});
    EXPECT_EQ(run.code, CliExit::kChanged) << run.err;
    EXPECT_EQ(canvas->CountRequests(0x03) + studio24->CountRequests(0x03), 0u);
    EXPECT_FALSE(std::filesystem::exists(folder / "studio"));

    const std::string keptProfile = (folder / "studio" / "VC1060A40892.json").string();
    run = bench.Run({"apply", studio});
    EXPECT_EQ(run.code, CliExit::kChanged) << run.err;
    EXPECT_EQ(run.out,
              "Canvas 22 Pro (serial VC1060A40892, via graphics driver):\n"
              "colour-space: 0 (srgb) -> 1 (adobe-rgb)\n"
              "brightness: 70 -> 60\n"
              "keep: keeps these settings (" +
                  keptProfile +
                  ")\n"
                  "  changed\n"
                  "Studio 24 (serial VC1070A40934, via HID):\n"
                  "brightness: 70 -> 45\n"
                  "contrast: 50 -> 40\n"
                  "  changed\n"
                  "Canvas 12 (serial VC1040A40772, via serial): no entry for this model\n"
                  "Canvas 13 HD (serial VC1043A40811, via FTDI): no entry for this model\n"
                  "4 displays: 2 changed, 0 unchanged, 0 failed, 0 with values they do not take, 2 without "
                  "an entry\n");
    EXPECT_EQ(canvas->Value(0x10), 60);
    EXPECT_EQ(canvas->Value(0xE3), 1);
    EXPECT_EQ(studio24->Value(0x6B), 45);
    EXPECT_EQ(studio24->Value(0x12), 40);
    EXPECT_EQ(bench.Run({"keep", "--list"}).out,
              "Canvas 22 Pro  serial VC1060A40892  keeps " + keptProfile + "\n");

    // The second run reads and writes nothing.
    canvas->ClearTransactions();
    studio24->ClearTransactions();
    run = bench.Run({"apply", studio, "--json"});
    EXPECT_EQ(run.code, CliExit::kDone) << run.err;
    EXPECT_EQ(canvas->CountRequests(0x03) + studio24->CountRequests(0x03), 0u);
    EXPECT_NE(run.out.find(R"("totals": {
    "changed": 0,
    "displays": 4,
    "failed": 0,
    "invalid": 0,
    "no_entry": 2,
    "unchanged": 2
  })"),
              std::string::npos)
        << run.out;

    // A student changed the brightness in the menu: the check names it and writes nothing.
    canvas->SetValueFromMenu(0x10, 90);
    run = bench.Run({"apply", studio, "--check", "--json"});
    EXPECT_EQ(run.code, CliExit::kChanged);
    EXPECT_NE(run.out.find("\"would_change\": 1"), std::string::npos) << run.out;
    EXPECT_NE(run.out.find("\"outcome\": \"drifted\""), std::string::npos);
    EXPECT_EQ(canvas->Value(0x10), 90);

    // A display that does not answer fails the run; the others are still set.
    studio24->Faults().FailNext(EFault::NoReply, 1000);
    studio24->PowerCycle();
    run = bench.Run({"apply", studio});
    EXPECT_EQ(run.code, CliExit::kCommunicationFailure);
    EXPECT_EQ(canvas->Value(0x10), 60);
    EXPECT_NE(run.out.find("1 changed, 0 unchanged, 1 failed"), std::string::npos) << run.out;
    studio24->Faults().Clear();

    // What the file gets wrong is named, and the rest of it still applies.
    std::ofstream(studio) << R"({"displays": [{"model": "Canvas 99", "settings": {}},
        {"model": "Canvas 22 Pro", "settings": {"brightnes": 50, "contrast": 45}},
        {"model": "Canvas 22 Pro", "settings": {"contrast": 30}},
        {"model": "Studio 24", "serail": "VC1070A40934", "settings": {"contrast": 30}}]})";
    run = bench.Run({"apply", studio});
    EXPECT_EQ(run.code, CliExit::kBadUsage);
    EXPECT_EQ(run.err,
              studio + ": displays[0]: \"Canvas 99\" is not a model this tool knows\n" + studio +
                  ": displays[1]: \"brightnes\" is not a setting's name (did you mean brightness?)\n" +
                  studio + ": displays[2]: Canvas 22 Pro has an entry already\n" + studio +
                  ": displays[3]: \"serail\" is not a part of an entry (model, serial, keep, settings)\n");
    EXPECT_EQ(canvas->Value(0x12), 45);
    std::ofstream(studio) << "[]";
    run = bench.Run({"apply", studio});
    EXPECT_EQ(run.code, CliExit::kBadUsage);
    EXPECT_EQ(run.err, studio + ": not a studio file (a JSON object with a list of \"displays\")\n");
    EXPECT_EQ(bench.Run({"apply", folder.string()}).err, folder.string() + ": is a folder, not a file\n");
    // A profile is read the same way: a folder is named, never a crash.
    const SRun profileFolder = bench.Run({"profile", "apply", "0", folder.string()});
    EXPECT_EQ(profileFolder.code, CliExit::kBadUsage);
    EXPECT_EQ(profileFolder.err, folder.string() + ": is a folder, not a file\n");
}

#ifndef _WIN32
TEST(CommandLineTool, ARuntimeFolderThatIsNotThereDoesNotMakeEveryDisplayLookInUse) {
    SToolBench bench;
    const char* had = std::getenv("XDG_RUNTIME_DIR");
    const std::string kept = had != nullptr ? had : "";
    setenv("XDG_RUNTIME_DIR", "/run/user/no-such-user", 1);  // as su keeps a session's variable
    const SRun run = bench.Run({"set", "0", "contrast=44"});
    had != nullptr ? setenv("XDG_RUNTIME_DIR", kept.c_str(), 1) : unsetenv("XDG_RUNTIME_DIR");
    EXPECT_EQ(run.code, CliExit::kDone) << run.err;
    EXPECT_EQ(bench.Virtual(0)->Value(0x12), 44);
}
#endif

#ifndef _WIN32
TEST(CommandLineTool, FilesAtOddPathsAreWrittenThroughLinksAndNeverReplacedWhenTheyAreNotFiles) {
    const std::filesystem::path folder = TempFile("odd-paths");
    std::filesystem::create_directories(folder / "kept-elsewhere");
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    std::filesystem::create_symlink("kept-elsewhere/profile.json", folder / "profile.json");
    SToolBench bench;

    // A profile named by a link lands in the file the link points at; the link stays.
    ASSERT_EQ(bench.Run({"profile", "save", "0", (folder / "profile.json").string()}).code, CliExit::kDone);
    EXPECT_TRUE(std::filesystem::is_symlink(folder / "profile.json"));
    EXPECT_TRUE(std::filesystem::is_regular_file(folder / "kept-elsewhere" / "profile.json"));

    // A profile asked to go to a pipe is refused with its name and exit code 1; the pipe stays.
    const SRun refused = bench.Run({"profile", "save", "0", (folder / "pipe").string()});
    EXPECT_EQ(refused.code, CliExit::kBadUsage);
    EXPECT_NE(refused.err.find(
                  (folder / "pipe").string() +
                  ": cannot be written (it is a device, a pipe or a socket, not a file; left as it is)"),
              std::string::npos)
        << refused.err;
    EXPECT_TRUE(std::filesystem::is_fifo(folder / "pipe"));

    // A cache at a pipe is left alone with a warning, and the command does its work without it
    // (reading a pipe nobody writes would never end).
    std::ostringstream out;
    std::ostringstream err;
    EXPECT_EQ(RunCommandLineTool({"get", "0", "brightness"}, bench.displays, out, err, {}, {},
                                 (folder / "pipe").string()),
              CliExit::kDone);
    EXPECT_EQ(out.str(), "brightness = 70\n");
    EXPECT_EQ(err.str(),
              "warning: the capabilities cache " + (folder / "pipe").string() +
                  " is not used (it is a device, a pipe or a socket, not a file; left as it is)\n");
    EXPECT_TRUE(std::filesystem::is_fifo(folder / "pipe"));
}
#endif
