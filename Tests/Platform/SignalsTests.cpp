#include "Platform/Interruption.h"
#include "Platform/TerminationSignals.h"
#include "Support/Await.h"
#include "Support/Print.h"

#include <QDir>
#include <csignal>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

struct sigaction actionOf(int signal)
{
    struct sigaction action {};
    ::sigaction(signal, nullptr, &action);
    return action;
}

qsizetype openDescriptors()
{
    return QDir("/proc/self/fd").entryList().size();
}

}

TEST(TerminationSignals, aRequestToEndReachesTheEventLoopAndTheUsualEndComesBackAfterwards)
{
    const qsizetype before = openDescriptors();
    for (int i = 0; i < 2; ++i) {
        TerminationSignals signals;
        QList<int> heard;
        QObject::connect(&signals, &TerminationSignals::requested, &signals, [&](int number) { heard.append(number); });
        EXPECT_TRUE(actionOf(SIGTERM).sa_flags & SA_RESTART) << "no system call of ours is interrupted";
        EXPECT_TRUE(actionOf(SIGINT).sa_flags & SA_RESTART);
        ::raise(SIGTERM);
        ::raise(SIGINT);
        EXPECT_TRUE(heard.isEmpty()) << "nothing happens within the signal";
        EXPECT_TRUE(await([&] { return heard.size() >= 2; }));
        EXPECT_EQ(heard, QList<int>({ SIGTERM, SIGINT }));
    }
    EXPECT_EQ(actionOf(SIGTERM).sa_handler, SIG_DFL);
    EXPECT_EQ(actionOf(SIGINT).sa_handler, SIG_DFL);
    EXPECT_EQ(openDescriptors(), before);
}

TEST(Interruption, eitherSignalSetsTheFlagWhileItLasts)
{
    for (const int signal : { SIGINT, SIGTERM }) {
        std::atomic<bool> flag = false;
        {
            const Interruption interruption(flag);
            EXPECT_FALSE(flag);
            ::raise(signal);
            EXPECT_TRUE(flag);
        }
        EXPECT_EQ(actionOf(SIGINT).sa_handler, SIG_DFL);
        EXPECT_EQ(actionOf(SIGTERM).sa_handler, SIG_DFL);
    }
}
