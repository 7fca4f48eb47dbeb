#include "WinDisplays.h"

#include "DisplayLock.h"
#include "WinStrings.h"

std::vector<SFoundDisplay>& CWinDisplays::Displays() {
    if (mDiscovery) {
        return mDisplays;
    }
    mDiscovery = CWinDisplayConfigInterface::Create();
    mDiscovery->SetInitializeAtOnce(mSearchOptions.atOnce);
    mDiscovery->SetCapabilitiesCache(mSearchOptions.cache);
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
        mDisplays.push_back({DisplayModelName(Narrow(info.ModelName())), Narrow(info.serialNumber),
                             ConnectorTypeName(display->GetConnector()->GetType()), display, true,
                             display->Identity()});
    }
    return mDisplays;
}
