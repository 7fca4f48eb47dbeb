#include "LinuxDisplays.h"

std::vector<SFoundDisplay>& CLinuxDisplays::Displays() {
    if (!mSearched) {
        mSearched = true;
        mDisplays = mDiscovery.Find();
    }
    return mDisplays;
}
