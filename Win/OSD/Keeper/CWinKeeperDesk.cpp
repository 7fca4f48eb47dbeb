#include "CWinKeeperDesk.h"

#include "DisplayLock.h"
#include "UiDisplayDelegate.h"
#include "WinStrings.h"

CWinKeeperDesk::CWinKeeperDesk(const SStartupOptions& options_I, LANGID language_I, Notifier notify_I)
    : mDiscovery(CWinDisplayConfigInterface::Create()), mNotify(std::move(notify_I)) {
    mDiscovery->SetConnectionMode(options_I.connectionMode);
    mDiscovery->SetMatchByModel(options_I.skipSerialMatch);
    mDiscovery->SetInterfaceLanguage(language_I);
    mDiscovery->SetInitializeAtOnce(!options_I.serialInit);
    if (!options_I.noCache) {
        mDiscovery->SetCapabilitiesCache(std::make_shared<CCapabilitiesCache>(
            CCapabilitiesCache::DefaultFile(!options_I.demoScenario.empty())));
    }
}

std::vector<SFoundDisplay> CWinKeeperDesk::Search() {
    // The connectors of the last search close before the new one opens the devices.
    mDiscovery->Clear();
    mDiscovery->Init();
    std::vector<SFoundDisplay> found;
    for (const SDisplayInfo& info : mDiscovery->DisplayInfos()) {
        auto display = std::dynamic_pointer_cast<UiDisplayDelegate>(info.display);
        if (display) {
            // Discovery has initialised it.
            found.push_back({DisplayModelName(Narrow(info.ModelName())), Narrow(info.serialNumber),
                             ConnectorTypeName(display->GetConnector()->GetType()), display, true,
                             display->Identity()});
        }
    }
    return found;
}

std::shared_ptr<void> CWinKeeperDesk::TryHold(const std::string& serial_I) {
    std::shared_ptr<CDisplayLock> held = HoldDisplayLock(serial_I, std::chrono::milliseconds(0));
    return held;
}
