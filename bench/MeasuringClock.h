#pragma once
// A real clock that also adds up the pauses it was asked for, so a benchmark can set the
// wall time of a run against the waits the protocol itself needs. Pauses of several threads
// (displays initialised at the same time) add up.

#include <atomic>
#include <chrono>

#include "Clock.h"

class CMeasuringClock final : public IClock {
public:
    void Pause(std::chrono::microseconds duration_I) override {
        mRequested += duration_I.count();
        mReal.Pause(duration_I);
    }
    std::chrono::microseconds Now() const override { return mReal.Now(); }
    std::chrono::microseconds Requested() const { return std::chrono::microseconds(mRequested.load()); }
    void Reset() { mRequested = 0; }

private:
    CRealClock mReal;
    std::atomic<long long> mRequested{0};
};
