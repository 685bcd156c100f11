#include "Foundation/BackgroundQueue.h"
#include "Support/Await.h"

#include <QCoreApplication>
#include <QSemaphore>
#include <QThread>
#include <atomic>
#include <gtest/gtest.h>

using namespace corvane;

TEST(BackgroundQueue, workRunsElsewhereAndItsValueComesHome)
{
    BackgroundQueue queue;
    QThread* const home = QThread::currentThread();
    std::atomic<QThread*> workedOn = nullptr;
    QThread* arrivedOn = nullptr;
    int total = 0;
    for (int i = 1; i <= 50; ++i) {
        queue.run<int>(
            [&workedOn, i] {
                workedOn = QThread::currentThread();
                return i;
            },
            [&](int value) {
                arrivedOn = QThread::currentThread();
                total += value;
            });
    }
    EXPECT_TRUE(await([&] { return total == 50 * 51 / 2; }));
    EXPECT_EQ(arrivedOn, home);
    EXPECT_NE(workedOn.load(), home);
}

TEST(BackgroundQueue, itsEndWaitsForWhatRunsAndDropsTheRest)
{
    std::atomic<int> finished = 0;
    QSemaphore started;
    QSemaphore never;
    {
        BackgroundQueue queue;
        for (int i = 0; i < 5; ++i) {
            queue.run<int>(
                [&] {
                    started.release();
                    never.tryAcquire(1, 100);
                    return ++finished;
                },
                [](int) { ADD_FAILURE() << "arrived after the queue's end"; });
        }
        started.acquire(2);
    }
    EXPECT_EQ(finished, 2) << "two run at a time";
    QCoreApplication::processEvents();
}
