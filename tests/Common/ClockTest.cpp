#include <gtest/gtest.h>

#include "Assert.h"
#include "Clock.h"
#include "VirtualClock.h"

using namespace std::chrono_literals;

TEST(Clock, VirtualClockRecordsEveryPauseAndAdvancesWithoutSleeping) {
    CVirtualClock virtualClock;
    CScopedClock scoped(virtualClock);

    auto wallStart = std::chrono::steady_clock::now();
    Clock::PauseSeconds(0.07);
    Clock::PauseMs(60);
    Clock::PauseSeconds(0.0001);
    Clock::PauseMs(5000);
    Clock::PauseSeconds(0.0);  // no pause at all
    Clock::PauseSeconds(-1.0);
    auto wallElapsed = std::chrono::steady_clock::now() - wallStart;

    EXPECT_LT(wallElapsed, 1s);
    EXPECT_EQ(virtualClock.Pauses(),
              (std::vector<std::chrono::microseconds>{70000us, 60000us, 100us, 5000000us}));
    EXPECT_EQ(virtualClock.PausesMs(), (std::vector<long long>{70, 60, 0, 5000}));
    EXPECT_EQ(virtualClock.TotalPaused(), 5130100us);
    EXPECT_EQ(virtualClock.Now(), 5130100us);

    virtualClock.Advance(1ms);
    virtualClock.ClearPauses();
    EXPECT_TRUE(virtualClock.Pauses().empty());
    EXPECT_EQ(virtualClock.Now(), 5131100us);
}

TEST(Clock, VirtualClockRefusesToRunBackwardsAndSaysSo) {
    CVirtualClock virtualClock;
    virtualClock.Advance(5ms);
    const unsigned long assertsBefore = DebugLog::AssertCount();
    virtualClock.Advance(-2ms);
    EXPECT_EQ(virtualClock.Now(), 5ms);
    EXPECT_EQ(virtualClock.RewindsRefused(), 1u);
    EXPECT_EQ(DebugLog::AssertCount(), assertsBefore + 1);
    virtualClock.Advance(0ms);
    EXPECT_EQ(virtualClock.RewindsRefused(), 1u);
}

TEST(Clock, ScopedClockRestoresThePreviousClock) {
    IClock* real = &Clock::Get();
    CVirtualClock outer;
    CVirtualClock inner;
    {
        CScopedClock a(outer);
        {
            CScopedClock b(inner);
            Clock::PauseMs(1);
        }
        Clock::PauseMs(2);
        EXPECT_EQ(&Clock::Get(), &outer);
    }
    EXPECT_EQ(&Clock::Get(), real);
    EXPECT_EQ(inner.PausesMs(), (std::vector<long long>{1}));
    EXPECT_EQ(outer.PausesMs(), (std::vector<long long>{2}));
}

TEST(Clock, RealClockSleepsAtLeastTheAskedTime) {
    auto start = Clock::Get().Now();
    Clock::PauseMs(5);
    EXPECT_GE(Clock::Get().Now() - start, 5ms);
}
