#pragma once
// Where the command-line tool's displays come from: the demo's, the Linux search's or the
// Windows search's, each as one record of a found display (FoundDisplay).

#include <memory>
#include <string>
#include <vector>

#include "FoundDisplay.h"
#include "SearchOptions.h"

class IDisplaySource {
public:
    virtual ~IDisplaySource() = default;
    // Before the first Displays(): a source that initialises while it searches goes by these.
    virtual void SetSearchOptions(const SSearchOptions& options_I) { mSearchOptions = options_I; }
    // Searches once (finding, not initialising); later calls return what the first found.
    virtual std::vector<SFoundDisplay>& Displays() = 0;
    // What the search could not get past and the user can fix ("/dev/i2c-5 does not open
    // (Permission denied); ..."), one line each; valid after Displays().
    virtual std::vector<std::string> Notes() const { return {}; }

protected:
    SSearchOptions mSearchOptions;
};
