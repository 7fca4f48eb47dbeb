#pragma once
// The keeper: keeps each display as its kept profile says, and follows the application in
// front with the profiles per application. It acts on events (a display arrived, the machine
// woke, a display was switched on, the foreground changed) after they settle, never on a
// schedule of its own: a restore round searches, reads, writes only what drifted and reads
// back; a display another part of the program holds (its lock) is left alone and tried again;
// a display that does not answer is tried again less and less often, then left until the next
// event. Single-threaded: the caller runs it on one thread and calls Poll when it is due.

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "FoundDisplay.h"
#include "KeptProfiles.h"
#include "Profile.h"

// What one round did on one display, for the notification.
struct SKeeperResult {
    enum class EKind { Restored, Failed, NotAnswering, ProfileUnreadable, Kept };
    std::string model;
    std::string serial;
    EKind kind = EKind::Restored;
    std::vector<std::string> settings;  // restored, or not restored
    std::string problem;
};

// The platform's part.
class IKeeperDesk {
public:
    virtual ~IKeeperDesk() = default;
    // Searches afresh; the displays found (their connectors from an earlier search are closed).
    virtual std::vector<SFoundDisplay> Search() = 0;
    // The display's lock, held until the returned object goes; null while the settings dialog
    // or the command-line tool holds the display.
    virtual std::shared_ptr<void> TryHold(const std::string& serial_I) = 0;
    // One notification for a round that restored something or gave up.
    virtual void Notify(const std::vector<SKeeperResult>& results_I) = 0;
};

class CSettingsKeeper {
public:
    using Duration = std::chrono::microseconds;
    // After a desk event, the first round waits this long (a display that was just switched on
    // or plugged in needs a moment before it answers); then tries again after 2, 4, 8 and 16 s.
    static constexpr std::chrono::milliseconds kSettle{3000};
    static constexpr std::chrono::milliseconds kFirstRetry{2000};
    static constexpr int kRetries = 4;
    // The application in front must stay there this long before its profile is applied.
    static constexpr std::chrono::milliseconds kForegroundSettle{1500};
    // A held display is asked again after this long.
    static constexpr std::chrono::milliseconds kHeldRetry{2000};

    // now_I tells the time its waits are measured in; by default the process clock's (a
    // keeper on a window's timers passes the real time while the protocol's pauses go through
    // a test's virtual clock).
    CSettingsKeeper(IKeeperDesk& desk_I, std::string keptFile_I, std::string rulesFile_I,
                    std::function<Duration()> now_I = {});

    void SetKeeping(bool on_I);
    bool Keeping() const { return mKeeping; }

    // A display arrived or went, the machine woke, a display was switched on: search and
    // restore once it settled.
    void DesktopChanged();
    // The executable of the window in front now.
    void ForegroundChanged(const std::string& executable_I);
    // Applies a profile to every display found now (the tray menu); the results.
    std::vector<SKeeperResult> ApplyNow(const std::string& profile_I);
    // Makes each display found keep what it has now: its profile is written into the folder
    // ("<model> <serial>.json") and kept. The results (Kept, or why not).
    std::vector<SKeeperResult> KeepCurrent(const std::string& profilesFolder_I);

    // Does what is due; the time until something is due next (none: nothing is waiting).
    std::optional<Duration> Poll();

    // The profile per application in effect; empty when none.
    const std::string& RuleInEffect() const { return mRuleProfile; }

private:
    Duration Now() const;
    void RestoreRound();
    void FollowForeground();
    bool Ready(SFoundDisplay& display_I);
    std::vector<SFoundDisplay>& Displays();
    // Applies a profile file to one display; false when it could not (result_O says why).
    bool Apply(SFoundDisplay& display_I, const SProfile& profile_I, SKeeperResult& result_O);
    // The result of a profile applied (its report) or of a display that did not answer (null);
    // false when it is to be tried again.
    bool Judge(SFoundDisplay& display_I, const SProfileReport* report_I, SKeeperResult& result_O);
    // Puts a display back from a profile per application: its kept profile, else the values it
    // had before.
    void LeaveRule(SFoundDisplay& display_I, const CKeptProfiles& kept_I);

    IKeeperDesk& mDesk;
    std::function<Duration()> mNow;
    std::string mKeptFile;
    std::string mRulesFile;
    bool mKeeping = true;

    std::vector<SFoundDisplay> mDisplays;
    bool mSearchNeeded = true;
    std::optional<Duration> mRestoreDue;
    int mAttempt = 0;

    std::string mForeground;
    std::optional<Duration> mForegroundDue;
    std::string mRuleProfile;
    // By serial number: the displays the profile per application is on, those it still has to
    // reach (held ones), and the values its settings had before it applied.
    std::set<std::string> mUnderRule;
    std::set<std::string> mRulePending;
    std::map<std::string, SProfile> mBeforeRule;
};
