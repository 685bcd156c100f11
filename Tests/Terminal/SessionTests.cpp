#include "Terminal/Pty/Session.h"

#include "Terminal/Host/ScreenDump.h"

#include <csignal>
#include <gtest/gtest.h>

namespace corvane::terminal {

namespace {

using std::chrono_literals::operator""s;

std::string screenOf(Session& session)
{
    return dumpText(*session.terminal());
}

Command shell(const std::string& script)
{
    return { "/bin/sh", { "-c", script }, {}, {} };
}

}

TEST(Session, theChildSeesItsTerminalAndItsExitIsReported)
{
    Session session({ 40, 10, 8, 16 }, {});
    ASSERT_TRUE(session.start(
        { "/bin/sh", { "-c", "stty size; echo $TERM $NAME; pwd; exit 7" }, { { "NAME", "value" } }, "/" }));
    ASSERT_TRUE(session.waitForExit(30s));
    EXPECT_EQ(screenOf(session), "10 40\nxterm-256color value\n/\n");
    EXPECT_EQ(session.exitStatus(), (ExitStatus { false, 7 }));
}

TEST(Session, questionsAreAnsweredToTheChild)
{
    std::string typed;
    SessionTaps taps;
    taps.input = [&](std::string_view bytes, bool) {
        typed.append(bytes);
    };
    Session session({ 40, 10 }, {}, std::move(taps));
    ASSERT_TRUE(session.start(
        shell("stty -icanon -echo; printf '\\033[3;5H\\033[6n'; dd bs=1 count=6 2>/dev/null | od -c | head -1")));
    ASSERT_TRUE(session.waitForExit(30s));
    EXPECT_EQ(typed, "\x1b[3;5R");
    EXPECT_NE(screenOf(session).find("033   [   3   ;   5   R"), std::string::npos);
}

TEST(Session, aFloodArrivesWhole)
{
    size_t bytes = 0;
    SessionTaps taps;
    taps.output = [&](std::string_view output) {
        bytes += output.size();
    };
    Session session({ 80, 24 }, {}, std::move(taps));
    ASSERT_TRUE(session.start(shell("seq 1 200000")));
    ASSERT_TRUE(session.waitForExit(60s));
    EXPECT_EQ(bytes, 1'488'895u); // with a carriage return a line
    const auto terminal = session.terminal();
    RowView row;
    terminal->readRow(-1, row);
    EXPECT_EQ(terminal->text(row.cells[0]), "1");
    EXPECT_EQ(terminal->historyRows(), 10'000u);
}

TEST(Session, aProgramThatDoesNotExistLeavesOneLine)
{
    Session session({ 80, 5 }, {});
    EXPECT_FALSE(session.start({ "/no/such/shell", {}, {}, {} }));
    EXPECT_EQ(screenOf(session), "/no/such/shell: No such file or directory\n");
}

TEST(Session, aChildThatIgnoresTheHangUpGoesWithItsSession)
{
    int process = 0;
    {
        Session session({ 80, 5 }, {});
        ASSERT_TRUE(session.start(shell("trap '' HUP; echo ready; while :; do sleep 1; done")));
        process = session.process();
    }
    EXPECT_NE(kill(process, 0), 0);
}

TEST(Session, aChildThatNeverReadsBlocksNobody)
{
    Session session({ 80, 5 }, {});
    ASSERT_TRUE(session.start(shell("sleep 1000")));
    for (int i = 0; i < 200; ++i)
        session.terminal()->paste(std::string(100'000, 'x'));
    EXPECT_TRUE(session.isRunning());
}

}
