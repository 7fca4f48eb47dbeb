// apply: every display as a studio file says.

#include "Tool.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Clock.h"
#include "DisplayLock.h"
#include "DisplayNames.h"
#include "KeptProfiles.h"
#include "ParallelWork.h"
#include "Profile.h"
#include "SettingNames.h"
#include "StudioFile.h"
#include "TextFile.h"
#include "codes.h"

using nlohmann::json;

void CTool::ApplyEntry(SFoundDisplay& display_I, const SStudioEntry& entry_I, bool check_I, bool json_I,
                       json& shown_IO) {
    const bool keptChanged = entry_I.keep && KeepEntry(display_I, entry_I, check_I, shown_IO);
    int held = CliExit::kDone;
    if (!Hold(display_I, held)) {
        shown_IO["outcome"] = "failed";
        shown_IO["problem"] = "in use";
        return;
    }
    if (!Ready(display_I)) {
        mErr << display_I.model << " (serial " << display_I.serial << ") does not answer\n";
        shown_IO["outcome"] = "failed";
        shown_IO["problem"] = "does not answer";
        return;
    }
    const SProfileReport report = check_I
                                      ? CheckProfile(*display_I.display, entry_I.profile)
                                      : ApplyProfile(*display_I.display, entry_I.profile,
                                                     [&](uint8_t code_I) { Remember(display_I, code_I); });
    shown_IO.update(ReportJson(display_I, report));
    const int printed = PrintReport(display_I, report, json_I);
    if (keptChanged && !json_I) {
        mOut << "keep: " << (check_I ? "would keep" : "keeps") << " these settings ("
             << shown_IO["keeps"].get<std::string>() << ")\n";
    }
    const bool changed =
        keptChanged || report.Any(check_I ? EProfileOutcome::Drifted : EProfileOutcome::Restored);
    if (printed == CliExit::kCommunicationFailure) {
        shown_IO["outcome"] = "failed";
    } else if (printed == CliExit::kBadUsage) {
        shown_IO["outcome"] = "invalid";
    } else {
        shown_IO["outcome"] = changed ? (check_I ? "would change" : "changed") : "unchanged";
    }
}

bool CTool::KeepEntry(const SFoundDisplay& display_I, const SStudioEntry& entry_I, bool check_I,
                      json& shown_IO) {
    // Beside the kept profiles' file: "studio" (the demo's "demo-studio"), a profile per display.
    const std::filesystem::path keptFile = Utf8Path(mKeptFile);
    const std::string prefix = Utf8String(keptFile.filename()).rfind("demo-", 0) == 0 ? "demo-" : "";
    const std::filesystem::path folder = keptFile.parent_path() / (prefix + "studio");
    std::string name = display_I.serial.substr(0, 64);
    std::replace_if(
        name.begin(), name.end(), [](char c_I) { return std::isalnum(static_cast<unsigned char>(c_I)) == 0; },
        '_');
    const std::string path = Utf8String(folder / (name + ".json"));
    SProfile profile = entry_I.profile;
    profile.model = display_I.model;
    profile.serial = display_I.serial;
    shown_IO["keeps"] = path;
    CKeptProfiles kept(mKeptFile);
    if (mKeptFile.empty() || !LoadKept(kept)) {
        mErr << "the kept profiles cannot be read; the display keeps nothing new\n";
        shown_IO["keep"] = "failed";
        return false;
    }
    std::ifstream in(Utf8Path(path), std::ios::binary);
    const std::string had((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    const std::optional<SKeptProfile> keeps = kept.Of(display_I.model, display_I.serial);
    if (had == ProfileText(profile) && keeps && keeps->profile == path) {
        shown_IO["keep"] = "unchanged";
        return false;
    }
    shown_IO["keep"] = check_I ? "would change" : "changed";
    if (check_I) {
        return true;
    }
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    std::string problem;
    kept.Keep(display_I.model, display_I.serial, path);
    if (!WriteProfileFile(path, profile, problem) || !kept.Store(problem)) {
        mErr << problem << "\n";
        shown_IO["keep"] = "failed";
        return false;
    }
    return true;
}

int CTool::Apply(const std::string& file_I, bool check_I, bool json_I) {
    std::string problem;
    const std::optional<SStudioFile> studio = ReadStudioFile(file_I, problem);
    if (!studio) {
        mErr << problem << "\n";
        return CliExit::kBadUsage;
    }
    for (const std::string& line : studio->problems) {
        mErr << file_I << ": " << line << "\n";
    }
    std::map<std::string, int> totals = {
        {"changed", 0}, {"unchanged", 0}, {"failed", 0}, {"invalid", 0}, {"no entry", 0}};
    json all = json::array();
    std::vector<SFoundDisplay>& displays = Displays();
    for (SFoundDisplay& display : displays) {
        const char* family = display.display->HelpPageName();
        const SStudioEntry* entry =
            StudioEntryFor(*studio, display.model, family != nullptr ? family : "", display.serial);
        json shown = {{"model", display.model}, {"serial", display.serial}, {"route", display.route}};
        if (!json_I) {
            mOut << display.model << " (serial " << display.serial << ", via " << display.route << ")"
                 << (entry == nullptr ? ": " : ":\n");
        }
        if (entry == nullptr) {
            shown["outcome"] = "no entry";
        } else {
            shown["entry"] = entry->serial.empty() ? entry->model : entry->model + " serial " + entry->serial;
            ApplyEntry(display, *entry, check_I, json_I, shown);
        }
        const std::string outcome = shown["outcome"].get<std::string>();
        ++totals[outcome == "would change" ? "changed" : outcome];
        if (!json_I) {
            mOut << (entry == nullptr ? "" : "  ")
                 << (outcome == "no entry" ? "no entry for this model" : outcome) << "\n";
        }
        all.push_back(shown);
    }
    mHeld.reset();
    PrintNotes();
    const char* changedName = check_I ? "would change" : "changed";
    if (json_I) {
        json counted = {
            {"displays", displays.size()},      {check_I ? "would_change" : "changed", totals["changed"]},
            {"unchanged", totals["unchanged"]}, {"failed", totals["failed"]},
            {"invalid", totals["invalid"]},     {"no_entry", totals["no entry"]}};
        mOut << json{{"studio", file_I},
                     {"check", check_I},
                     {"displays", all},
                     {"totals", counted},
                     {"problems", studio->problems},
                     {"notes", mSource.Notes()}}
                    .dump(2)
             << "\n";
    } else {
        mOut << displays.size() << " display" << (displays.size() == 1 ? "" : "s") << ": "
             << totals["changed"] << " " << changedName << ", " << totals["unchanged"] << " unchanged, "
             << totals["failed"] << " failed, " << totals["invalid"] << " with values they do not take, "
             << totals["no entry"] << " without an entry\n";
    }
    if (totals["failed"] > 0) {
        return CliExit::kCommunicationFailure;
    }
    if (!mSource.Notes().empty()) {
        return CliExit::kNoSuchDisplay;  // a display may have been missed: never "ok"
    }
    if (totals["invalid"] > 0 || !studio->problems.empty()) {
        return CliExit::kBadUsage;
    }
    return totals["changed"] > 0 ? CliExit::kChanged : CliExit::kDone;
}
