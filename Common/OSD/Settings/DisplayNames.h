#pragma once
// How the tool names what it reads and writes on one display: a code by the setting it serves
// where the code table's name would mislead, a setting's choices by the dialog's labels, a
// code's values by the code table's texts.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "SettingCodes.h"
#include "UiDisplayDelegate.h"

// One value a command can name, and its name ("" for none).
struct SNamedValue {
    int32_t value = 0;
    std::string name;
};

// The values an enumerated option allows, named by the code table's texts for its
// enumeration; empty for other options.
std::vector<SNamedValue> OptionValuesOf(const VCPOptionBase& option_I);

// The user-level setting this display's family reaches through the code, if any.
std::optional<ESetting> SettingOfCode(const UiDisplayDelegate& display_I, uint8_t code_I);

// How a code is named to the user: the code table's name, unless the family reaches a setting
// through a code the table does not know or through a maker's code (0xE0 and up mean different
// things on different families: 0xE4 is a colour offset on some, colour temperature on others).
std::string CodeLabel(const UiDisplayDelegate& display_I, uint8_t code_I);

// A reverted code as the user set it: by its setting name where it has one.
std::string RevertLabel(const UiDisplayDelegate& display_I, uint8_t code_I);

// What a command names: a user-level setting or a raw VCP code.
struct STarget {
    std::optional<ESetting> setting;
    uint8_t code = 0;
    std::string text;       // as written
    bool justRead = false;  // its value was read from the display while it was looked up
};

// The values a command can give what it names, with their names: a setting's choices as the
// dialogs offer them (a setting's values need not be its code's: battery mode, colour mode), or
// a code's enumeration as the code table names it.
std::vector<SNamedValue> NamedValues(UiDisplayDelegate& display_I, const STarget& target_I);

// The name of a value, or "" when it has none.
std::string NameOfValue(UiDisplayDelegate& display_I, const STarget& target_I, int32_t value_I);

// A value as the tool prints it: "1 (adobe-rgb)", or the number alone.
std::string Shown(UiDisplayDelegate& display_I, const STarget& target_I, int32_t value_I);

// A value given by number or by name (any letter case).
std::optional<int32_t> ValueByText(UiDisplayDelegate& display_I, const STarget& target_I,
                                   const std::string& text_I);
