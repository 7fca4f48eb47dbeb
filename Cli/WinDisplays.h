#pragma once
// The displays Windows discovery finds (the dialog's own search), for the command-line tool.

#include "CWinDisplayConfigInterface.h"
#include "CliDisplays.h"

class CWinDisplays : public IDisplaySource {
public:
    std::vector<SFoundDisplay>& Displays() override;

private:
    std::shared_ptr<CWinDisplayConfigInterface> mDiscovery;
    std::vector<SFoundDisplay> mDisplays;
};
