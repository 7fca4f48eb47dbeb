#include "WinDisplays.h"

#include "DisplayLock.h"
#include "WinStrings.h"

namespace {

const char* RouteName(unsigned type_I) {
    switch (type_I) {
        case eConnectorDisplayPort: return "graphics driver";
        case eConnectorHID: return "HID";
        case eConnectorSerial: return "serial";
        case eConnectorFTDI: return "FTDI";
        case eConnectorTI: return "TI";
        default: return "?";
    }
}

}  // namespace

std::vector<SCliDisplay>& CWinDisplays::Displays() {
    if (mDiscovery) {
        return mDisplays;
    }
    mDiscovery = CWinDisplayConfigInterface::Create();
    {
        // Not while the settings dialog searches or the keeper restores; after a while anyway.
        const std::unique_ptr<CDisplayLock> everyDisplay =
            HoldDisplayLock(kEveryDisplay, std::chrono::milliseconds(10000));
        mDiscovery->Init();
    }
    for (const SDisplayInfo& info : mDiscovery->DisplayInfos()) {
        auto display = std::dynamic_pointer_cast<UiDisplayDelegate>(info.display);
        if (!display) {
            continue;
        }
        // Discovery has initialised it.
        mDisplays.push_back({Narrow(info.ModelName()), Narrow(info.serialNumber),
                             RouteName(display->GetConnector()->GetType()), display, true});
    }
    return mDisplays;
}
