#pragma once
// The displays Windows discovery finds (the dialog's own search), for the command-line tool.

#include "CliDisplays.h"
#include "CWinDisplayConfigInterface.h"

class CWinDisplays : public IDisplaySource {
public:
    std::vector<SCliDisplay>& Displays() override;

private:
    std::shared_ptr<CWinDisplayConfigInterface> mDiscovery;
    std::vector<SCliDisplay> mDisplays;
};
