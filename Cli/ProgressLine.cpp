#include "ProgressLine.h"

#include <chrono>

CProgressLine::CProgressLine(std::ostream* err_I, const std::string& what_I) : mErr(err_I) {
    if (mErr == nullptr) {
        return;
    }
    *mErr << what_I << " " << std::flush;
    mTicker = std::thread([this] {
        std::unique_lock<std::mutex> lock(mMutex);
        // Real seconds, not the protocol's clock: this is for the eye only.
        while (!mCondition.wait_for(lock, std::chrono::seconds(2), [this] { return mDone; })) {
            *mErr << "." << std::flush;
        }
    });
}

CProgressLine::~CProgressLine() {
    if (mErr == nullptr) {
        return;
    }
    {
        const std::lock_guard<std::mutex> lock(mMutex);
        mDone = true;
    }
    mCondition.notify_one();
    mTicker.join();
    *mErr << " done\n" << std::flush;
}
