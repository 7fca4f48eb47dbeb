#include "KeptRestore.h"

SKeptRestore RestoreKept(SFoundDisplay& display_I, const CKeptProfiles& kept_I, const SRestoreWays& ways_I) {
    SKeptRestore restore;
    const std::optional<SKeptProfile> entry = kept_I.Of(display_I.model, display_I.serial);
    if (!entry) {
        return restore;
    }
    restore.profile = entry->profile;
    const std::optional<SProfile> profile = ReadProfileFile(entry->profile, restore.problem);
    if (!profile) {
        restore.outcome = SKeptRestore::EOutcome::ProfileUnreadable;
        return restore;
    }
    restore.hold = ways_I.hold(display_I);
    if (!restore.hold) {
        restore.outcome = SKeptRestore::EOutcome::Held;
        return restore;
    }
    if (!ways_I.ready(display_I)) {
        restore.outcome = SKeptRestore::EOutcome::NotAnswering;
        return restore;
    }
    restore.report = ApplyProfile(*display_I.display, *profile);
    restore.outcome = SKeptRestore::EOutcome::Applied;
    return restore;
}
