// The command-line tool at its edges, as a user sees it: both ends of every range and one
// beyond, the names at both ends of every scale of the demo's four families, the revert notes
// after every command that changes or saves, and the exit code and text of a display failing
// at each step.

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <cstdio>
#include <fstream>

#include "ToolBench.h"

using json = nlohmann::json;

namespace {

// The revert notes as the tool left them; null when there is no file.
json Notes(const std::string& file) {
    std::ifstream in(file);
    return in ? json::parse(in, nullptr, false) : json();
}

}  // namespace

TEST(CommandLineToolEdges, EveryRangeTakesBothEndsAndRefusesOneBeyond) {
    SToolBench bench;
    struct SRange {
        const char* display;
        const char* setting;
        uint8_t code;
        int maximum;
    };
    // Studio 24 keeps its backlight level in a maker's code; all ranges start at 0.
    const SRange ranges[] = {
        {"0", "brightness", 0x10, 100}, {"0", "contrast", 0x12, 100}, {"0", "sharpness", 0x87, 4},
        {"1", "brightness", 0x6B, 100}, {"1", "contrast", 0x12, 100}, {"1", "sharpness", 0x87, 4},
        {"2", "brightness", 0x10, 100}, {"2", "contrast", 0x12, 100}, {"2", "sharpness", 0x87, 4},
        {"3", "brightness", 0x10, 100}, {"3", "contrast", 0x12, 100}, {"3", "0x16", 0x16, 100},
    };
    for (const SRange& range : ranges) {
        SCOPED_TRACE(std::string(range.display) + " " + range.setting);
        const std::string name = range.setting;
        const std::string max = std::to_string(range.maximum);
        auto display = bench.Virtual(std::stoul(range.display));

        EXPECT_EQ(bench.Run({"set", range.display, name + "=0"}).code, CliExit::kDone);
        EXPECT_EQ(display->Value(range.code), 0);
        EXPECT_EQ(bench.Run({"set", range.display, name + "=" + max}).code, CliExit::kDone);
        EXPECT_EQ(display->Value(range.code), range.maximum);

        SRun run = bench.Run({"set", range.display, name + "=" + std::to_string(range.maximum + 1)});
        EXPECT_EQ(run.code, CliExit::kBadUsage);
        if (name.rfind("0x", 0) == 0) {
            EXPECT_EQ(run.err, name + "=" + std::to_string(range.maximum + 1) +
                                   ": not a value this display accepts for that code; nothing was written\n");
        } else {
            EXPECT_EQ(run.err, name + "=" + std::to_string(range.maximum + 1) + ": outside 0 to " + max +
                                   "; nothing was written\n");
        }
        run = bench.Run({"set", range.display, name + "=-1"});
        EXPECT_EQ(run.code, CliExit::kBadUsage);
        EXPECT_NE(run.err.find(name + "=-1: "), std::string::npos) << run.err;
        EXPECT_EQ(display->Value(range.code), range.maximum);  // nothing written by either
    }

    // The menu language is a list, not a range: the display's own values, nothing else.
    EXPECT_EQ(bench.Run({"set", "0", "menu-language=38"}).code, CliExit::kDone);
    EXPECT_EQ(bench.Virtual(0)->Value(0xCC), 38);
    const SRun run = bench.Run({"set", "0", "menu-language=11"});
    EXPECT_EQ(run.code, CliExit::kBadUsage);
    EXPECT_EQ(run.err,
              "menu-language=11: not one of the values this display offers (1, 2, 3, 4, 5, 6, 7, 8, 9, 10, "
              "13, 20, 30, "
              "38); nothing was written\n");
}

TEST(CommandLineToolEdges, TheNamesAtBothEndsOfEveryScaleReachTheFamilysCode) {
    SToolBench bench;
    struct SName {
        const char* display;
        const char* setting;
        const char* name;
        uint8_t code;
        uint16_t value;
    };
    const SName names[] = {
        {"0", "colour-temperature", "5000k", 0x14, 4},
        {"0", "colour-temperature", "9300k", 0x14, 8},
        {"2", "colour-temperature", "5000k", 0xE4, 4},
        {"2", "colour-temperature", "9300k", 0xE4, 8},
        {"3", "colour-temperature", "5000k", 0x14, 4},
        {"3", "colour-temperature", "9300k", 0x14, 8},
        {"0", "colour-space", "native", 0xE3, 7},
        {"0", "colour-space", "dci-p3", 0xE3, 4},
        {"3", "colour-space", "adobe-rgb", 0xE3, 1},
        {"3", "colour-space", "rec-709", 0xE3, 3},
        {"0", "gamma", "0.5", 0x72, 5},
        {"0", "gamma", "4.0", 0x72, 40},
        {"3", "gamma", "2.2", 0x72, 1},
        {"3", "gamma", "2.4", 0x72, 2},
        {"0", "aspect-ratio", "full-screen", 0xE2, 2},
        {"0", "aspect-ratio", "1:1", 0xE2, 1},
        {"1", "aspect-ratio", "full-screen", 0xDA, 0},
        {"1", "aspect-ratio", "keep-ratio", 0xDA, 1},
        {"3", "aspect-ratio", "full-screen", 0x86, 2},
        {"3", "aspect-ratio", "1:1", 0x86, 1},
        {"0", "led-brightness", "off", 0xEF, 0},
        {"0", "led-brightness", "high", 0xEF, 3},
        {"1", "fan", "auto", 0xF3, 1},
        {"1", "fan", "low-speed", 0xF3, 0},
        {"0", "uniformity", "on", 0xE0, 1},
        {"0", "uniformity", "off", 0xE0, 0},
    };
    for (const SName& entry : names) {
        const std::string assignment = std::string(entry.setting) + "=" + entry.name;
        SCOPED_TRACE(std::string(entry.display) + " " + assignment);
        const SRun set = bench.Run({"set", entry.display, assignment});
        EXPECT_EQ(set.code, CliExit::kDone) << set.err;
        EXPECT_EQ(bench.Virtual(std::stoul(entry.display))->Value(entry.code), entry.value);
        EXPECT_EQ(
            bench.Run({"get", entry.display, entry.setting}).out,
            std::string(entry.setting) + " = " + std::to_string(entry.value) + " (" + entry.name + ")\n");
    }
    // The colour mode the program keeps itself, at both ends.
    EXPECT_EQ(bench.Run({"set", "0", "colour-mode=custom"}).code, CliExit::kDone);
    EXPECT_EQ(bench.Run({"get", "0", "colour-mode"}).out, "colour-mode = 3 (custom)\n");
    EXPECT_EQ(bench.Run({"set", "0", "colour-mode=temperature"}).code, CliExit::kDone);
    EXPECT_EQ(bench.Run({"get", "0", "colour-mode"}).out, "colour-mode = 1 (temperature)\n");
}

TEST(CommandLineToolEdges, TheRevertNotesAfterEveryCommandThatChangesOrSaves) {
    SToolBench bench;
    bench.changesFile = TempFile("vlr-edges-notes.json");
    std::remove(bench.changesFile.c_str());
    const std::string canvas = "VC1060A40892";
    const std::string studio = "VC1070A40934";

    // A change notes the value before it, once: a second change keeps the first value.
    ASSERT_EQ(bench.Run({"set", "0", "contrast=20"}).code, CliExit::kDone);
    ASSERT_EQ(bench.Run({"set", "0", "contrast=30", "brightness=40"}).code, CliExit::kDone);
    ASSERT_EQ(bench.Run({"set", "1", "contrast=35"}).code, CliExit::kDone);
    EXPECT_EQ(Notes(bench.changesFile), json({{canvas, {{"10", 70}, {"12", 50}}}, {studio, {{"12", 50}}}}));

    // Reading changes nothing.
    ASSERT_EQ(bench.Run({"get", "0", "contrast"}).code, CliExit::kDone);
    ASSERT_EQ(bench.Run({"list"}).code, CliExit::kDone);
    EXPECT_EQ(Notes(bench.changesFile), json({{canvas, {{"10", 70}, {"12", 50}}}, {studio, {{"12", 50}}}}));

    // Save makes the display's values its own: its notes go, the other display's stay.
    ASSERT_EQ(bench.Run({"save", "0"}).code, CliExit::kDone);
    EXPECT_EQ(Notes(bench.changesFile), json({{studio, {{"12", 50}}}}));
    EXPECT_EQ(bench.Run({"revert", "0"}).out, "nothing to revert: no unsaved changes made with this tool\n");

    // set --save leaves nothing to revert.
    ASSERT_EQ(bench.Run({"set", "0", "sharpness=4", "--save"}).code, CliExit::kDone);
    EXPECT_EQ(Notes(bench.changesFile), json({{studio, {{"12", 50}}}}));

    // A failed save keeps the notes: the change can still be undone.
    ASSERT_EQ(bench.Run({"set", "0", "contrast=60"}).code, CliExit::kDone);
    bench.Virtual(0)->Faults().FailNext(EFault::NoReply, 10, 0x0C);
    SRun run = bench.Run({"save", "0"});
    EXPECT_EQ(run.code, CliExit::kCommunicationFailure);
    EXPECT_EQ(run.err.rfind("save: the display did not answer as expected", 0), 0u) << run.err;
    EXPECT_EQ(Notes(bench.changesFile), json({{canvas, {{"12", 30}}}, {studio, {{"12", 50}}}}));
    bench.Virtual(0)->Faults().Clear();

    // Revert undoes and forgets; a second revert has nothing left.
    run = bench.Run({"revert", "0"});
    EXPECT_EQ(run.code, CliExit::kDone);
    EXPECT_EQ(run.out, "contrast: back to 30\n");
    EXPECT_EQ(Notes(bench.changesFile), json({{studio, {{"12", 50}}}}));
    EXPECT_EQ(bench.Run({"revert", "0"}).out, "nothing to revert: no unsaved changes made with this tool\n");

    // A revert that cannot write keeps its notes for the next try.
    ASSERT_EQ(bench.Run({"set", "1", "contrast=45"}).code, CliExit::kDone);
    bench.Virtual(1)->Faults().FailNext(EFault::NoReply, 100);
    run = bench.Run({"revert", "1"});
    EXPECT_EQ(run.code, CliExit::kCommunicationFailure);
    EXPECT_EQ(Notes(bench.changesFile), json({{studio, {{"12", 50}}}}));
    bench.Virtual(1)->Faults().Clear();

    // A factory reset leaves nothing of the earlier changes to undo.
    ASSERT_EQ(bench.Run({"reset", "1", "factory", "--yes"}).code, CliExit::kDone);
    EXPECT_EQ(Notes(bench.changesFile), json::object());
    EXPECT_EQ(bench.Run({"revert", "1"}).out, "nothing to revert: no unsaved changes made with this tool\n");

    // A profile applied notes what it changed.
    const std::string profile = TempFile("vlr-edges-profile.json");
    std::ofstream(profile) << R"({"settings": {"contrast": 44, "brightness": 70}})";
    ASSERT_EQ(bench.Run({"profile", "apply", "2", profile}).code, CliExit::kDone);
    EXPECT_EQ(Notes(bench.changesFile), json({{"VC1040A40772", {{"12", 50}}}}));
    std::remove(profile.c_str());

    // Notes that cannot be written: the change stands, and the user hears that revert will not know it.
    std::remove(bench.changesFile.c_str());
    std::ofstream(bench.changesFile + ".dir") << "a file where a folder would be";
    bench.changesFile += ".dir/notes.json";
    run = bench.Run({"set", "0", "contrast=33"});
    EXPECT_EQ(run.code, CliExit::kDone);
    EXPECT_EQ(bench.Virtual(0)->Value(0x12), 33);
    EXPECT_EQ(run.err,
              bench.changesFile +
                  ": cannot be written (its folder cannot be made); revert cannot undo this change\n");
    std::remove((TempFile("vlr-edges-notes.json") + ".dir").c_str());
}

TEST(CommandLineToolEdges, ADisplayFailingAtEachStepGivesItsExitCodeAndSaysWhere) {
    // Identity: a display that answers nothing from the start is listed as such; a command on
    // it is a communication failure, the other displays still work.
    {
        SToolBench bench;
        bench.Virtual(2)->Faults().FailNext(EFault::NoReply, 1000);
        SRun run = bench.Run({"get", "2", "contrast"});
        EXPECT_EQ(run.code, CliExit::kCommunicationFailure);
        EXPECT_NE(run.err.find("Canvas 12"), std::string::npos) << run.err;
        EXPECT_EQ(bench.Run({"get", "0", "contrast"}).out, "contrast = 50\n");
    }
    // Every step on a display as a new run finds it (each run of the tool is a new process).
    struct SStep {
        const char* what;
        std::vector<std::string> command;
        uint8_t opcode;
        int code;
        const char* firstLine;
    };
    const SStep steps[] = {
        // Read: the get fails after its retries.
        {"read",
         {"get", "0", "contrast"},
         0x01,
         CFaultPlan::kAny,
         "contrast: the display did not answer as expected\n"},
        // Write: the set is lost on the way.
        {"write",
         {"set", "0", "contrast=20"},
         0x03,
         0x12,
         "contrast: the display did not answer as expected (Contrast: Send request failed)\n"},
        // Save: the display does not confirm; set --save says so after the write took.
        {"save",
         {"set", "0", "contrast=22", "--save"},
         0x0C,
         CFaultPlan::kAny,
         "save: the display did not answer as expected"},
        // Reset: the colour reset's write is lost.
        {"reset",
         {"reset", "0", "colour"},
         0x03,
         0x08,
         "reset colour: the display did not answer as expected"},
    };
    for (const SStep& step : steps) {
        SCOPED_TRACE(step.what);
        SToolBench bench;
        auto canvas = bench.Virtual(0);
        canvas->Faults().FailNext(EFault::NoReply, 100, step.opcode, step.code);
        const SRun run = bench.Run(step.command);
        EXPECT_EQ(run.code, CliExit::kCommunicationFailure);
        EXPECT_EQ(run.err.rfind(step.firstLine, 0), 0u) << run.err;
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(canvas->SavedValue(0x12), 50);
        if (std::string(step.what) == "save") {
            EXPECT_EQ(canvas->Value(0x12), 22);
        } else {
            EXPECT_EQ(canvas->Value(0x12), 50);
        }
    }

    // Verify: the set arrives, its read-back does not.
    SToolBench bench;
    auto canvas = bench.Virtual(0);
    ASSERT_EQ(bench.Run({"get", "0", "contrast"}).code, CliExit::kDone);
    canvas->Faults().FailNext(EFault::NoReply, 100, 0x01, 0x12);
    const SRun run = bench.Run({"set", "0", "contrast=21"});
    EXPECT_EQ(run.code, CliExit::kCommunicationFailure);
    EXPECT_EQ(run.err.rfind("contrast: the display did not answer as expected", 0), 0u) << run.err;
    EXPECT_EQ(canvas->Value(0x12), 21);
}
