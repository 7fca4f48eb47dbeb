#pragma once
// The displays the command-line tool talks to, however they were found: what `list` shows of
// each, and the settings delegate every command goes through (the dialogs' own).

#include <memory>
#include <string>
#include <vector>

#include "CapabilitiesCache.h"
#include "UiDisplayDelegate.h"

struct SCliDisplay {
    std::string model;   // the model name ("Velor Canvas 22 Pro")
    std::string serial;  // the display's serial number
    std::string route;   // "graphics driver", "HID", "serial", "FTDI", "TI", or a device node
    std::shared_ptr<UiDisplayDelegate> display;
    // Initialised only when a command needs this display: a script's `get 0` does not pay for
    // reading every display's capabilities.
    bool ready = false;
    // Who it is by its EDID and route: what its capabilities are cached under.
    SDisplayIdentity identity;
};

// How a search goes, as the command line asks: displays on different channels initialised at
// the same time (--serial-init: one after another), capabilities from the cache (--no-cache:
// none).
struct SSearchOptions {
    bool atOnce = true;
    std::shared_ptr<CCapabilitiesCache> cache;
};

class IDisplaySource {
public:
    virtual ~IDisplaySource() = default;
    // Before the first Displays(): a source that initialises while it searches goes by these.
    virtual void SetSearchOptions(const SSearchOptions& options_I) { mSearchOptions = options_I; }
    // Searches once (finding, not initialising); later calls return what the first found.
    virtual std::vector<SCliDisplay>& Displays() = 0;
    // What the search could not get past and the user can fix ("/dev/i2c-5 does not open
    // (Permission denied); ..."), one line each; valid after Displays().
    virtual std::vector<std::string> Notes() const { return {}; }

protected:
    SSearchOptions mSearchOptions;
};
