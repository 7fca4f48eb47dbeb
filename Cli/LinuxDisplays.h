#pragma once
// The tool's displays on Linux: what the Linux discovery finds, as the tool lists them.

#include "CliDisplays.h"
#include "LinuxDisplayDiscovery.h"

class CLinuxDisplays : public IDisplaySource {
public:
    explicit CLinuxDisplays(ILinuxSystem& system_I, std::string sysfsDrm_I = "/sys/class/drm",
                            std::string sysfsHidraw_I = "/sys/class/hidraw",
                            std::string sysfsTty_I = "/sys/class/tty")
        : mDiscovery(system_I, std::move(sysfsDrm_I), std::move(sysfsHidraw_I), std::move(sysfsTty_I)) {}

    std::vector<SFoundDisplay>& Displays() override;
    std::vector<std::string> Notes() const override { return mDiscovery.Notes(); }

private:
    CLinuxDisplayDiscovery mDiscovery;
    bool mSearched = false;
    std::vector<SFoundDisplay> mDisplays;
};
