#include "LinuxDisplays.h"

#include "CI2cDevConnector.h"
#include "DebugLog.h"
#include "DrmConnectors.h"
#include "EdidText.h"

std::vector<SCliDisplay>& CLinuxDisplays::Displays() {
    if (mSearched) {
        return mDisplays;
    }
    mSearched = true;
    for (const SDrmConnector& drm : FindDrmConnectors(mSystem, mSysfsDrm)) {
        if (EdidManufacturer(drm.edid) != "VLR") {
            continue;  // another maker's monitor
        }
        if (drm.i2cDevice.empty()) {
            DLog("CLinuxDisplays: %s has no DDC bus the kernel names; skipped\n", drm.name.c_str());
            continue;
        }
        auto connector = std::make_shared<CI2cDevConnector>(mSystem);
        const int bus = std::stoi(drm.i2cDevice.substr(drm.i2cDevice.rfind('-') + 1));
        if (!connector->Open(bus)) {
            continue;  // logged: usually the device node's permissions
        }
        auto display = std::make_shared<UiDisplayDelegate>(connector, Edid::ProductCode(drm.edid));
        if (!display->Initialize()) {
            DLog("CLinuxDisplays: %s on %s does not answer DDC/CI\n", drm.name.c_str(), drm.i2cDevice.c_str());
            continue;
        }
        const std::string name = Edid::DescriptorText(drm.edid, 0xFC);
        mDisplays.push_back({name.empty() ? display->MonitorName() : name, Edid::DescriptorText(drm.edid, 0xFF),
                             drm.i2cDevice, display});
    }
    return mDisplays;
}
