#pragma once
// The demo's displays for the command-line tool: the virtual displays of the one-per-route
// machine, each reached in-process the way its route would reach it. Their current and saved
// values are kept in a state file between runs, so a set in one run is what a get reads in the
// next, as on hardware.

#include <string>

#include "CVirtualDisplay.h"
#include "CliDisplays.h"

class CDemoDisplays : public IDisplaySource {
public:
    // stateFile_I: where the values are kept; empty: nowhere (each run starts afresh).
    explicit CDemoDisplays(std::string stateFile_I);
    ~CDemoDisplays() override;

    std::vector<SFoundDisplay>& Displays() override;

    // $VLR_DEMO_STATE, else $XDG_STATE_HOME or ~/.local/state, then velor-display-settings/demo.json.
    static std::string DefaultStateFile();

private:
    void Load();
    void Store() const;

    std::string mStateFile;
    bool mSearched = false;
    std::vector<SFoundDisplay> mDisplays;
    std::vector<std::shared_ptr<CVirtualDisplay>> mVirtual;
};
