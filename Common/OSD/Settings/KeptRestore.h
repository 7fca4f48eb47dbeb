#pragma once
// Putting back the profile a display keeps: the step the keeper's round and the command-line
// tool's restore share. The kept entry is looked up by the display's model and serial number,
// its profile read, the display held (its lock) and made ready, and the profile applied
// (checked first: a display that kept its settings is only read).

#include <functional>
#include <memory>
#include <string>

#include "FoundDisplay.h"
#include "KeptProfiles.h"
#include "Profile.h"

struct SKeptRestore {
    enum class EOutcome {
        NotKept,            // the display keeps no profile
        ProfileUnreadable,  // problem says why
        Held,               // the settings window, the keeper or the tool holds it
        NotAnswering,       // it did not become ready
        Applied,            // report says what was checked and written
    };
    EOutcome outcome = EOutcome::NotKept;
    std::string profile;  // the kept profile's path
    std::string problem;
    SProfileReport report;
    // Applied: the display's lock, held until the caller lets go (the keeper puts a profile
    // per application on top under it).
    std::shared_ptr<void> hold;
};

// How the program holds and readies a display: its lock (null while another program holds
// it) and its initialisation (with the program's cache, or its waits).
struct SRestoreWays {
    std::function<std::shared_ptr<void>(const SFoundDisplay&)> hold;
    std::function<bool(SFoundDisplay&)> ready;
};

SKeptRestore RestoreKept(SFoundDisplay& display_I, const CKeptProfiles& kept_I, const SRestoreWays& ways_I);
