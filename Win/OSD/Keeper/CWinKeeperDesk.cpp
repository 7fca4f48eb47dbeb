#include "CWinKeeperDesk.h"

#include "DisplayLock.h"

CWinKeeperDesk::CWinKeeperDesk(const SStartupOptions& options_I, LANGID language_I, Notifier notify_I)
    : mDiscovery(CWinDisplayConfigInterface::Create()), mNotify(std::move(notify_I)) {
    SSearchOptions search = SearchOptionsFrom(options_I, language_I);
    // The keeper goes on after a graphics-driver error: the other displays are still kept.
    search.stopOnGraphicsDriverError = false;
    mDiscovery->Configure(search);
}

std::vector<SFoundDisplay> CWinKeeperDesk::Search() {
    // The connectors of the last search close before the new one opens the devices.
    mDiscovery->Clear();
    mDiscovery->Init();
    return mDiscovery->Found();
}

std::shared_ptr<void> CWinKeeperDesk::TryHold(const std::string& serial_I) {
    std::shared_ptr<CDisplayLock> held = HoldDisplayLock(serial_I, std::chrono::milliseconds(0));
    return held;
}
