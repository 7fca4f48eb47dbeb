#include "VirtualClock.h"

#include "Assert.h"

void CVirtualClock::Pause(std::chrono::microseconds duration_I) {
    std::lock_guard<std::mutex> lock(mMutex);
    mPauses.push_back(duration_I);
    if (duration_I.count() > 0) {
        mNow += duration_I;
    }
}

std::chrono::microseconds CVirtualClock::Now() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mNow;
}

void CVirtualClock::Advance(std::chrono::microseconds duration_I) {
    std::lock_guard<std::mutex> lock(mMutex);
    if (duration_I.count() < 0) {
        // A display's busy window or a keeper's schedule would be in the future again.
        ++mRewindsRefused;
        VLR_ASSERT_FAIL("virtual clock asked to run backwards");
        return;
    }
    mNow += duration_I;
}

unsigned CVirtualClock::RewindsRefused() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mRewindsRefused;
}

std::vector<std::chrono::microseconds> CVirtualClock::Pauses() const {
    std::lock_guard<std::mutex> lock(mMutex);
    return mPauses;
}

std::vector<long long> CVirtualClock::PausesMs() const {
    std::lock_guard<std::mutex> lock(mMutex);
    std::vector<long long> result;
    result.reserve(mPauses.size());
    for (auto pause : mPauses) {
        result.push_back((pause.count() + 500) / 1000);
    }
    return result;
}

std::chrono::microseconds CVirtualClock::TotalPaused() const {
    std::lock_guard<std::mutex> lock(mMutex);
    std::chrono::microseconds total{0};
    for (auto pause : mPauses) {
        total += pause;
    }
    return total;
}

void CVirtualClock::ClearPauses() {
    std::lock_guard<std::mutex> lock(mMutex);
    mPauses.clear();
}
