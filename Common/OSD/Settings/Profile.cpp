#include "Profile.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <limits>
#include <sstream>

#include "DisplayNames.h"
#include "SettingNames.h"
#include "StringUtilities.h"
#include "TextFile.h"

namespace {

using Json = nlohmann::ordered_json;

// The custom colour's channels by name: each adjustment's red, green and blue code.
struct SChannelName {
    const char* name;
    uint32_t type;
    int channel;  // 0 red, 1 green, 2 blue
};
constexpr SChannelName kChannels[] = {
    {"hue-red", eColorModHue, 0},
    {"hue-green", eColorModHue, 1},
    {"hue-blue", eColorModHue, 2},
    {"saturation-red", eColorModSaturation, 0},
    {"saturation-green", eColorModSaturation, 1},
    {"saturation-blue", eColorModSaturation, 2},
    {"gain-red", eColorModGain, 0},
    {"gain-green", eColorModGain, 1},
    {"gain-blue", eColorModGain, 2},
    {"offset-red", eColorModOffset, 0},
    {"offset-green", eColorModOffset, 1},
    {"offset-blue", eColorModOffset, 2},
};

uint8_t ChannelCode(const SChannelName& channel_I) {
    SColorModCodes codes{};
    ColorModCodes(channel_I.type, codes);
    const uint8_t all[] = {codes.red, codes.green, codes.blue};
    return all[channel_I.channel];
}

// A channel is the display's when it offers all three codes of the adjustment and none of
// them carries a setting on this family (the first models keep colour temperature on 0xE4).
bool HasChannel(const UiDisplayDelegate& display_I, const SChannelName& channel_I) {
    SColorModCodes codes{};
    ColorModCodes(channel_I.type, codes);
    for (uint8_t code : {codes.red, codes.green, codes.blue}) {
        if (!display_I.HasOption(code) || SettingOfCode(display_I, code).has_value()) {
            return false;
        }
    }
    return true;
}

const SChannelName* ChannelByName(const std::string& name_I) {
    for (const SChannelName& channel : kChannels) {
        if (SameName(name_I, channel.name)) {
            return &channel;
        }
    }
    return nullptr;
}

// One value of the profile as this display takes it.
struct SPlanned {
    std::string name;
    std::optional<ESetting> setting;  // none: a custom colour channel
    uint8_t code = 0;                 // read fresh before comparing; 0: the delegate's own
    int32_t wanted = 0;
    int rank = 0;  // the order of writing: colour mode, its values, the rest
    size_t order = 0;
    bool offered = true;  // whether the display offers the value (a profile of another family)
};

// Reads the value fresh from the display; none when it does not answer.
std::optional<int32_t> ReadNow(UiDisplayDelegate& display_I, const SPlanned& planned_I) {
    if (planned_I.code != 0) {
        const SVCPValue read = display_I.GetVCPValue(planned_I.code, true);
        if (!read.valid) {
            return std::nullopt;
        }
        if (!planned_I.setting) {
            return read.value;
        }
    }
    const SSettingState state = display_I.GetSetting(*planned_I.setting);
    if (!state.valid) {
        return std::nullopt;
    }
    return state.value;
}

// What the display will read and write of the profile, in the order it is written, and what
// it cannot take.
std::vector<SPlanned> Plan(UiDisplayDelegate& display_I, const SProfile& profile_I,
                           SProfileReport& report_O) {
    std::vector<SPlanned> planned;
    std::vector<std::string> seen;
    const auto skip = [&](const std::string& name_I, EProfileOutcome outcome_I, std::string detail_I) {
        report_O.items.push_back({name_I, outcome_I, std::nullopt, std::nullopt, std::move(detail_I)});
    };
    for (const SProfileValue& value : profile_I.values) {
        const std::optional<ESetting> setting = SettingByName(value.name);
        const SChannelName* channel = setting ? nullptr : ChannelByName(value.name);
        if (!setting && channel == nullptr) {
            skip(value.name, EProfileOutcome::Invalid,
                 "not a setting's name" + NearestProfileNameHint(value.name));
            continue;
        }
        const std::string name = setting ? SettingName(*setting) : channel->name;
        if (std::find(seen.begin(), seen.end(), name) != seen.end()) {
            skip(value.name, EProfileOutcome::Invalid, "named twice");
            continue;
        }
        seen.push_back(name);
        if (!value.number && value.text.empty()) {
            skip(name, EProfileOutcome::Invalid, "not a whole number or a choice's name");
            continue;
        }
        SPlanned item{name, setting, 0, 0, 2, planned.size()};
        if (channel != nullptr) {
            if (!HasChannel(display_I, *channel)) {
                skip(name, EProfileOutcome::Skipped, "not on this display");
                continue;
            }
            item.code = ChannelCode(*channel);
            item.rank = 1;
            if (!value.number ||
                (!display_I.AllowsRawColorValues() && (*value.number < 0 || *value.number > 100))) {
                skip(name, EProfileOutcome::Invalid, "not a value this display takes (0 to 100)");
                continue;
            }
            item.wanted = *value.number;
            planned.push_back(item);
            continue;
        }
        const SSettingState state = display_I.GetSetting(*setting);
        if (!state.supported || SettingRowOf(*setting).kind == ESettingKind::Action) {
            skip(name, EProfileOutcome::Skipped, "not on this display");
            continue;
        }
        if (!state.writable) {
            skip(name, EProfileOutcome::Skipped, "cannot be changed on this display");
            continue;
        }
        const uint8_t code = display_I.Traits().SettingCode(*setting);
        item.code = display_I.HasOption(code) ? code : 0;
        const STarget target{setting, code, name};
        const std::optional<int32_t> wanted =
            value.number ? value.number : ValueByText(display_I, target, value.text);
        if (!wanted) {
            const bool number = value.text.find_first_not_of("-0123456789") == std::string::npos;
            skip(name, EProfileOutcome::Invalid,
                 "\"" + value.text +
                     (number ? "\" is far outside what any setting takes"
                             : "\" is not one of its choices here"));
            continue;
        }
        item.offered = state.Offers(*wanted);
        item.wanted = *wanted;
        if (*setting == ESetting::ColorSettingMode) {
            item.rank = profile_I.undo ? 3 : 0;
        } else if (*setting == ESetting::ColorTemperature || *setting == ESetting::ColorSpace) {
            item.rank = 1;
        }
        planned.push_back(item);
    }
    // A named colour mode keeps only its own values: writing the temperature of a profile in
    // colour-space mode would switch the display to temperature mode.
    const auto mode = std::find_if(planned.begin(), planned.end(), [](const SPlanned& item_I) {
        return item_I.setting == ESetting::ColorSettingMode;
    });
    if (mode != planned.end() && !profile_I.undo) {
        const int32_t wantedMode = mode->wanted;
        std::erase_if(planned, [&](const SPlanned& item_I) {
            if (item_I.setting == ESetting::ColorTemperature) {
                return wantedMode != eColorModeTemperature;
            }
            if (item_I.setting == ESetting::ColorSpace) {
                return wantedMode != eColorModeSpace;
            }
            return !item_I.setting && wantedMode != eColorModeCustom;
        });
    }
    std::stable_sort(planned.begin(), planned.end(),
                     [](const SPlanned& a_I, const SPlanned& b_I) { return a_I.rank < b_I.rank; });
    return planned;
}

SProfileReport Run(UiDisplayDelegate& display_I, const SProfile& profile_I, bool write_I,
                   const std::function<void(uint8_t)>& beforeWrite_I) {
    SProfileReport report;
    const std::vector<SPlanned> planned = Plan(display_I, profile_I, report);
    std::vector<SProfileItem> done;
    bool answering = true;
    for (const SPlanned& item : planned) {
        SProfileItem result{item.name, EProfileOutcome::Matched, item.wanted, std::nullopt, {}};
        if (!answering) {
            // Each read of a display that stopped answering costs its retries: stop asking.
            result.outcome = EProfileOutcome::Failed;
            result.detail = "not tried: the display stopped answering";
            done.push_back(result);
            continue;
        }
        display_I.ClearLastFailure();
        const auto failed = [&](const std::string& what_I) {
            const std::string detail = display_I.LastFailure();
            result.outcome = EProfileOutcome::Failed;
            result.detail = what_I + (detail.empty() ? "" : " (" + detail + ")");
        };
        result.actual = ReadNow(display_I, item);
        if (!result.actual) {
            failed("the display did not answer as expected");
            answering = false;
        } else if (*result.actual != item.wanted && !write_I) {
            result.outcome = EProfileOutcome::Drifted;
        } else if (*result.actual != item.wanted && !item.offered &&
                   !(item.setting && display_I.GetSetting(*item.setting).Offers(item.wanted))) {
            // (Asked again: a plan made while a read failed knew no range yet.)
            result.outcome = EProfileOutcome::Invalid;  // refused as a set of it would be
            result.detail = "\"" + std::to_string(item.wanted) + "\" is not a value this display offers";
        } else if (*result.actual != item.wanted) {
            if (beforeWrite_I && item.code != 0) {
                beforeWrite_I(item.code);
            }
            const bool written = item.setting ? display_I.SetSetting(*item.setting, item.wanted)
                                              : display_I.SetVCPValue(item.code, item.wanted);
            // Read back whether or not the write went through: a display that still answers
            // refused this value only, and the rest is still worth writing.
            const std::string writeFailure = written ? std::string() : display_I.LastFailure();
            const std::optional<int32_t> after = ReadNow(display_I, item);
            if (!after) {
                failed("the display did not answer as expected");
                answering = false;
            } else if (!written) {
                result.outcome = EProfileOutcome::Failed;
                result.detail = "the display did not answer as expected" +
                                (writeFailure.empty() ? "" : " (" + writeFailure + ")");
            } else if (*after != item.wanted) {
                failed("the display did not take it (it has " + std::to_string(*after) + ")");
            } else {
                result.outcome = EProfileOutcome::Restored;
            }
        }
        done.push_back(result);
    }
    // What was read and written first, then what was not.
    report.items.insert(report.items.begin(), done.begin(), done.end());
    return report;
}

}  // namespace

bool SProfileReport::Any(EProfileOutcome outcome_I) const {
    return std::any_of(items.begin(), items.end(),
                       [&](const SProfileItem& item_I) { return item_I.outcome == outcome_I; });
}

bool IsProfileName(const std::string& name_I) {
    return SettingByName(name_I) || ChannelByName(name_I) != nullptr;
}

std::string NearestProfileNameHint(const std::string& name_I) {
    std::vector<std::string> names;
    for (ESetting setting : AllSettings()) {
        names.push_back(SettingName(setting));
    }
    for (const SChannelName& channel : kChannels) {
        names.push_back(channel.name);
    }
    std::string lower = name_I;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c_I) { return static_cast<char>(std::tolower(c_I)); });
    // One letter off for short names, two for longer ones: nearer than any two names are.
    std::string nearest;
    size_t best = (name_I.size() < 8 ? 1 : 2) + 1;
    for (const std::string& name : names) {
        const size_t distance = EditDistance(lower, name);
        if (distance < best) {
            best = distance;
            nearest = name;
        }
    }
    return nearest.empty() ? std::string() : " (did you mean " + nearest + "?)";
}

std::optional<SProfile> ProfileFromText(const std::string& text_I, std::string& problem_O) {
    const Json json = Json::parse(text_I, nullptr, false);
    if (json.is_discarded() || !json.is_object() || !json.contains("settings") ||
        !json["settings"].is_object()) {
        problem_O = "not a profile (a JSON object with \"settings\")";
        return std::nullopt;
    }
    SProfile profile;
    if (json.contains("model") && json["model"].is_string()) {
        profile.model = json["model"].get<std::string>();
    }
    if (json.contains("serial") && json["serial"].is_string()) {
        profile.serial = json["serial"].get<std::string>();
    }
    for (const auto& [name, value] : json["settings"].items()) {
        SProfileValue entry{name, std::nullopt, {}};
        constexpr int64_t kLowest = std::numeric_limits<int32_t>::min();
        constexpr int64_t kHighest = std::numeric_limits<int32_t>::max();
        // A number no setting can take stays as its text, to be named as such, never cut short.
        if (value.is_number_unsigned()) {
            if (value.get<uint64_t>() <= static_cast<uint64_t>(kHighest)) {
                entry.number = static_cast<int32_t>(value.get<uint64_t>());
            } else {
                entry.text = value.dump();
            }
        } else if (value.is_number_integer()) {
            const int64_t number = value.get<int64_t>();
            if (number >= kLowest && number <= kHighest) {
                entry.number = static_cast<int32_t>(number);
            } else {
                entry.text = value.dump();
            }
        } else if (value.is_string()) {
            entry.text = value.get<std::string>();
        } else if (value.is_number_float()) {
            entry.text = value.dump();  // a choice named by a number: gamma 2.2
        }
        profile.values.push_back(entry);
    }
    return profile;
}

std::string ProfileText(const SProfile& profile_I) {
    Json settings = Json::object();
    for (const SProfileValue& value : profile_I.values) {
        if (value.number) {
            settings[value.name] = *value.number;
        } else {
            settings[value.name] = value.text;
        }
    }
    const Json json = {{"model", profile_I.model}, {"serial", profile_I.serial}, {"settings", settings}};
    return json.dump(2) + "\n";
}

std::optional<SProfile> ReadProfileFile(const std::string& path_I, std::string& problem_O) {
    const std::optional<std::string> text = ReadTextFile(path_I, problem_O);
    std::optional<SProfile> profile = text ? ProfileFromText(*text, problem_O) : std::nullopt;
    if (text && !profile) {
        problem_O = path_I + ": " + problem_O;
    }
    return profile;
}

bool WriteProfileFile(const std::string& path_I, const SProfile& profile_I, std::string& problem_O) {
    return WriteTextFile(path_I, ProfileText(profile_I), problem_O);
}

SProfile CaptureProfile(UiDisplayDelegate& display_I, const std::string& model_I,
                        const std::string& serial_I) {
    SProfile profile{model_I, serial_I, {}};
    std::vector<uint8_t> codes;
    for (const SSettingRow& row : SettingRows()) {
        const uint8_t code = display_I.Traits().SettingCode(row.setting);
        const bool sameCodeAsAnother =
            code != 0 && std::find(codes.begin(), codes.end(), code) != codes.end();
        if (row.kind == ESettingKind::Action || sameCodeAsAnother) {
            continue;  // an action is no setting; scan mode is the aspect ratio where both use 0xDA
        }
        if (code != 0 && display_I.HasOption(code) && !display_I.GetVCPValue(code, true).valid) {
            continue;
        }
        const SSettingState state = display_I.GetSetting(row.setting);
        // Only what the display can be given back: the battery models report 0 ("on mains")
        // for Battery Mode, a state no choice of the setting writes.
        if (state.supported && state.writable && state.valid && state.Offers(state.value)) {
            // A choice by its name: another family may reach the same choice with another number.
            const std::string choice =
                NameOfValue(display_I, STarget{row.setting, code, row.name}, state.value);
            if (!choice.empty()) {
                profile.values.push_back({row.name, std::nullopt, choice});
            } else {
                profile.values.push_back({row.name, state.value, {}});
            }
            codes.push_back(code);
        }
    }
    for (const SChannelName& channel : kChannels) {
        if (HasChannel(display_I, channel)) {
            const SVCPValue read = display_I.GetVCPValue(ChannelCode(channel), true);
            if (read.valid) {
                profile.values.push_back({channel.name, read.value, {}});
            }
        }
    }
    return profile;
}

SProfileReport CheckProfile(UiDisplayDelegate& display_I, const SProfile& profile_I) {
    return Run(display_I, profile_I, false, {});
}

SProfileReport ApplyProfile(UiDisplayDelegate& display_I, const SProfile& profile_I,
                            const std::function<void(uint8_t)>& beforeWrite_I) {
    return Run(display_I, profile_I, true, beforeWrite_I);
}

const char* ProfileOutcomeName(EProfileOutcome outcome_I) {
    switch (outcome_I) {
        case EProfileOutcome::Matched: return "matched";
        case EProfileOutcome::Drifted: return "drifted";
        case EProfileOutcome::Restored: return "restored";
        case EProfileOutcome::Failed: return "failed";
        case EProfileOutcome::Skipped: return "skipped";
        case EProfileOutcome::Invalid: return "invalid";
    }
    return "unknown";
}
