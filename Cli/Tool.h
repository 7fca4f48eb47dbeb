#pragma once
// The command-line tool's shared context: the displays found, the state files (revert notes,
// kept profiles, the capabilities cache), the streams, and the helpers every command uses. Each
// command's own code is in a file of its own (ReadCommands, WriteCommands, ProfileCommands,
// KeepCommands, StudioCommand); CommandLineTool reads the command line and runs one.

#include <nlohmann/json.hpp>

#include <chrono>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "CliDisplays.h"
#include "CommandLineTool.h"
#include "DisplayLock.h"
#include "DisplayNames.h"
#include "KeptProfiles.h"
#include "Profile.h"
#include "SettingNames.h"
#include "StudioFile.h"

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
        SFoundDisplay* found = Find(display_I, exitCode);
        return found == nullptr ? exitCode : command_I(*found);
    }
    // The commands on one display, run through OnDisplay.
    int Caps(SFoundDisplay& found_I, bool json_I);
    int Get(SFoundDisplay& found_I, const std::vector<std::string>& names_I, bool json_I);
    int Set(SFoundDisplay& found_I, const std::vector<std::string>& assignments_I, bool save_I);
    int Save(SFoundDisplay& found_I);
    int Revert(SFoundDisplay& found_I);
    int Reset(SFoundDisplay& found_I, const std::string& what_I, bool yes_I);
    int ProfileSave(SFoundDisplay& found_I, const std::string& file_I);
    int ProfileApply(SFoundDisplay& found_I, const std::string& file_I, bool json_I);
    int Check(SFoundDisplay& found_I, const std::string& file_I, bool json_I);
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
    void ApplyEntry(SFoundDisplay& display_I, const SStudioEntry& entry_I, bool check_I, bool json_I,
                    nlohmann::json& shown_IO);
    // Makes the display keep the entry's settings (a profile of them in the state folder);
    // whether that changed anything.
    bool KeepEntry(const SFoundDisplay& display_I, const SStudioEntry& entry_I, bool check_I,
                   nlohmann::json& shown_IO);
    // The display by index ("0") or serial number, initialised; null (and the message, and
    // exitCode_O) when there is none or it does not answer.
    SFoundDisplay* Find(const std::string& display_I, int& exitCode_O);
    // Holds the display's lock (the settings window or the keeper may be writing to it).
    bool Hold(const SFoundDisplay& display_I, int& exitCode_O);
    // The same without initialising it: keeping a profile needs only its model and serial.
    SFoundDisplay* FindListed(const std::string& display_I, int& exitCode_O);
    std::optional<SProfile> ReadProfile(const std::string& file_I);
    bool LoadKept(CKeptProfiles& kept_O);
    // A report's lines: drift on the output, failures on errors; the exit code it stands for.
    int PrintReport(SFoundDisplay& found_I, const SProfileReport& report_I, bool json_I);
    nlohmann::json ReportJson(SFoundDisplay& found_I, const SProfileReport& report_I);
    std::string ShownValue(SFoundDisplay& found_I, const std::string& name_I, int32_t value_I);
    // What kept the search from displays, on standard error so that scripts' output stays clean.
    void PrintNotes() {
        for (const std::string& note : mSource.Notes()) {
            mErr << note << "\n";
        }
    }
    bool Ready(SFoundDisplay& display_I);
    std::optional<STarget> Target(UiDisplayDelegate& display_I, const std::string& name_I);
    // Checks the value against what the display offers; the message when it does not.
    std::string Refusal(UiDisplayDelegate& display_I, const STarget& target_I, int32_t value_I);
    // Writes, then reads back what the display has: a set can look successful below while its
    // report never reached the display (the HID route acknowledges every set it sends).
    // "" when the display took the value, else what went wrong.
    std::string WriteVerified(UiDisplayDelegate& display_I, const STarget& target_I, int32_t value_I);
    nlohmann::json ValueJson(UiDisplayDelegate& display_I, const STarget& target_I, bool& ok_O);
    int Failed(UiDisplayDelegate& display_I, const std::string& what_I);
    // The unsaved changes this tool made, kept between runs so that revert can undo them:
    // {"<serial>": {"<code>": value before the first change}}.
    nlohmann::json LoadChanges() const;
    // consequence_I: what the user loses when the notes cannot be written.
    void StoreChanges(const nlohmann::json& changes_I, const char* consequence_I) const;
    // Notes the code's value before a write, unless an earlier unsaved change noted it already.
    void Remember(const SFoundDisplay& display_I, uint8_t code_I);
    void Forget(const SFoundDisplay& display_I);

    // The displays found, the search going as the command line asked.
    std::vector<SFoundDisplay>& Displays();

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
