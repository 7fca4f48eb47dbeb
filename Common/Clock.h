#pragma once
// The one clock through which every pause of the protocol goes: the wait between a request
// and its reply, the pauses after writes, retry pauses and status polls. The real clock
// sleeps; tests install a CVirtualClock, which records each pause and returns at once.

#include <chrono>
#include <cstdint>

class IClock {
public:
    virtual ~IClock() = default;
    virtual void Pause(std::chrono::microseconds duration_I) = 0;
    // Monotonic time since an arbitrary start.
    virtual std::chrono::microseconds Now() const = 0;
};

class CRealClock final : public IClock {
public:
    void Pause(std::chrono::microseconds duration_I) override;
    std::chrono::microseconds Now() const override;
};

namespace Clock {

IClock& Get();
// Installs a clock for the whole process; nullptr puts the real clock back. Returns the
// clock that was installed before.
IClock* Install(IClock* clock_I);

inline void Pause(std::chrono::microseconds duration_I) {
    Get().Pause(duration_I);
}
inline void PauseMs(uint32_t ms_I) {
    Get().Pause(std::chrono::milliseconds(ms_I));
}
// Seconds as the protocol states them (0.07 s, 0.22 s); rounded to whole microseconds.
void PauseSeconds(double seconds_I);

}  // namespace Clock

// Installs a clock for the lifetime of the object and restores the previous one.
class CScopedClock {
public:
    explicit CScopedClock(IClock& clock_I) : mPrevious(Clock::Install(&clock_I)) {}
    ~CScopedClock() { Clock::Install(mPrevious); }
    CScopedClock(const CScopedClock&) = delete;
    CScopedClock& operator=(const CScopedClock&) = delete;

private:
    IClock* mPrevious;
};
