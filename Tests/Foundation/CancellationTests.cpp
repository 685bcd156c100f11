#include "Foundation/Arrival.h"
#include "Foundation/Cancellation.h"

#include <QStringList>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

/// A coroutine that starts at once and is never awaited.
struct Detached {
    struct promise_type {
        Detached get_return_object() { return {}; }
        std::suspend_never initial_suspend() noexcept { return {}; }
        std::suspend_never final_suspend() noexcept { return {}; }
        void return_void() { }
        void unhandled_exception() { std::terminate(); }
    };
};

Detached waitFor(Arrival<QString> arrival, QStringList& seen)
{
    seen.append(co_await arrival);
}

}

TEST(CancelHandle, whoWatchesIsCalledOnceAndInOrderUnlessTheWatchIsGone)
{
    const CancelHandle handle;
    QString called;
    const auto first = handle.onCancel([&] { called += 'a'; });
    auto second = handle.onCancel([&] { called += 'b'; });
    const auto third = handle.onCancel([&] {
        called += 'c';
        second = {}; // does not affect the notification in progress
        handle.cancel();
    });
    const auto fourth = handle.onCancel([&] { called += 'd'; });
    {
        const auto gone = handle.onCancel([&] { called += 'x'; });
    }

    CancelHandle(handle).cancel();
    handle.cancel();
    EXPECT_EQ(called, "abcd");
    EXPECT_TRUE(handle.isCancelled());

    const auto late = handle.onCancel([&] { called += 'x'; });
    handle.cancel();
    EXPECT_EQ(called, "abcd");
}

TEST(CancelHandle, aWatchMayGoWithTheCallbackThatEndsIt)
{
    const CancelHandle handle;
    int calls = 0;
    auto watch = std::make_unique<CancelHandle::Watch>();
    *watch = handle.onCancel([&] {
        watch.reset();
        ++calls;
    });
    handle.cancel();
    EXPECT_EQ(calls, 1);
}

TEST(Arrival, aValueReachesWhoWaitedAndWhoComesLater)
{
    QStringList seen;
    const Arrival<QString> early;
    waitFor(early, seen);
    EXPECT_FALSE(early.hasArrived());
    EXPECT_TRUE(seen.isEmpty());
    early.arrive("early");
    EXPECT_EQ(seen, QStringList("early"));

    const Arrival<QString> late;
    late.arrive("late");
    waitFor(late, seen);
    EXPECT_EQ(seen, (QStringList { "early", "late" }));
}

TEST(Arrival, theLastHandleMayGoWhileTheValueIsHandedOver)
{
    QStringList seen;
    auto only = std::make_unique<Arrival<QString>>();
    const auto wait = [&]() -> Detached {
        const QString value = co_await *only;
        only.reset();
        seen.append(value);
    };
    wait();
    only->arrive("once");
    EXPECT_EQ(seen, QStringList("once"));
}
