// keep and restore: the profiles displays keep, and putting them back.

#include "Tool.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Clock.h"
#include "DisplayLock.h"
#include "DisplayNames.h"
#include "KeptProfiles.h"
#include "KeptRestore.h"
#include "ParallelWork.h"
#include "Profile.h"
#include "SettingNames.h"
#include "StudioFile.h"
#include "TextFile.h"
#include "codes.h"

using nlohmann::json;

int CTool::Keep(const std::string& display_I, const std::string& file_I, bool off_I, bool list_I) {
    CKeptProfiles kept(mKeptFile);
    if (mKeptFile.empty() || !LoadKept(kept)) {
        mErr << "the kept profiles cannot be read; nothing was changed\n";
        return CliExit::kBadUsage;
    }
    if (list_I) {
        for (const SKeptProfile& entry : kept.All()) {
            mOut << entry.model << "  serial " << entry.serial << "  keeps " << entry.profile << "\n";
        }
        if (kept.All().empty()) {
            mOut << "no display keeps a profile\n";
        }
        return CliExit::kDone;
    }
    if (display_I.empty() || (off_I == !file_I.empty())) {
        mErr << "write keep DISPLAY PROFILE, keep DISPLAY --off or keep --list\n";
        return CliExit::kBadUsage;
    }
    int exitCode = CliExit::kDone;
    SFoundDisplay* found = FindListed(display_I, exitCode);
    if (found == nullptr) {
        return exitCode;
    }
    if (off_I) {
        if (!kept.Forget(found->model, found->serial)) {
            mOut << found->model << " (serial " << found->serial << ") keeps no profile\n";
            return CliExit::kDone;
        }
    } else {
        std::error_code error;
        const std::string path =
            Utf8String(std::filesystem::absolute(Utf8Path(file_I), error).lexically_normal());
        if (!ReadProfile(path)) {
            return CliExit::kBadUsage;
        }
        kept.Keep(found->model, found->serial, path);
    }
    std::string problem;
    if (!kept.Store(problem)) {
        mErr << problem << "\n";
        return CliExit::kBadUsage;
    }
    mOut << found->model << " (serial " << found->serial << ") "
         << (off_I ? "keeps no profile now" : "keeps " + kept.Of(found->model, found->serial)->profile)
         << "\n";
    return CliExit::kDone;
}

int CTool::Restore(const std::string& display_I, bool json_I, int waitSeconds_I) {
    CKeptProfiles kept(mKeptFile);
    if (mKeptFile.empty() || !LoadKept(kept)) {
        return CliExit::kBadUsage;
    }
    std::vector<SFoundDisplay*> chosen;
    if (!display_I.empty()) {
        int exitCode = CliExit::kDone;
        SFoundDisplay* found = FindListed(display_I, exitCode);
        if (found == nullptr) {
            return exitCode;
        }
        if (!kept.Of(found->model, found->serial)) {
            mErr << found->model << " (serial " << found->serial << ") keeps no profile; see keep\n";
            return CliExit::kBadUsage;
        }
        chosen.push_back(found);
    } else {
        for (SFoundDisplay& display : Displays()) {
            if (kept.Of(display.model, display.serial)) {
                chosen.push_back(&display);
            }
        }
    }
    int result = CliExit::kDone;
    json all = json::array();
    for (SFoundDisplay* display : chosen) {
        const SKeptProfile entry = *kept.Of(display->model, display->serial);
        json shown = {{"model", display->model}, {"serial", display->serial}, {"profile", entry.profile}};
        if (!json_I) {
            mOut << display->model << " (serial " << display->serial << "):\n";
        }
        // A display just switched on answers after a few seconds: ask again once a second.
        int held = CliExit::kDone;
        // The tool keeps the lock it took until it takes the next one.
        const SRestoreWays ways{[this, &held](const SFoundDisplay& display_I) -> std::shared_ptr<void> {
                                    return Hold(display_I, held) ? std::make_shared<bool>(true) : nullptr;
                                },
                                [this, waitSeconds_I](SFoundDisplay& display_I) {
                                    for (int waited = 0; !Ready(display_I) && waited < waitSeconds_I;
                                         ++waited) {
                                        Clock::PauseMs(1000);
                                    }
                                    return display_I.ready;
                                }};
        const SKeptRestore restore = RestoreKept(*display, kept, ways);
        switch (restore.outcome) {
            case SKeptRestore::EOutcome::NotKept:
            case SKeptRestore::EOutcome::Applied: break;
            case SKeptRestore::EOutcome::ProfileUnreadable:
                mErr << restore.problem << "\n";
                result = std::max(result, CliExit::kBadUsage);
                shown["problem"] = restore.problem;
                break;
            case SKeptRestore::EOutcome::Held:
                result = held;
                shown["problem"] = "in use";
                break;
            case SKeptRestore::EOutcome::NotAnswering:
                mErr << display->model << " (serial " << display->serial << ") does not answer\n";
                result = CliExit::kCommunicationFailure;
                shown["problem"] = "does not answer";
                break;
        }
        if (restore.outcome != SKeptRestore::EOutcome::Applied) {
            all.push_back(shown);
            continue;
        }
        const SProfileReport& report = restore.report;
        if (json_I) {
            shown.update(ReportJson(*display, report));
        } else if (!report.Any(EProfileOutcome::Restored) && report.Matches()) {
            mOut << "nothing drifted\n";
        }
        const int printed = PrintReport(*display, report, json_I);
        result = printed == CliExit::kCommunicationFailure ? printed : std::max(result, printed);
        all.push_back(shown);
    }
    if (json_I) {
        mOut << all.dump(2) << "\n";
    } else if (chosen.empty()) {
        mOut << "no display found keeps a profile\n";
    }
    return result;
}
