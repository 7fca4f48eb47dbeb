#include "KeptProfiles.h"

#include "FoundDisplay.h"
#include "ProgramFolders.h"
#include "TextFile.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

using nlohmann::json;

bool SameDisplay(const SKeptProfile& kept_I, const std::string& model_I, const std::string& serial_I) {
    // Entries kept by the tray keeper of earlier versions name the model with the maker's name.
    return DisplayModelName(kept_I.model) == DisplayModelName(model_I) && kept_I.serial == serial_I;
}

}  // namespace

bool CKeptProfiles::Load(std::string& problem_O) {
    mKept.clear();
    std::error_code error;
    if (!std::filesystem::exists(Utf8Path(mFile), error)) {
        return true;  // nothing kept yet
    }
    const std::optional<std::string> text = ReadTextFile(mFile, problem_O);
    return text && LoadText(*text, problem_O);
}

bool CKeptProfiles::LoadText(const std::string& text_I, std::string& problem_O) {
    mKept.clear();
    const json file = json::parse(text_I, nullptr, false);
    if (file.is_discarded() || !file.is_object() || !file.contains("kept") || !file["kept"].is_array()) {
        problem_O = mFile + ": not a list of kept profiles (a JSON object with \"kept\")";
        return false;
    }
    for (const json& entry : file["kept"]) {
        const bool whole = entry.is_object() && entry.contains("model") && entry["model"].is_string() &&
                           entry.contains("serial") && entry["serial"].is_string() &&
                           entry.contains("profile") && entry["profile"].is_string();
        if (!whole) {
            problem_O = mFile + ": an entry without a model, serial number and profile was left out";
            continue;
        }
        Keep(entry["model"].get<std::string>(), entry["serial"].get<std::string>(),
             entry["profile"].get<std::string>());
    }
    return true;
}

bool CKeptProfiles::Store(std::string& problem_O) const {
    json kept = json::array();
    for (const SKeptProfile& entry : mKept) {
        kept.push_back({{"model", entry.model}, {"serial", entry.serial}, {"profile", entry.profile}});
    }
    return WriteTextFile(mFile, json{{"kept", kept}}.dump(2) + "\n", problem_O);
}

void CKeptProfiles::Keep(const std::string& model_I, const std::string& serial_I,
                         const std::string& profile_I) {
    Forget(model_I, serial_I);
    mKept.push_back({model_I, serial_I, profile_I});
}

bool CKeptProfiles::Forget(const std::string& model_I, const std::string& serial_I) {
    return std::erase_if(mKept, [&](const SKeptProfile& kept_I) {
               return SameDisplay(kept_I, model_I, serial_I);
           }) != 0;
}

std::optional<SKeptProfile> CKeptProfiles::Of(const std::string& model_I, const std::string& serial_I) const {
    for (const SKeptProfile& kept : mKept) {
        if (SameDisplay(kept, model_I, serial_I)) {
            return kept;
        }
    }
    return std::nullopt;
}

std::string ProgramStateFolder(bool demo_I) {
    // The demo's files go beside the demo's state where that was placed on purpose.
    if (const char* demoState = std::getenv("VLR_DEMO_STATE");
        demo_I && demoState != nullptr && *demoState != '\0') {
        return Utf8String(Utf8Path(demoState).parent_path());
    }
    return UserStateFolder();
}

namespace {

std::string InStateFolder(bool demo_I, const char* name_I) {
    const std::string folder = ProgramStateFolder(demo_I);
    if (folder.empty()) {
        return {};
    }
    return Utf8String(Utf8Path(folder) / ((demo_I ? "demo-" : "") + std::string(name_I)));
}

}  // namespace

std::string DefaultKeptFile(bool demo_I) {
    return InStateFolder(demo_I, "kept.json");
}

std::string DefaultRulesFile(bool demo_I) {
    return InStateFolder(demo_I, "application-profiles.json");
}

std::string DefaultProfilesFolder(bool demo_I) {
    return InStateFolder(demo_I, "profiles");
}
