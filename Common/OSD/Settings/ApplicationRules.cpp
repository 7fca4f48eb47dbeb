#include "ApplicationRules.h"

#include "TextFile.h"

#include <nlohmann/json.hpp>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "SettingNames.h"

namespace {

using nlohmann::json;

// The file name of a path with either separator ("C:\\Apps\\vlc.exe" -> "vlc.exe").
std::string FileNameOf(const std::string& path_I) {
    const size_t slash = path_I.find_last_of("\\/");
    return slash == std::string::npos ? path_I : path_I.substr(slash + 1);
}

}  // namespace

CApplicationRules CApplicationRules::FromText(const std::string& text_I, const std::string& folder_I,
                                              std::string& problem_O) {
    CApplicationRules rules;
    const json file = json::parse(text_I, nullptr, false);
    if (file.is_discarded() || !file.is_object() || !file.contains("rules") || !file["rules"].is_array()) {
        problem_O = "not a list of rules (a JSON object with \"rules\")";
        return rules;
    }
    for (const json& entry : file["rules"]) {
        const bool whole = entry.is_object() && entry.contains("application") &&
                           entry["application"].is_string() && entry.contains("profile") &&
                           entry["profile"].is_string() && !entry["application"].get<std::string>().empty() &&
                           !entry["profile"].get<std::string>().empty();
        if (!whole) {
            problem_O = "a rule without an application and a profile was left out";
            continue;
        }
        std::string profile = entry["profile"].get<std::string>();
        const std::filesystem::path path = Utf8Path(profile);
        const bool windowsAbsolute = profile.size() > 2 && profile[1] == ':';
        if (!path.is_absolute() && !windowsAbsolute && !folder_I.empty()) {
            profile = Utf8String(Utf8Path(folder_I) / path);
        }
        rules.mRules.push_back({FileNameOf(entry["application"].get<std::string>()), profile});
    }
    return rules;
}

CApplicationRules CApplicationRules::FromFile(const std::string& path_I, std::string& problem_O) {
    std::error_code error;
    if (!std::filesystem::exists(Utf8Path(path_I), error)) {
        return {};  // no rules yet
    }
    const std::optional<std::string> text = ReadTextFile(path_I, problem_O);
    if (!text) {
        return {};
    }
    std::string problem;
    CApplicationRules rules = FromText(*text, Utf8String(Utf8Path(path_I).parent_path()), problem);
    if (!problem.empty()) {
        problem_O = path_I + ": " + problem;
    }
    return rules;
}

std::string CApplicationRules::ExampleText() {
    return "{\n"
           "  \"rules\": [\n"
           "    {\"application\": \"example-paint-program.exe\", \"profile\": \"adobe-rgb.json\"}\n"
           "  ]\n"
           "}\n";
}

std::optional<std::string> CApplicationRules::ProfileFor(const std::string& executable_I) const {
    const std::string name = FileNameOf(executable_I);
    for (const SApplicationRule& rule : mRules) {
        if (SameName(rule.application, name)) {
            return rule.profile;
        }
    }
    return std::nullopt;
}
