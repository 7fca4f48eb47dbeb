#include "Clock.h"

#include <atomic>
#include <cmath>
#include <thread>

void CRealClock::Pause(std::chrono::microseconds duration_I) {
    if (duration_I.count() > 0) {
        std::this_thread::sleep_for(duration_I);
    }
}

std::chrono::microseconds CRealClock::Now() const {
    return std::chrono::duration_cast<std::chrono::microseconds>(
        std::chrono::steady_clock::now().time_since_epoch());
}

namespace Clock {
namespace {
CRealClock gRealClock;
std::atomic<IClock*> gClock{&gRealClock};
}  // namespace

IClock& Get() {
    return *gClock.load(std::memory_order_acquire);
}

IClock* Install(IClock* clock_I) {
    IClock* previous = gClock.exchange(clock_I != nullptr ? clock_I : &gRealClock);
    return previous == &gRealClock ? nullptr : previous;
}

void PauseSeconds(double seconds_I) {
    if (!(seconds_I > 0.0)) {
        return;
    }
    Get().Pause(std::chrono::microseconds(std::llround(seconds_I * 1e6)));
}

}  // namespace Clock
