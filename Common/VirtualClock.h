#pragma once
// A clock for tests and the demo: time advances only by the pauses asked of it, and every
// pause is recorded in order so a test can assert exactly which waits the protocol made.

#include <mutex>
#include <vector>

#include "Clock.h"

class CVirtualClock final : public IClock {
public:
    void Pause(std::chrono::microseconds duration_I) override;
    std::chrono::microseconds Now() const override;

    // Moves time on without recording a pause (time spent elsewhere). Time never runs
    // backwards: a negative step is an assertion failure, counted, and the clock stays put.
    void Advance(std::chrono::microseconds duration_I);
    // How many times something asked the clock to go backwards.
    unsigned RewindsRefused() const;

    std::vector<std::chrono::microseconds> Pauses() const;
    // The recorded pauses in whole milliseconds, rounded to nearest.
    std::vector<long long> PausesMs() const;
    std::chrono::microseconds TotalPaused() const;
    void ClearPauses();

private:
    mutable std::mutex mMutex;
    std::chrono::microseconds mNow{0};
    unsigned mRewindsRefused = 0;
    std::vector<std::chrono::microseconds> mPauses;
};
