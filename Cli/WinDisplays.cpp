#include "WinDisplays.h"

#include "DisplayLock.h"

std::vector<SFoundDisplay>& CWinDisplays::Displays() {
    if (mDiscovery) {
        return mDisplays;
    }
    mDiscovery = CWinDisplayConfigInterface::Create();
    mDiscovery->Configure(mSearchOptions);
    {
        // Not while the settings dialog searches or the keeper restores; after a while anyway.
        const std::unique_ptr<CDisplayLock> everyDisplay =
            HoldDisplayLock(kEveryDisplay, std::chrono::milliseconds(10000));
        mDiscovery->Init();
    }
    mDisplays = mDiscovery->Found();
    return mDisplays;
}
