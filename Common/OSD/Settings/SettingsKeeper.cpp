#include "SettingsKeeper.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <set>

#include "ApplicationRules.h"
#include "Clock.h"
#include "DebugLog.h"
#include "KeptRestore.h"
#include "TextFile.h"

namespace {

using Duration = CSettingsKeeper::Duration;

std::vector<std::string> NamesWith(const SProfileReport& report_I, EProfileOutcome outcome_I) {
    std::vector<std::string> names;
    for (const SProfileItem& item : report_I.items) {
        if (item.outcome == outcome_I) {
            names.push_back(item.name);
        }
    }
    return names;
}

// A file name from a display's name: letters, digits, blanks, dots and dashes as they are.
std::string DisplayFileName(const std::string& name_I) {
    std::string name;
    for (char c : name_I) {
        const bool plain =
            std::isalnum(static_cast<unsigned char>(c)) != 0 || c == ' ' || c == '.' || c == '-';
        name += plain ? c : '_';
    }
    return name;
}

// The values a display has now of the settings a profile names.
SProfile ValuesNowOf(UiDisplayDelegate& display_I, const SProfile& profile_I) {
    const SProfile all = CaptureProfile(display_I, {}, {});
    SProfile now;
    now.undo = true;
    for (const SProfileValue& wanted : profile_I.values) {
        for (const SProfileValue& value : all.values) {
            if (value.name == wanted.name) {
                now.values.push_back(value);
            }
        }
    }
    return now;
}

}  // namespace

CSettingsKeeper::CSettingsKeeper(IKeeperDesk& desk_I, std::string keptFile_I, std::string rulesFile_I,
                                 std::function<Duration()> now_I)
    : mDesk(desk_I),
      mNow(std::move(now_I)),
      mKeptFile(std::move(keptFile_I)),
      mRulesFile(std::move(rulesFile_I)) {}

Duration CSettingsKeeper::Now() const {
    return mNow ? mNow() : Clock::Get().Now();
}

void CSettingsKeeper::SetKeeping(bool on_I) {
    mKeeping = on_I;
    if (!on_I) {
        mRestoreDue.reset();
    }
}

void CSettingsKeeper::DesktopChanged() {
    // The displays' connectors may be gone: search again before anything is written.
    mDisplays.clear();
    mSearchNeeded = true;
    mAttempt = 0;
    mRestoreDue = Now() + kSettle;
}

void CSettingsKeeper::ForegroundChanged(const std::string& executable_I) {
    mForeground = executable_I;
    mForegroundDue = Now() + kForegroundSettle;
}

std::vector<SFoundDisplay>& CSettingsKeeper::Displays() {
    if (mSearchNeeded) {
        mDisplays = mDesk.Search();
        mSearchNeeded = false;
    }
    return mDisplays;
}

bool CSettingsKeeper::Ready(SFoundDisplay& display_I) {
    if (!display_I.ready && display_I.display) {
        display_I.ready = display_I.display->Initialize();
    }
    return display_I.ready;
}

bool CSettingsKeeper::Apply(SFoundDisplay& display_I, const SProfile& profile_I, SKeeperResult& result_O) {
    if (!Ready(display_I)) {
        return Judge(display_I, nullptr, result_O);
    }
    const SProfileReport report = ApplyProfile(*display_I.display, profile_I);
    return Judge(display_I, &report, result_O);
}

bool CSettingsKeeper::Judge(SFoundDisplay& display_I, const SProfileReport* report_I,
                            SKeeperResult& result_O) {
    result_O.model = display_I.model;
    result_O.serial = display_I.serial;
    if (report_I == nullptr) {
        result_O.kind = SKeeperResult::EKind::NotAnswering;
        return false;
    }
    if (report_I->Any(EProfileOutcome::Failed)) {
        result_O.kind = SKeeperResult::EKind::Failed;
        result_O.settings = NamesWith(*report_I, EProfileOutcome::Failed);
        // Not answering at all: search again before the next try.
        display_I.ready = false;
        return false;
    }
    result_O.kind = SKeeperResult::EKind::Restored;
    result_O.settings = NamesWith(*report_I, EProfileOutcome::Restored);
    return true;
}

void CSettingsKeeper::RestoreRound() {
    mRestoreDue.reset();
    CKeptProfiles kept(mKeptFile);
    std::string problem;
    if (!kept.Load(problem) || kept.All().empty()) {
        if (!problem.empty()) {
            DLog("Keeper: %s\n", problem.c_str());
        }
        return;
    }
    std::vector<SKeeperResult> done;
    bool again = false;
    size_t keptFound = 0;
    const SRestoreWays ways{
        [this](const SFoundDisplay& display_I) { return mDesk.TryHold(display_I.serial); },
        [this](SFoundDisplay& display_I) { return Ready(display_I); }};
    for (SFoundDisplay& display : Displays()) {
        const SKeptRestore restore = RestoreKept(display, kept, ways);
        if (restore.outcome == SKeptRestore::EOutcome::NotKept) {
            continue;
        }
        ++keptFound;
        if (restore.outcome == SKeptRestore::EOutcome::Held) {
            DLog("Keeper: %s %s is held; trying again\n", display.model.c_str(), display.serial.c_str());
            again = true;
            continue;
        }
        SKeeperResult result;
        result.model = display.model;
        result.serial = display.serial;
        if (restore.outcome == SKeptRestore::EOutcome::ProfileUnreadable) {
            result.kind = SKeeperResult::EKind::ProfileUnreadable;
            result.problem = restore.problem;
            done.push_back(result);
            continue;
        }
        const bool applied = restore.outcome == SKeptRestore::EOutcome::Applied;
        if (!Judge(display, applied ? &restore.report : nullptr, result)) {
            DLog("Keeper: %s %s not restored yet (attempt %d)\n", display.model.c_str(),
                 display.serial.c_str(), mAttempt + 1);
            again = true;
            if (mAttempt >= kRetries) {
                done.push_back(result);  // given up: said once
            }
            continue;
        }
        // A profile per application in effect goes on top of the kept one.
        if (!mRuleProfile.empty()) {
            std::string unreadable;
            if (std::optional<SProfile> rule = ReadProfileFile(mRuleProfile, unreadable)) {
                SKeeperResult ignored;
                Apply(display, *rule, ignored);
            }
        }
        if (!result.settings.empty()) {
            done.push_back(result);
        }
    }
    // A kept display not found may still be starting: one more search for it.
    const bool missing = keptFound < kept.All().size() && mAttempt == 0;
    if ((again || missing) && mAttempt < kRetries) {
        mRestoreDue = Now() + kFirstRetry * (1 << mAttempt);
        ++mAttempt;
        mSearchNeeded = true;
    }
    if (!done.empty()) {
        mDesk.Notify(done);
    }
}

void CSettingsKeeper::LeaveRule(SFoundDisplay& display_I, const CKeptProfiles& kept_I) {
    SKeeperResult ignored;
    const std::optional<SKeptProfile> entry = kept_I.Of(display_I.model, display_I.serial);
    std::string problem;
    if (entry && mKeeping) {
        if (std::optional<SProfile> profile = ReadProfileFile(entry->profile, problem)) {
            Apply(display_I, *profile, ignored);
            mBeforeRule.erase(display_I.serial);
            return;
        }
    }
    const auto before = mBeforeRule.find(display_I.serial);
    if (before != mBeforeRule.end()) {
        Apply(display_I, before->second, ignored);
        mBeforeRule.erase(before);
    }
}

void CSettingsKeeper::FollowForeground() {
    mForegroundDue.reset();
    std::string problem;
    const CApplicationRules rules = CApplicationRules::FromFile(mRulesFile, problem);
    if (!problem.empty()) {
        DLog("Keeper: %s\n", problem.c_str());
    }
    const std::string wanted = rules.ProfileFor(mForeground).value_or(std::string());
    if (wanted != mRuleProfile) {
        DLog("Keeper: %s in front: %s\n", mForeground.c_str(),
             wanted.empty() ? "no profile of its own" : wanted.c_str());
        mRuleProfile = wanted;
        mRulePending.clear();
        for (const SFoundDisplay& display : Displays()) {
            mRulePending.insert(display.serial);
        }
    }
    if (mRulePending.empty()) {
        return;
    }
    std::optional<SProfile> profile;
    if (!wanted.empty()) {
        profile = ReadProfileFile(wanted, problem);
        if (!profile) {
            DLog("Keeper: %s\n", problem.c_str());
        }
    }
    CKeptProfiles kept(mKeptFile);
    kept.Load(problem);
    for (SFoundDisplay& display : Displays()) {
        if (mRulePending.count(display.serial) == 0) {
            continue;
        }
        std::shared_ptr<void> hold = mDesk.TryHold(display.serial);
        if (!hold) {
            continue;  // tried again below
        }
        if (mUnderRule.erase(display.serial) != 0) {
            LeaveRule(display, kept);
        }
        if (profile && Ready(display)) {
            mBeforeRule[display.serial] = ValuesNowOf(*display.display, *profile);
            SKeeperResult ignored;
            Apply(display, *profile, ignored);
            mUnderRule.insert(display.serial);
        }
        mRulePending.erase(display.serial);
    }
    if (!mRulePending.empty()) {
        mForegroundDue = Now() + kHeldRetry;
    }
}

std::vector<SKeeperResult> CSettingsKeeper::ApplyNow(const std::string& profile_I) {
    std::vector<SKeeperResult> results;
    std::string problem;
    const std::optional<SProfile> profile = ReadProfileFile(profile_I, problem);
    for (SFoundDisplay& display : Displays()) {
        SKeeperResult result;
        result.model = display.model;
        result.serial = display.serial;
        if (!profile) {
            result.kind = SKeeperResult::EKind::ProfileUnreadable;
            result.problem = problem;
        } else if (std::shared_ptr<void> hold = mDesk.TryHold(display.serial)) {
            Apply(display, *profile, result);
        } else {
            result.kind = SKeeperResult::EKind::Failed;
            result.problem = "in use by the settings dialog or the command-line tool";
        }
        results.push_back(result);
    }
    return results;
}

std::vector<SKeeperResult> CSettingsKeeper::KeepCurrent(const std::string& profilesFolder_I) {
    std::vector<SKeeperResult> results;
    CKeptProfiles kept(mKeptFile);
    std::string problem;
    if (!kept.Load(problem)) {
        DLog("Keeper: %s\n", problem.c_str());
        return results;  // a damaged list is not overwritten
    }
    std::error_code error;
    std::filesystem::create_directories(Utf8Path(profilesFolder_I), error);
    for (SFoundDisplay& display : Displays()) {
        SKeeperResult result;
        result.model = display.model;
        result.serial = display.serial;
        std::shared_ptr<void> hold = mDesk.TryHold(display.serial);
        if (!hold || !Ready(display)) {
            result.kind = hold ? SKeeperResult::EKind::NotAnswering : SKeeperResult::EKind::Failed;
            result.problem = hold ? "" : "in use by the settings dialog or the command-line tool";
            results.push_back(result);
            continue;
        }
        const std::string path = Utf8String(
            Utf8Path(profilesFolder_I) / (DisplayFileName(display.model + " " + display.serial) + ".json"));
        if (!WriteProfileFile(path, CaptureProfile(*display.display, display.model, display.serial),
                              problem)) {
            result.kind = SKeeperResult::EKind::ProfileUnreadable;
            result.problem = problem;
        } else {
            kept.Keep(display.model, display.serial, path);
            result.kind = SKeeperResult::EKind::Kept;
        }
        results.push_back(result);
    }
    if (!kept.Store(problem)) {
        DLog("Keeper: %s\n", problem.c_str());
    }
    return results;
}

std::optional<Duration> CSettingsKeeper::Poll() {
    const Duration now = Now();
    if (mRestoreDue && *mRestoreDue <= now) {
        if (mKeeping) {
            RestoreRound();
        } else {
            mRestoreDue.reset();
        }
    }
    if (mForegroundDue && *mForegroundDue <= now) {
        FollowForeground();
    }
    std::optional<Duration> next;
    for (const std::optional<Duration>& due : {mRestoreDue, mForegroundDue}) {
        if (due) {
            const Duration wait = std::max(Duration(0), *due - Now());
            next = next ? std::min(*next, wait) : wait;
        }
    }
    return next;
}
