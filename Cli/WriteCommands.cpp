// set, save, revert and reset: changes, each checked first and read back.

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
#include "ParallelWork.h"
#include "Profile.h"
#include "ProgressLine.h"
#include "SettingNames.h"
#include "StudioFile.h"
#include "TextFile.h"
#include "codes.h"

using nlohmann::json;

int CTool::Set(SFoundDisplay& found_I, const std::vector<std::string>& assignments_I, bool save_I) {
    UiDisplayDelegate& display = *found_I.display;
    // Everything is checked before anything is written.
    std::vector<std::pair<STarget, int32_t>> writes;
    for (size_t i = 0; i < assignments_I.size(); ++i) {
        const std::string& assignment = assignments_I[i];
        const size_t equals = assignment.find('=');
        if (equals == std::string::npos) {
            // "set 0 brightness 30", the way get is written: show the form meant.
            const bool valueFollows =
                i + 1 < assignments_I.size() && assignments_I[i + 1].find('=') == std::string::npos;
            if (valueFollows) {
                mErr << assignment << " " << assignments_I[i + 1] << ": write " << assignment << "="
                     << assignments_I[i + 1] << "; nothing was written\n";
            } else {
                mErr << assignment << ": write " << assignment << "=VALUE; nothing was written\n";
            }
            return CliExit::kBadUsage;
        }
        std::optional<STarget> target = Target(display, assignment.substr(0, equals));
        if (!target) {
            return CliExit::kBadUsage;
        }
        std::optional<int32_t> value = ValueByText(display, *target, assignment.substr(equals + 1));
        if (!value) {
            std::string names;
            for (const SNamedValue& named : NamedValues(display, *target)) {
                if (!named.name.empty()) {
                    names += (names.empty() ? "" : ", ") + named.name;
                }
            }
            const std::string text = assignment.substr(equals + 1);
            const bool digits = !text.empty() && text.find_first_not_of("-0123456789") == std::string::npos;
            if (digits) {
                mErr << assignment << ": far outside what any setting takes; nothing was written\n";
            } else {
                mErr << assignment << ": the value is not a number"
                     << (names.empty() ? "" : " or one of " + names) << "\n";
            }
            return CliExit::kBadUsage;
        }
        const std::string refusal = Refusal(display, *target, *value);
        if (!refusal.empty()) {
            mErr << refusal << "; nothing was written\n";
            return CliExit::kBadUsage;
        }
        writes.emplace_back(*target, *value);
    }
    for (const auto& [target, value] : writes) {
        Remember(found_I, target.code);
        if (const std::string problem = WriteVerified(display, target, value); !problem.empty()) {
            mErr << problem << "\n";
            return CliExit::kCommunicationFailure;
        }
    }
    if (save_I) {
        if (!display.Save()) {
            return Failed(display, "save");
        }
        Forget(found_I);
    }
    return CliExit::kDone;
}

int CTool::Save(SFoundDisplay& found_I) {
    // Saving stores the display's current values, whoever set them.
    if (!found_I.display->GetConnector()->SaveSettingsToScalar()) {
        return Failed(*found_I.display, "save");
    }
    Forget(found_I);
    return CliExit::kDone;
}

int CTool::Revert(SFoundDisplay& found_I) {
    const json changes = LoadChanges();
    if (!changes.contains(found_I.serial) || changes[found_I.serial].empty()) {
        mOut << "nothing to revert: no unsaved changes made with this tool\n";
        return CliExit::kDone;
    }
    int result = CliExit::kDone;
    for (const auto& [code, value] : changes[found_I.serial].items()) {
        const std::optional<uint8_t> number = ParseVcpCode(code);
        if (!number || !value.is_number_integer() || value.get<int64_t>() < 0 ||
            value.get<int64_t>() > 0xFFFF) {
            mErr << mChangesFile << ": damaged revert notes (\"" << code << "\": " << value.dump()
                 << " is not a VCP code and its value); left out\n";
            result = std::max(result, CliExit::kBadUsage);
            continue;
        }
        if (!found_I.display->Option(*number)) {
            continue;
        }
        const std::string label = RevertLabel(*found_I.display, *number);
        if (!found_I.display->SetVCPValueVerify(*number, value.get<int32_t>(), 1)) {
            result = Failed(*found_I.display, label);
            continue;
        }
        // Named as the code's values are (a setting's values need not be its code's).
        mOut << label << ": back to "
             << Shown(*found_I.display, STarget{std::nullopt, *number, label}, value.get<int32_t>()) << "\n";
    }
    if (result != CliExit::kCommunicationFailure) {
        Forget(found_I);  // what was damaged cannot be put back later either
    }
    return result;
}

int CTool::Reset(SFoundDisplay& found_I, const std::string& what_I, bool yes_I) {
    if (what_I == "factory") {
        if (!yes_I) {
            mErr << "reset factory puts every setting of the display back to its factory value; add --yes\n";
            return CliExit::kBadUsage;
        }
        const CProgressLine progress(mShowProgress ? &mErr : nullptr,
                                     found_I.model +
                                         ": back to the factory settings; the display restarts, which takes "
                                         "about 20 seconds");
        if (!found_I.display->FactoryReset()) {
            return Failed(*found_I.display, "reset factory");
        }
        // The factory values are the display's now: earlier changes are no longer there to undo.
        Forget(found_I);
        return CliExit::kDone;
    }
    return found_I.display->ResetColor() ? CliExit::kDone : Failed(*found_I.display, "reset colour");
}
