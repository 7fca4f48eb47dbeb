#include "CommandLineTool.h"

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

#include "KeptProfiles.h"
#include "TextFile.h"
#include "Tool.h"

int RunCommandLineTool(const std::vector<std::string>& args_I, IDisplaySource& source_I, std::ostream& out_O,
                       std::ostream& err_O, const std::string& changesFile_I, const std::string& keptFile_I,
                       const std::string& cacheFile_I, bool showProgress_I) {
    CTool tool(source_I, out_O, err_O, changesFile_I, keptFile_I, cacheFile_I);
    tool.mShowProgress = showProgress_I;
    CLI::App app{"Velor Display Settings: reads and changes the settings of Velor pen displays",
                 "velor-display"};
    app.require_subcommand(1);
    app.footer(
        "Exit codes: 0 done (apply: nothing needed changing), 1 wrong use or a file that cannot be used, "
        "2 no such display (apply: the search was hindered), 3 a display did not answer as expected or is "
        "in use, 4 check: the display differs from the profile, 5 apply: a display was changed (with "
        "--check: would be).");
    app.fallthrough();  // --json and --demo may follow the command
    bool json = false;
    bool demo = false;
    app.add_flag("--json", json, "Print what is read as JSON");
    app.add_flag("--demo", demo, "Use the virtual displays of the demo");
    app.add_flag("--serial-init", tool.mSerialInit,
                 "Initialise the displays one after another (for drivers that dislike concurrent DDC/CI)");
    app.add_flag("--no-cache", tool.mNoCache,
                 "Read every capabilities string from the display, none from the cache");
    std::string display;
    std::vector<std::string> names;
    bool save = false;
    bool yes = false;
    std::string what;
    std::string file;
    int result = CliExit::kDone;

    CLI::App* list =
        app.add_subcommand("list", "Every display found: index, model, serial number, route, firmware");
    list->callback([&] { result = tool.List(json); });

    CLI::App* caps =
        app.add_subcommand("caps", "The display's VCP codes and their values, from its capabilities");
    caps->add_option("display", display, "Index or serial number (see list)")->required();
    caps->callback([&] {
        result = tool.OnDisplay(display, [&](SFoundDisplay& found) { return tool.Caps(found, json); });
    });

    CLI::App* get =
        app.add_subcommand("get", "Reads settings (names such as brightness, or VCP codes in hex)");
    get->add_option("display", display, "Index or serial number")->required();
    get->add_option("settings", names, "Settings to read")->required();
    get->callback([&] {
        result = tool.OnDisplay(display, [&](SFoundDisplay& found) { return tool.Get(found, names, json); });
    });

    CLI::App* set =
        app.add_subcommand("set", "Changes settings: SETTING=VALUE ...; checks every value first");
    set->add_option("display", display, "Index or serial number")->required();
    set->add_option("assignments", names,
                    "SETTING=VALUE, the value a number or a choice (6500k, adobe-rgb, on)")
        ->required();
    set->add_flag("--save", save, "Then make the display keep its settings");
    set->callback([&] {
        result = tool.OnDisplay(display, [&](SFoundDisplay& found) { return tool.Set(found, names, save); });
    });

    CLI::App* saveCommand = app.add_subcommand("save", "Makes the display keep its current settings");
    saveCommand->add_option("display", display, "Index or serial number")->required();
    saveCommand->callback(
        [&] { result = tool.OnDisplay(display, [&](SFoundDisplay& found) { return tool.Save(found); }); });

    CLI::App* revert =
        app.add_subcommand("revert", "Undoes the changes made with this tool since the display last saved");
    revert->add_option("display", display, "Index or serial number")->required();
    revert->callback(
        [&] { result = tool.OnDisplay(display, [&](SFoundDisplay& found) { return tool.Revert(found); }); });

    CLI::App* reset = app.add_subcommand("reset", "Factory reset (needs --yes) or colour reset");
    reset->add_option("display", display, "Index or serial number")->required();
    reset->add_option("what", what, "factory or colour")->required();
    reset->add_flag("--yes", yes, "Confirms a factory reset");
    reset->callback([&] {
        if (what != "factory" && what != "colour" && what != "color") {
            err_O << "reset takes factory or colour, not " << what << "\n";
            result = CliExit::kBadUsage;
            return;
        }
        result = tool.OnDisplay(display, [&](SFoundDisplay& found) { return tool.Reset(found, what, yes); });
    });

    CLI::App* profile =
        app.add_subcommand("profile", "Keeps the user-level settings in a JSON file and puts them back");
    profile->require_subcommand(1);
    CLI::App* profileSave = profile->add_subcommand("save", "Writes the display's settings to FILE");
    profileSave->add_option("display", display, "Index or serial number")->required();
    profileSave->add_option("file", file, "The profile")->required();
    profileSave->callback([&] {
        result = tool.OnDisplay(display, [&](SFoundDisplay& found) { return tool.ProfileSave(found, file); });
    });
    CLI::App* profileApply =
        profile->add_subcommand("apply", "Writes what differs from FILE, verifies, reports");
    profileApply->add_option("display", display, "Index or serial number")->required();
    profileApply->add_option("file", file, "The profile")->required();
    profileApply->callback([&] {
        result = tool.OnDisplay(display,
                                [&](SFoundDisplay& found) { return tool.ProfileApply(found, file, json); });
    });

    CLI::App* check = app.add_subcommand(
        "check", "Compares the display with PROFILE: what drifted (exit code 4), or nothing (0)");
    check->add_option("display", display, "Index or serial number")->required();
    check->add_option("profile", file, "The profile")->required();
    check->callback([&] {
        result = tool.OnDisplay(display, [&](SFoundDisplay& found) { return tool.Check(found, file, json); });
    });

    bool off = false;
    bool listKept = false;
    CLI::App* keep = app.add_subcommand(
        "keep",
        "Names the profile a display keeps (restore puts it back): DISPLAY PROFILE, DISPLAY --off, --list");
    keep->add_option("display", display, "Index or serial number");
    keep->add_option("profile", file, "The profile the display keeps");
    keep->add_flag("--off", off, "The display keeps no profile");
    keep->add_flag("--list", listKept, "Shows which displays keep which profile");
    keep->callback([&] { result = tool.Keep(display, file, off, listKept); });

    bool all = false;
    CLI::App* restore = app.add_subcommand("restore",
                                           "Puts back the kept profile of every display found (or DISPLAY): "
                                           "reads, writes what drifted, verifies");
    restore->add_option("display", display, "Index or serial number");
    restore->add_flag("--all", all, "Every display that keeps a profile (the default)");
    int waitSeconds = 0;
    restore->add_option("--wait", waitSeconds, "Gives a display that does not answer yet this many seconds")
        ->check(CLI::Range(0, 300));
    restore->callback([&] {
        if (all && !display.empty()) {
            err_O << "restore takes --all or a DISPLAY, not both\n";
            result = CliExit::kBadUsage;
            return;
        }
        result = tool.Restore(display, json, waitSeconds);
    });

    bool checkOnly = false;
    CLI::App* apply = app.add_subcommand(
        "apply",
        "Sets every display found as the studio file says: writes what differs, verifies; exit code 5 when "
        "something changed, 0 when nothing needed to");
    apply->add_option("studio", file, "The studio file")->required();
    apply->add_flag("--check", checkOnly,
                    "Writes nothing: says what would change (exit code 5) or that nothing would (0)");
    apply->callback([&] { result = tool.Apply(file, checkOnly, json); });

    std::vector<std::string> reversed(args_I.rbegin(), args_I.rend());
    try {
        app.parse(reversed);
    } catch (const CLI::ParseError& error) {
        // Help (of the command named, where one is) goes to the output; mistakes to errors.
        return app.exit(error, out_O, err_O) == 0 ? CliExit::kDone : CliExit::kBadUsage;
    }
    return result;
}

std::string DefaultChangesFile(bool demo_I) {
    const std::string folder = ProgramStateFolder(demo_I);
    if (folder.empty()) {
        return {};
    }
    return Utf8String(Utf8Path(folder) / (demo_I ? "demo-changes.json" : "changes.json"));
}
