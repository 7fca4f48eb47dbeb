#pragma once
// The user-level names of the settings on the command line and in profiles ("brightness",
// "colour-temperature", ...), and the names of the values a code's enumeration gives.

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

// The printed name of a value of this code's enumeration ("6500K"), or "" when it has none.
std::string ValueName(uint8_t code_I, int32_t value_I);
// A value by number (decimal or 0x-hex) or by its printed name (any letter case).
std::optional<int32_t> ParseValue(uint8_t code_I, const std::string& text_I);
// A VCP code written as hex ("0x10", "10", "E3"); none when the text is not one.
std::optional<uint8_t> ParseVcpCode(const std::string& text_I);
