#include "Foundation/Coalescer.h"
#include "Foundation/SystemScheduler.h"
#include "Support/Await.h"
#include "Support/VirtualScheduler.h"

#include <gtest/gtest.h>

using namespace corvane;

TEST(SystemScheduler, aTimerMayDestroyItselfInItsCallback)
{
    SystemScheduler scheduler;
    bool fired = false;
    std::unique_ptr<Timer> timer;
    timer = scheduler.after(Milliseconds(1), [&] {
        timer.reset();
        fired = true;
    });
    EXPECT_TRUE(await([&] { return fired; }));
}

TEST(Coalescer, aBurstBecomesOneCallAtOnceAndOnePerPeriod)
{
    VirtualScheduler clock;
    int calls = 0;
    Coalescer coalescer(clock, Milliseconds(100), [&] { ++calls; });
    for (int i = 0; i < 900; ++i) {
        coalescer.request();
        if (i % 10 == 9)
            clock.advance(Milliseconds(1));
    }
    EXPECT_EQ(calls, 1);
    clock.advance(Milliseconds(100));
    EXPECT_EQ(calls, 2);
    clock.advance(seconds(5));
    EXPECT_EQ(calls, 2);

    clock.setNowMs(clock.nowMs() - 3'600'000);
    coalescer.request();
    clock.advance(Milliseconds(100));
    EXPECT_EQ(calls, 3) << "a clock set back holds nothing up";
}

TEST(Coalescer, aCostlyCallIsFollowedByNineTimesItsOwnTime)
{
    VirtualScheduler clock;
    int calls = 0;
    Coalescer coalescer(clock, Milliseconds(100), [&] {
        ++calls;
        clock.setNowMs(clock.nowMs() + 50);
        if (calls < 3)
            coalescer.request();
    });
    coalescer.request();
    clock.advance(Milliseconds(1));
    EXPECT_EQ(calls, 1);
    clock.advance(Milliseconds(490)); // the previous call ended at 50 ms
    EXPECT_EQ(calls, 1);
    clock.advance(Milliseconds(20));
    EXPECT_EQ(calls, 2) << "what was requested meanwhile is not lost";
    clock.advance(seconds(1));
    EXPECT_EQ(calls, 3);
}
