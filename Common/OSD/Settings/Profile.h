#pragma once
// Profiles: the whole picture of a display as the user set it, by the names the command-line
// tool uses ("colour-space", "gain-red", ...), kept in a JSON file:
//   {"model": "...", "serial": "...", "settings": {"colour-mode": 2, "colour-space": "adobe-rgb", ...}}
// A value is a whole number or the name of one of the setting's choices.
//
// Checking reads every value the profile names from the display; applying reads first, writes
// only what differs, in an order the family accepts (the colour mode before the values that
// belong to it), and reads back every value it wrote. What this display does not have is
// skipped and named, so that a profile of one family can be applied to another.

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "UiDisplayDelegate.h"

struct SProfileValue {
    std::string name;
    std::optional<int32_t> number;  // a whole number
    std::string text;               // or a choice's name; both empty: not a usable value
};

struct SProfile {
    std::string model;
    std::string serial;
    std::vector<SProfileValue> values;  // in the file's order
    // Values taken before something changed them, to be put back as they were: every value is
    // written (not only the named colour mode's), and the colour mode last.
    bool undo = false;
};

// Whether a profile can name this: a setting's name (or accepted spelling) or a custom colour
// channel's ("gain-red").
bool IsProfileName(const std::string& name_I);
// " (did you mean brightness?)" for a name a letter or two away from one a profile can name;
// "" when none is that near.
std::string NearestProfileNameHint(const std::string& name_I);

// The profile in a file's text; none, and the reason, when it is not one.
std::optional<SProfile> ProfileFromText(const std::string& text_I, std::string& problem_O);
std::string ProfileText(const SProfile& profile_I);
// The same from and to a file; the reason names the file.
std::optional<SProfile> ReadProfileFile(const std::string& path_I, std::string& problem_O);
bool WriteProfileFile(const std::string& path_I, const SProfile& profile_I, std::string& problem_O);

// What the display has now of every setting it lets the user change, and of its custom colour.
// Values that do not read are left out.
SProfile CaptureProfile(UiDisplayDelegate& display_I, const std::string& model_I,
                        const std::string& serial_I);

// What became of one value of the profile.
enum class EProfileOutcome {
    Matched,   // the display had it
    Drifted,   // the display has another value (checking only)
    Restored,  // written and read back
    Failed,    // did not read, did not write, or the display did not take it
    Skipped,   // not on this display (a profile of another family)
    Invalid,   // not a setting's name, or a value this display refuses
};

struct SProfileItem {
    std::string name;
    EProfileOutcome outcome = EProfileOutcome::Matched;
    std::optional<int32_t> expected;  // what the profile asks for
    std::optional<int32_t> actual;    // what the display had before any write
    std::string detail;               // why it failed or was skipped
};

struct SProfileReport {
    std::vector<SProfileItem> items;  // in the order they were read and written

    bool Any(EProfileOutcome outcome_I) const;
    // Nothing drifted and nothing failed (skipped values do not count).
    bool Matches() const { return !Any(EProfileOutcome::Drifted) && !Any(EProfileOutcome::Failed); }
};

// Compares the display with the profile; writes nothing.
SProfileReport CheckProfile(UiDisplayDelegate& display_I, const SProfile& profile_I);
// Writes what differs and verifies it. beforeWrite_I, when given, hears of each code just
// before it is written (the tool keeps the old value for revert).
SProfileReport ApplyProfile(UiDisplayDelegate& display_I, const SProfile& profile_I,
                            const std::function<void(uint8_t)>& beforeWrite_I = {});

// "Matched", "drifted", ... as reports print them.
const char* ProfileOutcomeName(EProfileOutcome outcome_I);
