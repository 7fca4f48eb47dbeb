#pragma once
// What a virtual display is: its identity, firmware version, and the controls its firmware
// implements, from which its capabilities string is made.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "FirmwareVersion.h"

enum class EControlAccess { ReadWrite, ReadOnly, WriteOnly };

struct SVirtualControl {
    uint8_t code = 0;
    bool continuous = false;
    EControlAccess access = EControlAccess::ReadWrite;
    uint16_t factoryValue = 0;
    uint16_t maximum = 0;           // continuous controls
    std::vector<uint16_t> allowed;  // non-continuous values the firmware accepts; empty: any
    // The value list the capabilities string shows, when the firmware lists something other
    // than what it accepts; an empty text lists the code without a value group.
    std::optional<std::string> listedValues;
    bool listed = true;   // appears in the capabilities string
    bool colour = false;  // restored by Restore Factory Color Defaults (0x08)
};

struct SVirtualDisplayModel {
    std::string key;          // how the display is chosen by name ("canvas-22-pro")
    std::string monitorName;  // EDID monitor-name descriptor, at most 13 characters
    std::string serialText;   // EDID serial-number descriptor, at most 13 characters
    uint16_t edidProductCode = 0;
    uint16_t tabletProductId = 0;
    SFirmwareVersion firmware;
    bool listsMccsVersion = true;
    // Its firmware keeps nothing over a power cycle: the factory values come back.
    bool forgetsSettingsWhenOff = false;
    std::vector<SVirtualControl> controls;
};

// The capabilities string the model's firmware reports.
std::string BuildCapabilitiesString(const SVirtualDisplayModel& model_I);
