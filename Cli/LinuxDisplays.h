#pragma once
// The displays of this Linux system: each DRM connector whose EDID names the maker, reached by
// DDC/CI over its DDC bus (/dev/i2c-N), as on Windows through the graphics driver.

#include "CliDisplays.h"
#include "LinuxSystem.h"

class CLinuxDisplays : public IDisplaySource {
public:
    explicit CLinuxDisplays(ILinuxSystem& system_I, std::string sysfsDrm_I = "/sys/class/drm")
        : mSystem(system_I), mSysfsDrm(std::move(sysfsDrm_I)) {}

    std::vector<SCliDisplay>& Displays() override;

private:
    ILinuxSystem& mSystem;
    std::string mSysfsDrm;
    bool mSearched = false;
    std::vector<SCliDisplay> mDisplays;
};
