// The context's helpers: the revert notes, the search, finding and holding a display, values by
// name, checks before a write and reads after it, reports.

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
#include "SettingNames.h"
#include "StudioFile.h"
#include "TextFile.h"
#include "codes.h"

using nlohmann::json;

json CTool::LoadChanges() const {
    std::string problem;
    std::error_code error;
    if (mChangesFile.empty() || !std::filesystem::exists(Utf8Path(mChangesFile), error)) {
        return json::object();
    }
    const std::optional<std::string> text = ReadTextFile(mChangesFile, problem);
    const json changes = text ? json::parse(*text, nullptr, false) : json();
    if (!changes.is_object()) {
        // Started afresh: the notes of earlier runs are lost, said here.
        mErr << (text ? mChangesFile + ": damaged revert notes (not a JSON object); started afresh" : problem)
             << "\n";
        return json::object();
    }
    return changes;
}

void CTool::StoreChanges(const json& changes_I, const char* consequence_I) const {
    if (mChangesFile.empty()) {
        return;
    }
    std::string problem;
    if (!WriteTextFile(mChangesFile, changes_I.dump(1) + "\n", problem)) {
        // What was done on the display stands; the user hears what revert will get wrong.
        mErr << problem << "; " << consequence_I << "\n";
    }
}

void CTool::Remember(const SFoundDisplay& display_I, uint8_t code_I) {
    if (mChangesFile.empty()) {
        return;
    }
    json changes = LoadChanges();
    char code[4];
    std::snprintf(code, sizeof(code), "%02X", code_I);
    json& noted = changes[display_I.serial];
    if (!noted.is_object()) {
        noted = json::object();
    }
    if (!noted.contains(code)) {
        const SVCPValue before = display_I.display->GetVCPValue(code_I, false);
        if (!before.valid) {
            return;
        }
        noted[code] = before.value;
        StoreChanges(changes, "revert cannot undo this change");
    }
}

void CTool::Forget(const SFoundDisplay& display_I) {
    if (mChangesFile.empty()) {
        return;
    }
    json changes = LoadChanges();
    if (changes.erase(display_I.serial) != 0) {
        StoreChanges(changes, "revert would still put back the values from before");
    }
}

std::vector<SFoundDisplay>& CTool::Displays() {
    if (!mSourceSet) {
        mSourceSet = true;
        if (!mNoCache && !mCacheFile.empty()) {
            if (const std::string why = NotAFileReason(mCacheFile); !why.empty()) {
                // The command goes on without the cache; what is at the path is left alone.
                mErr << "warning: the capabilities cache " << mCacheFile << " is not used (" << why << ")\n";
            } else {
                mCache = std::make_shared<CCapabilitiesCache>(mCacheFile);
            }
        }
        SSearchOptions options;
        options.atOnce = !mSerialInit;
        options.cache = mCache;
        mSource.SetSearchOptions(options);
        // The same order on every system, by route, so that an index means the same display
        // on Windows and on Linux.
        std::vector<SFoundDisplay>& found = mSource.Displays();
        const auto rank = [](const SFoundDisplay& display_I) {
            static const std::vector<std::string> kRoutes = {"graphics driver", "HID", "serial", "FTDI",
                                                             "TI"};
            return std::find(kRoutes.begin(), kRoutes.end(), display_I.route) - kRoutes.begin();
        };
        std::stable_sort(found.begin(), found.end(), [&](const SFoundDisplay& a_I, const SFoundDisplay& b_I) {
            return rank(a_I) < rank(b_I);
        });
    }
    return mSource.Displays();
}

bool CTool::Ready(SFoundDisplay& display_I) {
    if (!display_I.ready) {
        display_I.display->UseCapabilitiesCache(mCache, display_I.identity);
        display_I.ready = display_I.display->Initialize();
    }
    return display_I.ready;
}

SFoundDisplay* CTool::FindListed(const std::string& display_I, int& exitCode_O) {
    std::vector<SFoundDisplay>& displays = Displays();
    for (size_t i = 0; i < displays.size(); ++i) {
        if (display_I == std::to_string(i) || display_I == displays[i].serial) {
            return &displays[i];
        }
    }
    mErr << "no display " << display_I << ": no display found has that index or serial number ("
         << (displays.empty()       ? std::string("none found")
             : displays.size() == 1 ? std::string("index 0")
                                    : "index 0 to " + std::to_string(displays.size() - 1))
         << "; see list)\n";
    PrintNotes();
    exitCode_O = CliExit::kNoSuchDisplay;
    return nullptr;
}

bool CTool::Hold(const SFoundDisplay& display_I, int& exitCode_O) {
    mHeld.reset();
    mHeld = HoldDisplayLock(display_I.serial, kLockWait);
    if (!mHeld) {
        mErr << display_I.model << " (serial " << display_I.serial
             << ") is in use by the settings window or the keeper; try again once it is done\n";
        exitCode_O = CliExit::kCommunicationFailure;
    }
    return mHeld != nullptr;
}

SFoundDisplay* CTool::Find(const std::string& display_I, int& exitCode_O) {
    SFoundDisplay* found = FindListed(display_I, exitCode_O);
    if (found != nullptr && !Hold(*found, exitCode_O)) {
        return nullptr;
    }
    if (found != nullptr && !Ready(*found)) {
        mErr << "display " << display_I << " (" << found->model << ") does not answer\n";
        exitCode_O = CliExit::kCommunicationFailure;
        return nullptr;
    }
    return found;
}

std::optional<STarget> CTool::Target(UiDisplayDelegate& display_I, const std::string& name_I) {
    STarget target;
    target.text = name_I;
    if (std::optional<ESetting> setting = SettingByName(name_I)) {
        target.setting = setting;
        target.code = display_I.Traits().SettingCode(*setting);
        const VCPOptionPtr option = target.code != 0 ? display_I.Option(target.code) : nullptr;
        const bool unread = option && !option->HasOriginal();
        // Code 0: a setting the program keeps itself (the colour mode of most families).
        if (!display_I.GetSetting(*setting).supported) {
            mErr << name_I << ": this display has no such setting\n";
            return std::nullopt;
        }
        target.justRead = unread && option->HasOriginal() && !option->HasError();
        return target;
    }
    if (std::optional<uint8_t> code = ParseVcpCode(name_I)) {
        target.code = *code;
        if (!display_I.Option(*code)) {
            mErr << name_I << ": this display does not offer VCP code " << name_I << "\n";
            return std::nullopt;
        }
        return target;
    }
    const std::string hint = NearestProfileNameHint(name_I);
    mErr << name_I << ": not a setting name or a VCP code"
         << (hint.empty() ? " (brightness, contrast, 0x10, ...)" : hint) << "\n";
    return std::nullopt;
}

json CTool::ValueJson(UiDisplayDelegate& display_I, const STarget& target_I, bool& ok_O) {
    json value;
    value["name"] = target_I.setting ? SettingName(*target_I.setting) : CodeLabel(display_I, target_I.code);
    value["code"] = target_I.code;
    if (target_I.setting) {
        // Through the delegate, as the dialogs read it (per-family codes and value lists); a
        // value read a moment ago is not asked for again.
        if (target_I.code != 0) {
            display_I.GetVCPValue(target_I.code, !target_I.justRead);
        }
        const SSettingState state = display_I.GetSetting(*target_I.setting);
        ok_O = state.valid;
        value["value"] = state.value;
        if (state.entries.empty()) {
            value["minimum"] = state.range.minimum;
            value["maximum"] = state.range.maximum;
        } else {
            json choices = json::array();
            for (const SEntry& entry : state.entries) {
                choices.push_back(entry.value);
            }
            value["choices"] = choices;
        }
    } else {
        const SVCPValue read = display_I.GetVCPValue(target_I.code, true);
        ok_O = read.valid;
        value["value"] = read.value;
        if (read.range.maximum > read.range.minimum) {
            value["minimum"] = read.range.minimum;
            value["maximum"] = read.range.maximum;
        }
    }
    const std::string valueName = NameOfValue(display_I, target_I, value["value"].get<int32_t>());
    if (!valueName.empty()) {
        value["text"] = valueName;
    }
    return value;
}

int CTool::Failed(UiDisplayDelegate& display_I, const std::string& what_I) {
    const std::string detail = display_I.LastFailure();
    mErr << what_I << ": the display did not answer as expected"
         << (detail.empty() ? "" : " (" + detail + ")") << "\n";
    return CliExit::kCommunicationFailure;
}

std::string CTool::Refusal(UiDisplayDelegate& display_I, const STarget& target_I, int32_t value_I) {
    const std::string where = target_I.text + "=" + std::to_string(value_I);
    if (target_I.setting) {
        const SSettingState state = display_I.GetSetting(*target_I.setting);
        if (!state.writable) {
            return where + ": this setting cannot be changed on this display";
        }
        if (!state.entries.empty()) {
            const bool offered = state.Offers(value_I);
            std::string choices;
            for (const SEntry& entry : state.entries) {
                const std::string name = ChoiceName(entry.stringId);
                choices += (choices.empty() ? "" : ", ") + std::to_string(entry.value) +
                           (name.empty() ? "" : " " + name);
            }
            return offered ? std::string()
                           : where + ": not one of the values this display offers (" + choices + ")";
        }
        // A setting the dialogs keep to themselves (the menu language) takes its code's list.
        const VCPOptionPtr option = target_I.code != 0 ? display_I.Option(target_I.code) : nullptr;
        if (const std::vector<SNamedValue> listed =
                option ? OptionValuesOf(*option) : std::vector<SNamedValue>();
            !listed.empty()) {
            std::string values;
            for (const SNamedValue& named : listed) {
                values += (values.empty() ? "" : ", ") + std::to_string(named.value);
            }
            return option->IsValidValue(value_I)
                       ? std::string()
                       : where + ": not one of the values this display offers (" + values + ")";
        }
        if (!state.Offers(value_I)) {
            return where + ": outside " + std::to_string(state.range.minimum) + " to " +
                   std::to_string(state.range.maximum);
        }
        return {};
    }
    VCPOptionPtr option = display_I.Option(target_I.code);
    if (!option->Info().Writable()) {
        return where + ": VCP code " + target_I.text + " is read-only";
    }
    display_I.GetVCPValue(target_I.code, false);
    if (!option->IsValidValue(value_I)) {
        return where + ": not a value this display accepts for that code";
    }
    return {};
}

std::string CTool::WriteVerified(UiDisplayDelegate& display_I, const STarget& target_I, int32_t value_I) {
    display_I.ClearLastFailure();
    const auto failed = [&] {
        const std::string detail = display_I.LastFailure();
        return target_I.text + ": the display did not answer as expected" +
               (detail.empty() ? "" : " (" + detail + ")");
    };
    const auto notTaken = [&](int32_t has_I) {
        return target_I.text + ": the display did not take " + std::to_string(value_I) + " (it has " +
               std::to_string(has_I) + ")";
    };
    if (!target_I.setting) {
        if (display_I.SetVCPValueVerify(target_I.code, value_I, 1)) {
            return {};
        }
        const SVCPValue now = display_I.GetVCPValue(target_I.code, false);
        return now.valid ? notTaken(now.value) : failed();
    }
    if (!display_I.SetSetting(*target_I.setting, value_I)) {
        return failed();
    }
    VCPOptionPtr option = display_I.Option(target_I.code);
    if (option && option->Info().WriteOnly()) {
        return {};  // an action: nothing to read back
    }
    if (target_I.code != 0 && !display_I.GetVCPValue(target_I.code, true).valid) {
        return failed();
    }
    const SSettingState after = display_I.GetSetting(*target_I.setting);
    if (!after.valid) {
        return failed();
    }
    return after.value == value_I ? std::string() : notTaken(after.value);
}

std::optional<SProfile> CTool::ReadProfile(const std::string& file_I) {
    std::string problem;
    std::optional<SProfile> profile = ReadProfileFile(file_I, problem);
    if (!profile) {
        mErr << problem << "\n";
    }
    return profile;
}

std::string CTool::ShownValue(SFoundDisplay& found_I, const std::string& name_I, int32_t value_I) {
    const std::optional<ESetting> setting = SettingByName(name_I);
    if (!setting) {
        return std::to_string(value_I);  // a custom colour channel
    }
    const STarget target{setting, found_I.display->Traits().SettingCode(*setting), name_I};
    return Shown(*found_I.display, target, value_I);
}

json CTool::ReportJson(SFoundDisplay& found_I, const SProfileReport& report_I) {
    json items = json::array();
    for (const SProfileItem& item : report_I.items) {
        json entry = {{"setting", item.name}, {"outcome", ProfileOutcomeName(item.outcome)}};
        if (item.expected) {
            entry["expected"] = *item.expected;
        }
        if (item.actual) {
            entry["actual"] = *item.actual;
        }
        if (!item.detail.empty()) {
            entry["detail"] = item.detail;
        }
        items.push_back(entry);
    }
    return {{"model", found_I.model},
            {"serial", found_I.serial},
            {"matches", report_I.Matches()},
            {"items", items}};
}

int CTool::PrintReport(SFoundDisplay& found_I, const SProfileReport& report_I, bool json_I) {
    int result = CliExit::kDone;
    for (const SProfileItem& item : report_I.items) {
        const std::string expected = item.expected ? ShownValue(found_I, item.name, *item.expected) : "";
        const std::string actual = item.actual ? ShownValue(found_I, item.name, *item.actual) : "";
        switch (item.outcome) {
            case EProfileOutcome::Matched: break;
            case EProfileOutcome::Drifted:
                result = std::max(result, CliExit::kDrifted);
                if (!json_I) {
                    mOut << item.name << ": expected " << expected << ", has " << actual << "\n";
                }
                break;
            case EProfileOutcome::Restored:
                if (!json_I) {
                    mOut << item.name << ": " << actual << " -> " << expected << "\n";
                }
                break;
            case EProfileOutcome::Skipped:
                if (!json_I) {
                    mOut << item.name << ": skipped (" << item.detail << ")\n";
                }
                break;
            case EProfileOutcome::Invalid:
                if (result == CliExit::kDone) {
                    result = CliExit::kBadUsage;
                }
                mErr << item.name << ": skipped (" << item.detail << ")\n";
                break;
            case EProfileOutcome::Failed:
                result = CliExit::kCommunicationFailure;
                mErr << item.name << ": " << item.detail << "\n";
                break;
        }
    }
    return result;
}

bool CTool::LoadKept(CKeptProfiles& kept_O) {
    std::string problem;
    const bool loaded = kept_O.Load(problem);
    if (!problem.empty()) {
        mErr << problem << "\n";
    }
    return loaded;
}
