#include "ScopedTimer.h"

#include "DebugLog.h"

CScopedTimer::CScopedTimer(std::string label_I, const char* suffix_I)
    : mActive(DebugLog::IsOn(ELogLevel::Info)) {
    if (mActive) {
        mLabel = std::move(label_I);
        mLabel += suffix_I;
        mStart = std::chrono::steady_clock::now();
    }
}

CScopedTimer::~CScopedTimer() {
    if (!mActive) {
        return;
    }
    std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now() - mStart;
    DLog("TIME: %s %.3f ms\n", mLabel.c_str(), elapsed.count());
}
