#pragma once
// How a display search goes, as each program's options ask for it: the settings window's and
// the keeper's command line ("/hidPort", "/skipSerialMatch", "/exitOnError", "/serialInit",
// "/nocache"), the command-line tool's (--serial-init, --no-cache). One record, so that every
// program configures its search in one place.

#include <cstdint>
#include <memory>

#include "CapabilitiesCache.h"

struct SSearchOptions {
    uint32_t connectionMode = 3;  // EConnectionMode: every route
    // Pairing by model where serial numbers do not pair.
    bool matchByModel = true;
    // A graphics-driver error ends the search.
    bool stopOnGraphicsDriverError = false;
    // Displays on different channels initialised at the same time (one after another: false).
    bool atOnce = true;
    // Where capabilities strings are found and kept; null: every display is read.
    std::shared_ptr<CCapabilitiesCache> cache;
    // The interface language id whose menu language the program sets; 0: none.
    uint16_t interfaceLanguage = 0;
};
