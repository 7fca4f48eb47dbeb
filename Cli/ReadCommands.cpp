// list, caps and get: what the displays are and have.

#include "Tool.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "Clock.h"
#include "DisplayLock.h"
#include "DisplayNames.h"
#include "KeptProfiles.h"
#include "ParallelWork.h"
#include "Profile.h"
#include "SettingNames.h"
#include "StudioFile.h"
#include "TextFile.h"
#include "codes.h"

using nlohmann::json;

int CTool::List(bool json_I) {
    std::vector<SFoundDisplay>& displays = Displays();
    // Only the firmware version is read, of every display at once; a display that does not
    // report one is initialised, as its capabilities may name the code that holds it.
    std::vector<std::string> firmware(displays.size());
    RunForEach(displays.size(), !mSerialInit, [&](size_t index_I) {
        SFoundDisplay& display = displays[index_I];
        if (!display.ready && !display.display->ReadFirmwareVersion().IsZero()) {
            firmware[index_I] = display.display->FirmwareVersion().ToString();
        } else {
            firmware[index_I] = Ready(display) ? display.display->FirmwareVersionText() : "";
        }
    });
    json all = json::array();
    for (size_t i = 0; i < displays.size(); ++i) {
        SFoundDisplay& display = displays[i];
        const bool answering = !firmware[i].empty() || display.ready;
        const std::string shown = answering ? firmware[i] : "(not answering)";
        json entry = {{"index", i},
                      {"model", display.model},
                      {"serial", display.serial},
                      {"route", display.route},
                      {"firmware", shown},
                      {"answering", answering}};
        // What a studio file's entries can name the display's model by.
        if (const char* family = display.display->HelpPageName(); family != nullptr && *family != '\0') {
            entry["family"] = family;
        }
        all.push_back(entry);
        if (!json_I) {
            mOut << i << "  " << display.model << "  serial " << display.serial << "  via " << display.route
                 << "  firmware " << shown << "\n";
        }
    }
    PrintNotes();
    if (json_I) {
        mOut << all.dump(2) << "\n";
    } else if (all.empty()) {
        mOut << "no displays found\n";
    }
    return CliExit::kDone;
}

int CTool::Caps(SFoundDisplay& found_I, bool json_I) {
    json codes = json::array();
    for (const auto& [code, option] : found_I.display->Options()) {
        if (!option) {
            continue;
        }
        json entry = {{"code", code}, {"name", CodeLabel(*found_I.display, static_cast<uint8_t>(code))}};
        if (std::optional<ESetting> setting = SettingOfCode(*found_I.display, static_cast<uint8_t>(code))) {
            entry["setting"] = SettingName(*setting);
        }
        entry["access"] =
            option->Info().WriteOnly() ? "write" : (option->Info().Writable() ? "read-write" : "read");
        json named = json::array();
        for (const SNamedValue& value : OptionValuesOf(*option)) {
            named.push_back({{"value", value.value}, {"text", value.name}});
        }
        if (!named.empty()) {
            entry["values"] = named;
        }
        codes.push_back(entry);
    }
    if (json_I) {
        mOut << codes.dump(2) << "\n";
        return CliExit::kDone;
    }
    char hex[8];
    for (const json& entry : codes) {
        std::snprintf(hex, sizeof(hex), "0x%02X", entry["code"].get<unsigned>());
        mOut << hex << "  " << entry["name"].get<std::string>() << "  (" << entry["access"].get<std::string>()
             << ")";
        if (entry.contains("setting") && !SameName(entry["setting"], entry["name"])) {
            mOut << "  as " << entry["setting"].get<std::string>();
        }
        mOut << "\n";
        if (entry.contains("values")) {
            for (const json& value : entry["values"]) {
                mOut << "        " << value["value"].get<int32_t>();
                if (!value["text"].get<std::string>().empty()) {
                    mOut << "  " << value["text"].get<std::string>();
                }
                mOut << "\n";
            }
        }
    }
    return CliExit::kDone;
}

int CTool::Get(SFoundDisplay& found_I, const std::vector<std::string>& names_I, bool json_I) {
    std::vector<STarget> targets;
    for (const std::string& name : names_I) {
        std::optional<STarget> target = Target(*found_I.display, name);
        if (!target) {
            return CliExit::kBadUsage;
        }
        targets.push_back(*target);
    }
    json values = json::array();
    int result = CliExit::kDone;
    for (const STarget& target : targets) {
        bool ok = false;
        json value = ValueJson(*found_I.display, target, ok);
        if (!ok) {
            result = Failed(*found_I.display, target.text);
            continue;
        }
        values.push_back(value);
        if (!json_I) {
            mOut << value["name"].get<std::string>() << " = " << value["value"].get<int32_t>();
            if (value.contains("text")) {
                mOut << " (" << value["text"].get<std::string>() << ")";
            }
            mOut << "\n";
        }
    }
    if (json_I) {
        mOut << values.dump(2) << "\n";
    }
    return result;
}
