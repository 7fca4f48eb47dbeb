#include "LinuxDisplays.h"

std::vector<SCliDisplay>& CLinuxDisplays::Displays() {
    if (!mSearched) {
        mSearched = true;
        for (SLinuxDisplay& found : mDiscovery.Find()) {
            mDisplays.push_back({found.model, found.serial, found.route, std::move(found.display), false,
                                 std::move(found.identity)});
        }
    }
    return mDisplays;
}
