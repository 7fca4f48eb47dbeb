#pragma once
// Profiles per application: which profile to apply while an application is in front. Kept in
// a JSON file the user edits:
//   {"rules": [{"application": "Photoshop.exe", "profile": "C:\\Profiles\\adobe-rgb.json"},
//              {"application": "vlc.exe", "profile": "rec-709.json"}]}
// Applications are named by their executable's file name, in any letter case; a relative
// profile path is taken from the rules file's folder.

#include <optional>
#include <string>
#include <vector>

struct SApplicationRule {
    std::string application;  // "photoshop.exe"
    std::string profile;      // the profile file's path
};

class CApplicationRules {
public:
    // The rules in a file's text; problem_O names what was left out or why there are none.
    static CApplicationRules FromText(const std::string& text_I, const std::string& folder_I,
                                      std::string& problem_O);
    // A missing file has no rules (and no problem).
    static CApplicationRules FromFile(const std::string& path_I, std::string& problem_O);
    // The text of a file with no rules yet and one example, for the user to edit.
    static std::string ExampleText();

    // The profile for the application with this executable path or name; none without a rule.
    std::optional<std::string> ProfileFor(const std::string& executable_I) const;
    const std::vector<SApplicationRule>& All() const { return mRules; }

private:
    std::vector<SApplicationRule> mRules;
};
