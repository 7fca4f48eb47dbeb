#include "CommandLineTool.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <map>
#include <optional>

#include "Clock.h"
#include "ParallelWork.h"
#include "DemoDisplays.h"
#include "DisplayLock.h"
#include "DisplayNames.h"
#include "KeptProfiles.h"
#include "Profile.h"
#include "SettingNames.h"
#include "StudioFile.h"
#include "TextFile.h"
#include "codes.h"

namespace {

using nlohmann::json;

// A line on standard error while a long operation runs, a dot added every two seconds and
// "done" at its end; nothing when no one watches (no stream).
class CProgressLine {
public:
    CProgressLine(std::ostream* err_I, const std::string& what_I) : mErr(err_I) {
        if (mErr == nullptr) {
            return;
        }
        *mErr << what_I << " " << std::flush;
        mTicker = std::thread([this] {
            std::unique_lock<std::mutex> lock(mMutex);
            // Real seconds, not the protocol's clock: this is for the eye only.
            while (!mCondition.wait_for(lock, std::chrono::seconds(2), [this] { return mDone; })) {
                *mErr << "." << std::flush;
            }
        });
    }
    ~CProgressLine() {
        if (mErr == nullptr) {
            return;
        }
        {
            const std::lock_guard<std::mutex> lock(mMutex);
            mDone = true;
        }
        mCondition.notify_one();
        mTicker.join();
        *mErr << " done\n" << std::flush;
    }
    CProgressLine(const CProgressLine&) = delete;
    CProgressLine& operator=(const CProgressLine&) = delete;

private:
    std::ostream* mErr;
    std::thread mTicker;
    std::mutex mMutex;
    std::condition_variable mCondition;
    bool mDone = false;
};

class CTool {
public:
    CTool(IDisplaySource& source_I, std::ostream& out_I, std::ostream& err_I, std::string changesFile_I,
          std::string keptFile_I, std::string cacheFile_I)
        : mSource(source_I),
          mOut(out_I),
          mErr(err_I),
          mChangesFile(std::move(changesFile_I)),
          mKeptFile(std::move(keptFile_I)),
          mCacheFile(std::move(cacheFile_I)) {}

    // --serial-init and --no-cache, set while the command line is read.
    bool mSerialInit = false;
    bool mNoCache = false;
    // A person reads the errors at a terminal: long operations say what they do meanwhile.
    bool mShowProgress = false;

    int List(bool json_I);

    // Runs a command on the display by index or serial number once it is found and answers;
    // otherwise the exit code of why not.
    template <typename Command>
    int OnDisplay(const std::string& display_I, Command command_I) {
        int exitCode = CliExit::kDone;
        SCliDisplay* found = Find(display_I, exitCode);
        return found == nullptr ? exitCode : command_I(*found);
    }
    // The commands on one display, run through OnDisplay.
    int Caps(SCliDisplay& found_I, bool json_I);
    int Get(SCliDisplay& found_I, const std::vector<std::string>& names_I, bool json_I);
    int Set(SCliDisplay& found_I, const std::vector<std::string>& assignments_I, bool save_I);
    int Save(SCliDisplay& found_I);
    int Revert(SCliDisplay& found_I);
    int Reset(SCliDisplay& found_I, const std::string& what_I, bool yes_I);
    int ProfileSave(SCliDisplay& found_I, const std::string& file_I);
    int ProfileApply(SCliDisplay& found_I, const std::string& file_I, bool json_I);
    int Check(SCliDisplay& found_I, const std::string& file_I, bool json_I);
    // Names the profile a display keeps, stops keeping one, or lists them.
    int Keep(const std::string& display_I, const std::string& file_I, bool off_I, bool list_I);
    // For each display found that keeps a profile (or the one named): reads, writes what
    // drifted, verifies, reports.
    int Restore(const std::string& display_I, bool json_I, int waitSeconds_I);
    // Sets every display found as the studio file's entry for it says: reads, writes what
    // differs, verifies (with check_I: writes nothing and says what would change).
    int Apply(const std::string& file_I, bool check_I, bool json_I);

private:
    // What apply makes of one display: its outcome ("changed", ...) into shown_IO.
    void ApplyEntry(SCliDisplay& display_I, const SStudioEntry& entry_I, bool check_I, bool json_I,
                    json& shown_IO);
    // Makes the display keep the entry's settings (a profile of them in the state folder);
    // whether that changed anything.
    bool KeepEntry(const SCliDisplay& display_I, const SStudioEntry& entry_I, bool check_I, json& shown_IO);
    // The display by index ("0") or serial number, initialised; null (and the message, and
    // exitCode_O) when there is none or it does not answer.
    SCliDisplay* Find(const std::string& display_I, int& exitCode_O);
    // Holds the display's lock (the settings window or the keeper may be writing to it).
    bool Hold(const SCliDisplay& display_I, int& exitCode_O);
    // The same without initialising it: keeping a profile needs only its model and serial.
    SCliDisplay* FindListed(const std::string& display_I, int& exitCode_O);
    std::optional<SProfile> ReadProfile(const std::string& file_I);
    bool LoadKept(CKeptProfiles& kept_O);
    // A report's lines: drift on the output, failures on errors; the exit code it stands for.
    int PrintReport(SCliDisplay& found_I, const SProfileReport& report_I, bool json_I);
    json ReportJson(SCliDisplay& found_I, const SProfileReport& report_I);
    std::string ShownValue(SCliDisplay& found_I, const std::string& name_I, int32_t value_I);
    // What kept the search from displays, on standard error so that scripts' output stays clean.
    void PrintNotes() {
        for (const std::string& note : mSource.Notes()) {
            mErr << note << "\n";
        }
    }
    bool Ready(SCliDisplay& display_I);
    std::optional<STarget> Target(UiDisplayDelegate& display_I, const std::string& name_I);
    // Checks the value against what the display offers; the message when it does not.
    std::string Refusal(UiDisplayDelegate& display_I, const STarget& target_I, int32_t value_I);
    // Writes, then reads back what the display has: a set can look successful below while its
    // report never reached the display (the HID route acknowledges every set it sends).
    // "" when the display took the value, else what went wrong.
    std::string WriteVerified(UiDisplayDelegate& display_I, const STarget& target_I, int32_t value_I);
    json ValueJson(UiDisplayDelegate& display_I, const STarget& target_I, bool& ok_O);
    int Failed(UiDisplayDelegate& display_I, const std::string& what_I);
    // The unsaved changes this tool made, kept between runs so that revert can undo them:
    // {"<serial>": {"<code>": value before the first change}}.
    json LoadChanges() const;
    // consequence_I: what the user loses when the notes cannot be written.
    void StoreChanges(const json& changes_I, const char* consequence_I) const;
    // Notes the code's value before a write, unless an earlier unsaved change noted it already.
    void Remember(const SCliDisplay& display_I, uint8_t code_I);
    void Forget(const SCliDisplay& display_I);

    // The displays found, the search going as the command line asked.
    std::vector<SCliDisplay>& Displays();

    IDisplaySource& mSource;
    bool mSourceSet = false;
    std::shared_ptr<CCapabilitiesCache> mCache;
    std::ostream& mOut;
    std::ostream& mErr;
    std::string mChangesFile;
    std::string mKeptFile;
    std::string mCacheFile;
    // The lock of the display the command talks to; a keeper's restore round takes a second or two.
    static constexpr std::chrono::milliseconds kLockWait{3000};
    std::unique_ptr<CDisplayLock> mHeld;
};

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
        mErr << (text ? mChangesFile + ": damaged revert notes (not a JSON object); started afresh" : problem) << "\n";
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

void CTool::Remember(const SCliDisplay& display_I, uint8_t code_I) {
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

void CTool::Forget(const SCliDisplay& display_I) {
    if (mChangesFile.empty()) {
        return;
    }
    json changes = LoadChanges();
    if (changes.erase(display_I.serial) != 0) {
        StoreChanges(changes, "revert would still put back the values from before");
    }
}

std::vector<SCliDisplay>& CTool::Displays() {
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
        mSource.SetSearchOptions({!mSerialInit, mCache});
        // The same order on every system, by route, so that an index means the same display
        // on Windows and on Linux.
        std::vector<SCliDisplay>& found = mSource.Displays();
        const auto rank = [](const SCliDisplay& display_I) {
            static const std::vector<std::string> kRoutes = {"graphics driver", "HID", "serial", "FTDI", "TI"};
            return std::find(kRoutes.begin(), kRoutes.end(), display_I.route) - kRoutes.begin();
        };
        std::stable_sort(found.begin(), found.end(),
                         [&](const SCliDisplay& a_I, const SCliDisplay& b_I) { return rank(a_I) < rank(b_I); });
    }
    return mSource.Displays();
}

bool CTool::Ready(SCliDisplay& display_I) {
    if (!display_I.ready) {
        display_I.display->UseCapabilitiesCache(mCache, display_I.identity);
        display_I.ready = display_I.display->Initialize();
    }
    return display_I.ready;
}

SCliDisplay* CTool::FindListed(const std::string& display_I, int& exitCode_O) {
    std::vector<SCliDisplay>& displays = Displays();
    for (size_t i = 0; i < displays.size(); ++i) {
        if (display_I == std::to_string(i) || display_I == displays[i].serial) {
            return &displays[i];
        }
    }
    mErr << "no display " << display_I << ": no display found has that index or serial number ("
         << (displays.empty() ? std::string("none found")
                              : displays.size() == 1 ? std::string("index 0") : "index 0 to " + std::to_string(displays.size() - 1))
         << "; see list)\n";
    PrintNotes();
    exitCode_O = CliExit::kNoSuchDisplay;
    return nullptr;
}

bool CTool::Hold(const SCliDisplay& display_I, int& exitCode_O) {
    mHeld.reset();
    mHeld = HoldDisplayLock(display_I.serial, kLockWait);
    if (!mHeld) {
        mErr << display_I.model << " (serial " << display_I.serial
             << ") is in use by the settings window or the keeper; try again once it is done\n";
        exitCode_O = CliExit::kCommunicationFailure;
    }
    return mHeld != nullptr;
}

SCliDisplay* CTool::Find(const std::string& display_I, int& exitCode_O) {
    SCliDisplay* found = FindListed(display_I, exitCode_O);
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
    mErr << name_I << ": not a setting name or a VCP code" << (hint.empty() ? " (brightness, contrast, 0x10, ...)" : hint)
         << "\n";
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

int CTool::List(bool json_I) {
    std::vector<SCliDisplay>& displays = Displays();
    // Only the firmware version is read, of every display at once; a display that does not
    // report one is initialised, as its capabilities may name the code that holds it.
    std::vector<std::string> firmware(displays.size());
    RunForEach(displays.size(), !mSerialInit, [&](size_t index_I) {
        SCliDisplay& display = displays[index_I];
        if (!display.ready && !display.display->ReadFirmwareVersion().IsZero()) {
            firmware[index_I] = display.display->FirmwareVersion().ToString();
        } else {
            firmware[index_I] = Ready(display) ? display.display->FirmwareVersionText() : "";
        }
    });
    json all = json::array();
    for (size_t i = 0; i < displays.size(); ++i) {
        SCliDisplay& display = displays[i];
        const bool answering = !firmware[i].empty() || display.ready;
        const std::string shown = answering ? firmware[i] : "(not answering)";
        json entry = {{"index", i},
                      {"model", display.model},
                      {"serial", display.serial},
                      {"route", display.route},
                      {"firmware", shown},
                      {"answering", answering}};
        // What a studio file's entries can name the display's model by.
        if (const char* family = display.display->HelpPageName(); family != nullptr && *family != '\0') {
            entry["family"] = family;
        }
        all.push_back(entry);
        if (!json_I) {
            mOut << i << "  " << display.model << "  serial " << display.serial << "  via " << display.route
                 << "  firmware " << shown << "\n";
        }
    }
    PrintNotes();
    if (json_I) {
        mOut << all.dump(2) << "\n";
    } else if (all.empty()) {
        mOut << "no displays found\n";
    }
    return CliExit::kDone;
}

int CTool::Caps(SCliDisplay& found_I, bool json_I) {
    json codes = json::array();
    for (const auto& [code, option] : found_I.display->Options()) {
        if (!option) {
            continue;
        }
        json entry = {{"code", code}, {"name", CodeLabel(*found_I.display, static_cast<uint8_t>(code))}};
        if (std::optional<ESetting> setting = SettingOfCode(*found_I.display, static_cast<uint8_t>(code))) {
            entry["setting"] = SettingName(*setting);
        }
        entry["access"] =
            option->Info().WriteOnly() ? "write" : (option->Info().Writable() ? "read-write" : "read");
        json named = json::array();
        for (const SNamedValue& value : OptionValuesOf(*option)) {
            named.push_back({{"value", value.value}, {"text", value.name}});
        }
        if (!named.empty()) {
            entry["values"] = named;
        }
        codes.push_back(entry);
    }
    if (json_I) {
        mOut << codes.dump(2) << "\n";
        return CliExit::kDone;
    }
    char hex[8];
    for (const json& entry : codes) {
        std::snprintf(hex, sizeof(hex), "0x%02X", entry["code"].get<unsigned>());
        mOut << hex << "  " << entry["name"].get<std::string>() << "  (" << entry["access"].get<std::string>()
             << ")";
        if (entry.contains("setting") && !SameName(entry["setting"], entry["name"])) {
            mOut << "  as " << entry["setting"].get<std::string>();
        }
        mOut << "\n";
        if (entry.contains("values")) {
            for (const json& value : entry["values"]) {
                mOut << "        " << value["value"].get<int32_t>();
                if (!value["text"].get<std::string>().empty()) {
                    mOut << "  " << value["text"].get<std::string>();
                }
                mOut << "\n";
            }
        }
    }
    return CliExit::kDone;
}

int CTool::Get(SCliDisplay& found_I, const std::vector<std::string>& names_I, bool json_I) {
    std::vector<STarget> targets;
    for (const std::string& name : names_I) {
        std::optional<STarget> target = Target(*found_I.display, name);
        if (!target) {
            return CliExit::kBadUsage;
        }
        targets.push_back(*target);
    }
    json values = json::array();
    int result = CliExit::kDone;
    for (const STarget& target : targets) {
        bool ok = false;
        json value = ValueJson(*found_I.display, target, ok);
        if (!ok) {
            result = Failed(*found_I.display, target.text);
            continue;
        }
        values.push_back(value);
        if (!json_I) {
            mOut << value["name"].get<std::string>() << " = " << value["value"].get<int32_t>();
            if (value.contains("text")) {
                mOut << " (" << value["text"].get<std::string>() << ")";
            }
            mOut << "\n";
        }
    }
    if (json_I) {
        mOut << values.dump(2) << "\n";
    }
    return result;
}

std::string CTool::Refusal(UiDisplayDelegate& display_I, const STarget& target_I, int32_t value_I) {
    const std::string where = target_I.text + "=" + std::to_string(value_I);
    if (target_I.setting) {
        const SSettingState state = display_I.GetSetting(*target_I.setting);
        if (!state.writable) {
            return where + ": this setting cannot be changed on this display";
        }
        if (!state.entries.empty()) {
            const bool offered = std::any_of(state.entries.begin(), state.entries.end(),
                                             [&](const SEntry& entry_I) { return entry_I.value == value_I; });
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
        if (const std::vector<SNamedValue> listed = option ? OptionValuesOf(*option) : std::vector<SNamedValue>();
            !listed.empty()) {
            std::string values;
            for (const SNamedValue& named : listed) {
                values += (values.empty() ? "" : ", ") + std::to_string(named.value);
            }
            return option->IsValidValue(value_I)
                       ? std::string()
                       : where + ": not one of the values this display offers (" + values + ")";
        }
        if (value_I < state.range.minimum || value_I > state.range.maximum) {
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

int CTool::Set(SCliDisplay& found_I, const std::vector<std::string>& assignments_I, bool save_I) {
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
                mErr << assignment << ": the value is not a number" << (names.empty() ? "" : " or one of " + names)
                     << "\n";
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

int CTool::Save(SCliDisplay& found_I) {
    // Saving stores the display's current values, whoever set them.
    if (!found_I.display->GetConnector()->SaveSettingsToScalar()) {
        return Failed(*found_I.display, "save");
    }
    Forget(found_I);
    return CliExit::kDone;
}

int CTool::Revert(SCliDisplay& found_I) {
    const json changes = LoadChanges();
    if (!changes.contains(found_I.serial) || changes[found_I.serial].empty()) {
        mOut << "nothing to revert: no unsaved changes made with this tool\n";
        return CliExit::kDone;
    }
    int result = CliExit::kDone;
    for (const auto& [code, value] : changes[found_I.serial].items()) {
        const std::optional<uint8_t> number = ParseVcpCode(code);
        if (!number || !value.is_number_integer() || value.get<int64_t>() < 0 || value.get<int64_t>() > 0xFFFF) {
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
        mOut << label << ": back to " << Shown(*found_I.display, STarget{std::nullopt, *number, label}, value.get<int32_t>())
             << "\n";
    }
    if (result != CliExit::kCommunicationFailure) {
        Forget(found_I);  // what was damaged cannot be put back later either
    }
    return result;
}

int CTool::Reset(SCliDisplay& found_I, const std::string& what_I, bool yes_I) {
    if (what_I == "factory") {
        if (!yes_I) {
            mErr << "reset factory puts every setting of the display back to its factory value; add --yes\n";
            return CliExit::kBadUsage;
        }
        const CProgressLine progress(mShowProgress ? &mErr : nullptr,
                                     found_I.model + ": back to the factory settings; the display restarts, which takes "
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

int CTool::ProfileSave(SCliDisplay& found_I, const std::string& file_I) {
    std::string problem;
    if (!WriteProfileFile(file_I, CaptureProfile(*found_I.display, found_I.model, found_I.serial), problem)) {
        mErr << problem << "\n";
        return CliExit::kBadUsage;
    }
    return CliExit::kDone;
}

std::optional<SProfile> CTool::ReadProfile(const std::string& file_I) {
    std::string problem;
    std::optional<SProfile> profile = ReadProfileFile(file_I, problem);
    if (!profile) {
        mErr << problem << "\n";
    }
    return profile;
}

std::string CTool::ShownValue(SCliDisplay& found_I, const std::string& name_I, int32_t value_I) {
    const std::optional<ESetting> setting = SettingByName(name_I);
    if (!setting) {
        return std::to_string(value_I);  // a custom colour channel
    }
    const STarget target{setting, found_I.display->Traits().SettingCode(*setting), name_I};
    return Shown(*found_I.display, target, value_I);
}

json CTool::ReportJson(SCliDisplay& found_I, const SProfileReport& report_I) {
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
    return {{"model", found_I.model}, {"serial", found_I.serial}, {"matches", report_I.Matches()}, {"items", items}};
}

int CTool::PrintReport(SCliDisplay& found_I, const SProfileReport& report_I, bool json_I) {
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

int CTool::ProfileApply(SCliDisplay& found_I, const std::string& file_I, bool json_I) {
    const std::optional<SProfile> profile = ReadProfile(file_I);
    if (!profile) {
        return CliExit::kBadUsage;
    }
    const SProfileReport report =
        ApplyProfile(*found_I.display, *profile, [&](uint8_t code_I) { Remember(found_I, code_I); });
    if (json_I) {
        mOut << ReportJson(found_I, report).dump(2) << "\n";
    }
    return PrintReport(found_I, report, json_I);
}

int CTool::Check(SCliDisplay& found_I, const std::string& file_I, bool json_I) {
    const std::optional<SProfile> profile = ReadProfile(file_I);
    if (!profile) {
        return CliExit::kBadUsage;
    }
    const SProfileReport report = CheckProfile(*found_I.display, *profile);
    if (json_I) {
        mOut << ReportJson(found_I, report).dump(2) << "\n";
    } else if (report.Matches()) {
        mOut << "matches " << file_I << "\n";
    }
    return PrintReport(found_I, report, json_I);
}

bool CTool::LoadKept(CKeptProfiles& kept_O) {
    std::string problem;
    const bool loaded = kept_O.Load(problem);
    if (!problem.empty()) {
        mErr << problem << "\n";
    }
    return loaded;
}

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
    SCliDisplay* found = FindListed(display_I, exitCode);
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
         << (off_I ? "keeps no profile now" : "keeps " + kept.Of(found->model, found->serial)->profile) << "\n";
    return CliExit::kDone;
}

int CTool::Restore(const std::string& display_I, bool json_I, int waitSeconds_I) {
    CKeptProfiles kept(mKeptFile);
    if (mKeptFile.empty() || !LoadKept(kept)) {
        return CliExit::kBadUsage;
    }
    std::vector<SCliDisplay*> chosen;
    if (!display_I.empty()) {
        int exitCode = CliExit::kDone;
        SCliDisplay* found = FindListed(display_I, exitCode);
        if (found == nullptr) {
            return exitCode;
        }
        if (!kept.Of(found->model, found->serial)) {
            mErr << found->model << " (serial " << found->serial << ") keeps no profile; see keep\n";
            return CliExit::kBadUsage;
        }
        chosen.push_back(found);
    } else {
        for (SCliDisplay& display : Displays()) {
            if (kept.Of(display.model, display.serial)) {
                chosen.push_back(&display);
            }
        }
    }
    int result = CliExit::kDone;
    json all = json::array();
    for (SCliDisplay* display : chosen) {
        const SKeptProfile entry = *kept.Of(display->model, display->serial);
        json shown = {{"model", display->model}, {"serial", display->serial}, {"profile", entry.profile}};
        if (!json_I) {
            mOut << display->model << " (serial " << display->serial << "):\n";
        }
        std::string problem;
        const std::optional<SProfile> profile = ReadProfileFile(entry.profile, problem);
        if (!profile) {
            mErr << problem << "\n";
            result = std::max(result, CliExit::kBadUsage);
            shown["problem"] = problem;
            all.push_back(shown);
            continue;
        }
        int held = CliExit::kDone;
        if (!Hold(*display, held)) {
            result = held;
            shown["problem"] = "in use";
            all.push_back(shown);
            continue;
        }
        // A display just switched on answers after a few seconds: ask again once a second.
        for (int waited = 0; !Ready(*display) && waited < waitSeconds_I; ++waited) {
            Clock::PauseMs(1000);
        }
        if (!display->ready) {
            mErr << display->model << " (serial " << display->serial << ") does not answer\n";
            result = CliExit::kCommunicationFailure;
            shown["problem"] = "does not answer";
            all.push_back(shown);
            continue;
        }
        // Checked first: a display that kept its settings is only read.
        const SProfileReport report = ApplyProfile(*display->display, *profile);
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

void CTool::ApplyEntry(SCliDisplay& display_I, const SStudioEntry& entry_I, bool check_I, bool json_I,
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
    const SProfileReport report =
        check_I ? CheckProfile(*display_I.display, entry_I.profile)
                : ApplyProfile(*display_I.display, entry_I.profile, [&](uint8_t code_I) { Remember(display_I, code_I); });
    shown_IO.update(ReportJson(display_I, report));
    const int printed = PrintReport(display_I, report, json_I);
    if (keptChanged && !json_I) {
        mOut << "keep: " << (check_I ? "would keep" : "keeps") << " these settings ("
             << shown_IO["keeps"].get<std::string>() << ")\n";
    }
    const bool changed = keptChanged || report.Any(check_I ? EProfileOutcome::Drifted : EProfileOutcome::Restored);
    if (printed == CliExit::kCommunicationFailure) {
        shown_IO["outcome"] = "failed";
    } else if (printed == CliExit::kBadUsage) {
        shown_IO["outcome"] = "invalid";
    } else {
        shown_IO["outcome"] = changed ? (check_I ? "would change" : "changed") : "unchanged";
    }
}

bool CTool::KeepEntry(const SCliDisplay& display_I, const SStudioEntry& entry_I, bool check_I, json& shown_IO) {
    // Beside the kept profiles' file: "studio" (the demo's "demo-studio"), a profile per display.
    const std::filesystem::path keptFile = Utf8Path(mKeptFile);
    const std::string prefix = Utf8String(keptFile.filename()).rfind("demo-", 0) == 0 ? "demo-" : "";
    const std::filesystem::path folder = keptFile.parent_path() / (prefix + "studio");
    std::string name = display_I.serial.substr(0, 64);
    std::replace_if(name.begin(), name.end(), [](char c_I) { return std::isalnum(static_cast<unsigned char>(c_I)) == 0; }, '_');
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
    std::map<std::string, int> totals = {{"changed", 0}, {"unchanged", 0}, {"failed", 0}, {"invalid", 0}, {"no entry", 0}};
    json all = json::array();
    std::vector<SCliDisplay>& displays = Displays();
    for (SCliDisplay& display : displays) {
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
            mOut << (entry == nullptr ? "" : "  ") << (outcome == "no entry" ? "no entry for this model" : outcome) << "\n";
        }
        all.push_back(shown);
    }
    mHeld.reset();
    PrintNotes();
    const char* changedName = check_I ? "would change" : "changed";
    if (json_I) {
        json counted = {{"displays", displays.size()},          {check_I ? "would_change" : "changed", totals["changed"]},
                        {"unchanged", totals["unchanged"]},      {"failed", totals["failed"]},
                        {"invalid", totals["invalid"]},          {"no_entry", totals["no entry"]}};
        mOut << json{{"studio", file_I}, {"check", check_I}, {"displays", all}, {"totals", counted},
                     {"problems", studio->problems}, {"notes", mSource.Notes()}}
                    .dump(2)
             << "\n";
    } else {
        mOut << displays.size() << " display" << (displays.size() == 1 ? "" : "s") << ": " << totals["changed"] << " "
             << changedName << ", " << totals["unchanged"] << " unchanged, " << totals["failed"] << " failed, "
             << totals["invalid"] << " with values they do not take, " << totals["no entry"] << " without an entry\n";
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

}  // namespace

int RunCommandLineTool(const std::vector<std::string>& args_I, IDisplaySource& source_I, std::ostream& out_O,
                       std::ostream& err_O, const std::string& changesFile_I, const std::string& keptFile_I,
                       const std::string& cacheFile_I, bool showProgress_I) {
    CTool tool(source_I, out_O, err_O, changesFile_I, keptFile_I, cacheFile_I);
    tool.mShowProgress = showProgress_I;
    CLI::App app{"Velor Display Settings: reads and changes the settings of Velor pen displays",
                 "velor-display"};
    app.require_subcommand(1);
    app.footer("Exit codes: 0 done (apply: nothing needed changing), 1 wrong use or a file that cannot be used, "
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
    app.add_flag("--no-cache", tool.mNoCache, "Read every capabilities string from the display, none from the cache");
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
        result = tool.OnDisplay(display, [&](SCliDisplay& found) { return tool.Caps(found, json); });
    });

    CLI::App* get =
        app.add_subcommand("get", "Reads settings (names such as brightness, or VCP codes in hex)");
    get->add_option("display", display, "Index or serial number")->required();
    get->add_option("settings", names, "Settings to read")->required();
    get->callback([&] {
        result = tool.OnDisplay(display, [&](SCliDisplay& found) { return tool.Get(found, names, json); });
    });

    CLI::App* set =
        app.add_subcommand("set", "Changes settings: SETTING=VALUE ...; checks every value first");
    set->add_option("display", display, "Index or serial number")->required();
    set->add_option("assignments", names,
                    "SETTING=VALUE, the value a number or a choice (6500k, adobe-rgb, on)")
        ->required();
    set->add_flag("--save", save, "Then make the display keep its settings");
    set->callback([&] {
        result = tool.OnDisplay(display, [&](SCliDisplay& found) { return tool.Set(found, names, save); });
    });

    CLI::App* saveCommand = app.add_subcommand("save", "Makes the display keep its current settings");
    saveCommand->add_option("display", display, "Index or serial number")->required();
    saveCommand->callback(
        [&] { result = tool.OnDisplay(display, [&](SCliDisplay& found) { return tool.Save(found); }); });

    CLI::App* revert =
        app.add_subcommand("revert", "Undoes the changes made with this tool since the display last saved");
    revert->add_option("display", display, "Index or serial number")->required();
    revert->callback(
        [&] { result = tool.OnDisplay(display, [&](SCliDisplay& found) { return tool.Revert(found); }); });

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
        result = tool.OnDisplay(display, [&](SCliDisplay& found) { return tool.Reset(found, what, yes); });
    });

    CLI::App* profile =
        app.add_subcommand("profile", "Keeps the user-level settings in a JSON file and puts them back");
    profile->require_subcommand(1);
    CLI::App* profileSave = profile->add_subcommand("save", "Writes the display's settings to FILE");
    profileSave->add_option("display", display, "Index or serial number")->required();
    profileSave->add_option("file", file, "The profile")->required();
    profileSave->callback([&] {
        result = tool.OnDisplay(display, [&](SCliDisplay& found) { return tool.ProfileSave(found, file); });
    });
    CLI::App* profileApply =
        profile->add_subcommand("apply", "Writes what differs from FILE, verifies, reports");
    profileApply->add_option("display", display, "Index or serial number")->required();
    profileApply->add_option("file", file, "The profile")->required();
    profileApply->callback([&] {
        result =
            tool.OnDisplay(display, [&](SCliDisplay& found) { return tool.ProfileApply(found, file, json); });
    });

    CLI::App* check = app.add_subcommand(
        "check", "Compares the display with PROFILE: what drifted (exit code 4), or nothing (0)");
    check->add_option("display", display, "Index or serial number")->required();
    check->add_option("profile", file, "The profile")->required();
    check->callback([&] {
        result = tool.OnDisplay(display, [&](SCliDisplay& found) { return tool.Check(found, file, json); });
    });

    bool off = false;
    bool listKept = false;
    CLI::App* keep = app.add_subcommand(
        "keep", "Names the profile a display keeps (restore puts it back): DISPLAY PROFILE, DISPLAY --off, --list");
    keep->add_option("display", display, "Index or serial number");
    keep->add_option("profile", file, "The profile the display keeps");
    keep->add_flag("--off", off, "The display keeps no profile");
    keep->add_flag("--list", listKept, "Shows which displays keep which profile");
    keep->callback([&] { result = tool.Keep(display, file, off, listKept); });

    bool all = false;
    CLI::App* restore = app.add_subcommand(
        "restore", "Puts back the kept profile of every display found (or DISPLAY): reads, writes what drifted, verifies");
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
        "apply", "Sets every display found as the studio file says: writes what differs, verifies; exit code 5 when "
                 "something changed, 0 when nothing needed to");
    apply->add_option("studio", file, "The studio file")->required();
    apply->add_flag("--check", checkOnly, "Writes nothing: says what would change (exit code 5) or that nothing would (0)");
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
