#pragma once
// The profiles displays keep: for each display, by model and serial number, the profile file
// that restore (and the keeper) puts back after the display lost its settings. Kept in a
// JSON file:  {"kept": [{"model": "...", "serial": "...", "profile": "/path/to/profile.json"}]}

#include <optional>
#include <string>
#include <vector>

struct SKeptProfile {
    std::string model;
    std::string serial;
    std::string profile;  // the profile file's absolute path
};

class CKeptProfiles {
public:
    explicit CKeptProfiles(std::string file_I) : mFile(std::move(file_I)) {}

    // Reads the file; a missing file keeps nothing. False, and the reason, for a file that is
    // there but is not a list of kept profiles (it is then left as it is, never overwritten);
    // true with a reason when incomplete entries were left out.
    bool Load(std::string& problem_O);
    // The same from the file's text.
    bool LoadText(const std::string& text_I, std::string& problem_O);
    bool Store(std::string& problem_O) const;

    // Names the profile a display keeps (replacing what it kept), or stops keeping one.
    void Keep(const std::string& model_I, const std::string& serial_I, const std::string& profile_I);
    bool Forget(const std::string& model_I, const std::string& serial_I);

    const std::vector<SKeptProfile>& All() const { return mKept; }
    // The profile this display keeps; none when it keeps none.
    std::optional<SKeptProfile> Of(const std::string& model_I, const std::string& serial_I) const;

private:
    std::string mFile;
    std::vector<SKeptProfile> mKept;
};

// The folder the program keeps its own files in (UserStateFolder: ~/.local/state/velor-display-settings,
// the roaming application data's velor-display-settings on Windows); empty when there is none.
// The demo's files go beside $VLR_DEMO_STATE when that is set.
std::string ProgramStateFolder(bool demo_I);
// The kept profiles, the profiles per application and the folder of profiles the keeper's
// menu offers, in that folder (the demo's own files with "demo-" in front).
std::string DefaultKeptFile(bool demo_I);
std::string DefaultRulesFile(bool demo_I);
std::string DefaultProfilesFolder(bool demo_I);
