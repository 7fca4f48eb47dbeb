#include "WinDisplays.h"

#include "DisplayLock.h"
#include "WinStrings.h"

std::vector<SCliDisplay>& CWinDisplays::Displays() {
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
        // Discovery has initialised it. Named as on Linux, without the maker's name the dialog
        // puts in front.
        std::string model = Narrow(info.ModelName());
        if (model.rfind("Velor ", 0) == 0) {
            model.erase(0, 6);
        }
        mDisplays.push_back({model, Narrow(info.serialNumber),
                             ConnectorTypeName(display->GetConnector()->GetType()), display, true,
                             display->Identity()});
    }
    return mDisplays;
}
