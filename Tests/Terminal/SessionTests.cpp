#include "Terminal/Pty/Session.h"

#include "Terminal/Host/ScreenDump.h"

#include <csignal>
#include <cstdio>
#include <fstream>
#include <future>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

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
    EXPECT_EQ(bytes, 1'488'895u); // each line ends with CR LF
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

TEST(Session, whatAChildDoesNotReadWaitsForItUpToACap)
{
    const std::string gate = testing::TempDir() + "/corvane-gate-" + std::to_string(getpid());
    ASSERT_EQ(mkfifo(gate.c_str(), 0600), 0);
    std::promise<void> isRaw;
    SessionTaps taps;
    taps.input = [&, told = false](std::string_view, bool) mutable {
        if (!std::exchange(told, true))
            isRaw.set_value();
    };
    Session session({ 80, 5 }, {}, std::move(taps));
    ASSERT_TRUE(session.start(shell(
        "stty raw -echo; printf '\\033[5n'; read go <" + gate + "; head -c 4000004 | tail -c 3; printf ' came'")));
    ASSERT_EQ(isRaw.get_future().wait_for(30s), std::future_status::ready);
    const std::string million(999'997, 'x');
    for (int i = 0; i < 4; ++i)
        session.terminal()->paste(million + "end");
    EXPECT_TRUE(session.hasRoomFor(1000));
    EXPECT_FALSE(session.hasRoomFor(1'000'000));
    session.terminal()->paste(million + "too much");
    std::ofstream(gate) << "go\n";
    ASSERT_TRUE(session.waitForExit(60s));
    EXPECT_EQ(screenOf(session), "end came\n");
    std::remove(gate.c_str());
}

}
