#pragma once
// The keeper's desk on Windows: the displays the program's own discovery finds (a search of
// its own, apart from the settings dialog's), each display's named lock, and notifications
// handed to whoever shows them.

#include <windows.h>

#include <functional>
#include <memory>

#include "CWinDisplayConfigInterface.h"
#include "SettingsKeeper.h"
#include "StartupOptions.h"

class CWinKeeperDesk : public IKeeperDesk {
public:
    using Notifier = std::function<void(const std::vector<SKeeperResult>&)>;
    CWinKeeperDesk(const SStartupOptions& options_I, LANGID language_I, Notifier notify_I);

    std::vector<SFoundDisplay> Search() override;
    std::shared_ptr<void> TryHold(const std::string& serial_I) override;
    void Notify(const std::vector<SKeeperResult>& results_I) override { mNotify(results_I); }

private:
    std::shared_ptr<CWinDisplayConfigInterface> mDiscovery;
    Notifier mNotify;
};
