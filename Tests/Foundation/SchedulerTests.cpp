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

TEST(SystemScheduler, oneTimerFiresOnceAndAnotherAgainAndAgain)
{
    SystemScheduler scheduler;
    int once = 0;
    int often = 0;
    const auto single = scheduler.after(Milliseconds(0), [&] { ++once; });
    const auto repeated = scheduler.every(Milliseconds(1), [&] { ++often; });
    EXPECT_TRUE(await([&] { return often >= 5; }));
    EXPECT_EQ(once, 1);
    EXPECT_GT(scheduler.nowMs(), 1'600'000'000'000);
    EXPECT_GT(scheduler.monotonicMs(), 0);
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

TEST(Coalescer, aMachineThatSleptDuringACallWaitsTenSecondsAtMost)
{
    VirtualScheduler clock;
    int calls = 0;
    Coalescer coalescer(clock, Milliseconds(100), [&] {
        if (++calls == 1)
            clock.setNowMs(clock.nowMs() + 3'600'000);
    });
    coalescer.request();
    clock.runDue();
    EXPECT_EQ(calls, 1);
    coalescer.request();
    clock.advance(Milliseconds(9'999));
    EXPECT_EQ(calls, 1);
    clock.advance(Milliseconds(1));
    EXPECT_EQ(calls, 2);
    coalescer.request();
    clock.advance(Milliseconds(100));
    EXPECT_EQ(calls, 3) << "a quick call makes the pause short again";
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
