#pragma once
// A display a search found, the one record every program keeps of it: the settings window's
// keeper, the command-line tool on Windows and Linux, and the demo. Its model and serial number
// are what kept profiles, studio entries and revert notes name it by, the same in every program.

#include <memory>
#include <string>

#include "CapabilitiesCache.h"
#include "UiDisplayDelegate.h"

struct SFoundDisplay {
    std::string model;   // as DisplayModelName gives it ("Canvas 22 Pro")
    std::string serial;  // the display's serial number (its EDID's)
    std::string route;   // "graphics driver", "HID", "serial", "FTDI", "TI", or a device node
    std::shared_ptr<UiDisplayDelegate> display;
    // Initialised (it answered). A search that initialises sets it; otherwise the program that
    // needs the display initialises it then: a script's `get 0` does not pay for every display.
    bool ready = false;
    // Who it is by its EDID and route: what its capabilities are cached under.
    SDisplayIdentity identity;
};

// A model's name as every program names a display: the maker's name that the Windows interface
// texts put in front ("Velor Canvas 22 Pro") is left out, so that a profile kept by one program
// is found by the others (and entries kept under the longer name are found still).
std::string DisplayModelName(const std::string& name_I);
