#pragma once
// The user-level names of the settings on the command line and in profiles ("brightness",
// "colour-temperature", ...), and of their choices.

#include <optional>
#include <string>
#include <vector>

#include "SettingCodes.h"

// The name a setting is written as; every setting has one.
const char* SettingName(ESetting setting_I);
// A setting by its name or an accepted spelling ("color-temperature"); none when unknown.
std::optional<ESetting> SettingByName(const std::string& name_I);
// Every setting with its name, in the dialogs' order.
std::vector<ESetting> AllSettings();

// The name of one of a setting's choices, by the label the dialogs give it ("6500k",
// "adobe-rgb", "keep-ratio", "2.2"); "" for a label that has none.
std::string ChoiceName(uint32_t stringId_I);
// A whole number, decimal or 0x-hex.
std::optional<int32_t> ParseNumber(const std::string& text_I);
// Whether two names are the same in any letter case ("sRGB", "srgb").
bool SameName(const std::string& a_I, const std::string& b_I);
// A VCP code written as hex ("0x10", "10", "E3"); none when the text is not one.
std::optional<uint8_t> ParseVcpCode(const std::string& text_I);
