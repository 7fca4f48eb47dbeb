#include "StudioFile.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>

#include "ProductFamilies.h"
#include "TextFile.h"

namespace {

using Json = nlohmann::json;

bool IsKnownFamily(const std::string& plain_I) {
    const auto& families = ProductFamilies();
    return std::any_of(families.begin(), families.end(),
                       [&](const SProductFamily& family_I) { return plain_I == family_I.helpPage; });
}

// One entry of "displays"; none (and the reason in problems_IO) when it cannot be used.
std::optional<SStudioEntry> EntryFrom(const Json& json_I, const std::string& where_I,
                                      std::vector<std::string>& problems_IO) {
    if (!json_I.is_object() || !json_I.contains("model") || !json_I["model"].is_string() ||
        json_I["model"].get<std::string>().empty()) {
        problems_IO.push_back(where_I + ": names no model (\"model\": \"Canvas 22 Pro\")");
        return std::nullopt;
    }
    for (const auto& [key, value] : json_I.items()) {
        // A misspelt "serial" would set every display of the model: the entry is left out.
        if (key != "model" && key != "serial" && key != "keep" && key != "settings" && key != "description") {
            problems_IO.push_back(where_I + ": \"" + key +
                                  "\" is not a part of an entry (model, serial, keep, settings)");
            return std::nullopt;
        }
    }
    SStudioEntry entry;
    entry.model = json_I["model"].get<std::string>();
    if (!IsKnownFamily(PlainModelName(entry.model))) {
        problems_IO.push_back(where_I + ": \"" + entry.model + "\" is not a model this tool knows");
        return std::nullopt;
    }
    if (json_I.contains("serial")) {
        if (!json_I["serial"].is_string() || json_I["serial"].get<std::string>().empty()) {
            problems_IO.push_back(where_I + ": the serial number is not a text");
            return std::nullopt;
        }
        entry.serial = json_I["serial"].get<std::string>();
    }
    if (json_I.contains("keep") && !json_I["keep"].is_boolean()) {
        problems_IO.push_back(where_I + ": \"keep\" is true or false");
        return std::nullopt;
    }
    entry.keep = json_I.value("keep", false);
    if (!json_I.contains("settings") || !json_I["settings"].is_object()) {
        problems_IO.push_back(where_I + ": has no \"settings\"");
        return std::nullopt;
    }
    std::string problem;
    std::optional<SProfile> profile = ProfileFromText(
        Json{{"model", entry.model}, {"serial", entry.serial}, {"settings", json_I["settings"]}}.dump(),
        problem);
    if (!profile) {
        problems_IO.push_back(where_I + ": " + problem);
        return std::nullopt;
    }
    // Every value a display could not take is left out here, where each station reports it the
    // same way whatever displays it has.
    for (const SProfileValue& value : profile->values) {
        if (!IsProfileName(value.name)) {
            problems_IO.push_back(where_I + ": \"" + value.name + "\" is not a setting's name" +
                                  NearestProfileNameHint(value.name));
        } else if (!value.number && value.text.empty()) {
            problems_IO.push_back(where_I + ": " + value.name + " is not a whole number or a choice's name");
        } else {
            entry.profile.values.push_back(value);
        }
    }
    entry.profile.model = entry.model;
    entry.profile.serial = entry.serial;
    return entry;
}

}  // namespace

std::string PlainModelName(const std::string& model_I) {
    std::string plain;
    for (char c : model_I) {
        const auto letter = static_cast<unsigned char>(c);
        if (std::isalnum(letter) != 0) {
            plain += static_cast<char>(std::tolower(letter));
        } else if (!plain.empty() && plain.back() != '-') {
            plain += '-';
        }
    }
    while (!plain.empty() && plain.back() == '-') {
        plain.pop_back();
    }
    const std::string maker = "velor-";
    return plain.rfind(maker, 0) == 0 ? plain.substr(maker.size()) : plain;
}

std::optional<SStudioFile> StudioFromText(const std::string& text_I, std::string& problem_O) {
    const Json json = Json::parse(text_I, nullptr, false);
    if (json.is_discarded() || !json.is_object() || !json.contains("displays") ||
        !json["displays"].is_array()) {
        problem_O = "not a studio file (a JSON object with a list of \"displays\")";
        return std::nullopt;
    }
    SStudioFile studio;
    for (size_t i = 0; i < json["displays"].size(); ++i) {
        const std::string where = "displays[" + std::to_string(i) + "]";
        std::optional<SStudioEntry> entry = EntryFrom(json["displays"][i], where, studio.problems);
        if (!entry) {
            continue;
        }
        const bool twice =
            std::any_of(studio.entries.begin(), studio.entries.end(), [&](const SStudioEntry& other_I) {
                return PlainModelName(other_I.model) == PlainModelName(entry->model) &&
                       other_I.serial == entry->serial;
            });
        if (twice) {
            // Which of the two was meant cannot be told: the first stands.
            studio.problems.push_back(where + ": " + entry->model +
                                      (entry->serial.empty() ? "" : " serial " + entry->serial) +
                                      " has an entry already");
            continue;
        }
        studio.entries.push_back(std::move(*entry));
    }
    return studio;
}

std::optional<SStudioFile> ReadStudioFile(const std::string& path_I, std::string& problem_O) {
    const std::optional<std::string> text = ReadTextFile(path_I, problem_O);
    std::optional<SStudioFile> studio = text ? StudioFromText(*text, problem_O) : std::nullopt;
    if (text && !studio) {
        problem_O = path_I + ": " + problem_O;
    }
    return studio;
}

const SStudioEntry* StudioEntryFor(const SStudioFile& studio_I, const std::string& model_I,
                                   const std::string& family_I, const std::string& serial_I) {
    const std::string plain = PlainModelName(model_I);
    const SStudioEntry* forModel = nullptr;
    for (const SStudioEntry& entry : studio_I.entries) {
        const std::string wanted = PlainModelName(entry.model);
        if (wanted != plain && (family_I.empty() || wanted != family_I)) {
            continue;
        }
        if (!entry.serial.empty() && entry.serial == serial_I) {
            return &entry;
        }
        if (entry.serial.empty() && forModel == nullptr) {
            forModel = &entry;
        }
    }
    return forModel;
}
