#include "Platform/Linux/Processes/Strays.h"
#include "Platform/Linux/Services.h"
#include "Platform/ToolRunner.h"
#include "Support/Await.h"
#include "Support/Environment.h"
#include "Support/Outcome.h"
#include "Support/Places.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"

#include <QDir>
#include <csignal>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace corvane;

namespace {

class ToolRunnerTest : public testing::Test {
protected:
    using Outcome = std::shared_ptr<std::optional<Result<ToolEnd>>>;

    /// Starts a shell script in which $C is the child program, and $1 a folder of the test's own.
    Outcome start(const QString& script, const QByteArray& input = {})
    {
        return outcome(tools->run("/bin/sh", { "-c", script, "sh", home.path({}) }, input, cancel));
    }
    static Result<ToolEnd> end(const Outcome& outcome)
    {
        EXPECT_TRUE(await([&] { return outcome->has_value(); }));
        return outcome->value_or(failure("nothing"));
    }
    /// "status:errors", or the message of the failure.
    static QString told(const Outcome& outcome)
    {
        const Result<ToolEnd> result = end(outcome);
        return result ? QString::number(result->status) + ':' + QString::fromUtf8(result->errors)
                      : result.error().message;
    }

    /// The processes that a tool of this test started, or is.
    int running() const { return signalMarked(mark, 0); }
    bool exists(const QString& name) const { return QFile::exists(home.path(name)); }
    static qsizetype openDescriptors() { return QDir("/proc/self/fd").entryList().size(); }

    const TemporaryHome home;
    const QByteArray mark = "CORVANE_TOOL_MARK=" + QByteArray::number(::getpid());
    const Environment environment { { "CORVANE_TOOL_MARK", QByteArray::number(::getpid()) },
        { "C", CORVANE_TEST_PROGRAMS "/ChildProgram" } };
    CancelHandle cancel;
    std::unique_ptr<ToolRunner> tools = makeToolRunner();
};

}

TEST_F(ToolRunnerTest, aToolGetsItsInputAndTellsItsStatusAndItsErrors)
{
    const qsizetype before = openDescriptors();
    EXPECT_EQ(told(start("cat >\"$1/input\"; echo lost; echo why >&2; exit 3", "one\ntwo")), "3:why\n");
    EXPECT_EQ(home.read("input"), "one\ntwo");
    const QByteArray large(1'000'000, 'i');
    EXPECT_EQ(told(start("cat >\"$1/input\"", large)), "0:");
    EXPECT_EQ(home.read("input"), large) << "more than a pipe takes";
    EXPECT_TRUE(ToolEnd().isSuccess());
    EXPECT_EQ(told(start("kill -KILL $$")), "9:") << "the number of the signal";
    EXPECT_EQ(told(start("exec \"$C\" 'lines 300000 {n}' 'exit 2'")), "2:") << "much that nobody reads";
    const QString missing = home.path("missing");
    EXPECT_EQ(told(outcome(tools->run(missing, {}, {}, {}))), missing + ": No such file or directory");
    EXPECT_LE(openDescriptors(), before);
}

TEST_F(ToolRunnerTest, ofManyErrorsTheLastAreKeptFromAWholeCharacter)
{
    const auto errors = [&](const QString& commands) {
        return end(start("exec \"$C\" errors " + commands))->errors;
    };
    EXPECT_EQ(errors("'repeat 16384 x'"), QByteArray(16'384, 'x'));
    EXPECT_EQ(errors("'half lost' 'repeat 16384 x'"), QByteArray(16'384, 'x'));
    EXPECT_EQ(errors("'repeat 300000 x' 'half the end'"), QByteArray(16'384 - 7, 'x') + "the end");
    const QByteArray cut = errors("'repeat 8192 ü' 'half x'");
    EXPECT_EQ(cut, QByteArray("ü").repeated(8191) + 'x');
}

TEST_F(ToolRunnerTest, whatAToolLeavesBehindEndsWithIt)
{
    // In its group, or with its output: killed. In a session of its own and silent: it is the user's.
    EXPECT_EQ(told(start("sleep 1000 >/dev/null 2>&1 & setsid sleep 1000 >/dev/null & setsid sleep 1000 2>/dev/null & "
                         "echo done >&2; exit 4")),
        "4:done\n");
    EXPECT_TRUE(await([&] { return running() == 0; }));
    const auto silent = start("setsid sh -c 'echo >\"$0/ready\"; exec sleep 1000' \"$1\" >/dev/null 2>&1 & "
                              "while [ ! -e \"$1/ready\" ]; do :; done");
    EXPECT_EQ(told(silent), "0:");
    EXPECT_EQ(running(), 1);
    EXPECT_TRUE(await([&] { return signalMarked(mark, SIGKILL) == 0; }));
}

TEST_F(ToolRunnerTest, aCancelledToolEndsWithAllThatItStarted)
{
    const auto task = start("setsid sh -c 'echo >\"$0/ready\"; sleep 1000 & wait' \"$1\" >/dev/null 2>&1 & "
                            "sleep 1000 & wait");
    ASSERT_TRUE(await([&] { return exists("ready") && running() == 4; }));
    EXPECT_FALSE(task->has_value());
    cancel.cancel();
    EXPECT_EQ(told(task), cancelled().error().message);
    EXPECT_TRUE(await([&] { return running() == 0; }));
    EXPECT_EQ(told(start("echo >\"$1/started\"")), cancelled().error().message);
    EXPECT_FALSE(exists("started")) << "nothing starts for what was cancelled";
}

TEST_F(ToolRunnerTest, theEndOfTheRunnerKillsItsToolsAndTellsTheirCallers)
{
    const qsizetype before = openDescriptors();
    const auto first = start("echo >\"$1/one\"; sleep 1000");
    const auto second = start("echo >\"$1/two\"; sleep 1000");
    ASSERT_TRUE(await([&] { return exists("one") && exists("two"); }));
    tools.reset();
    EXPECT_EQ(running(), 0);
    EXPECT_EQ(QStringList({ told(first), told(second) }), QStringList(2, cancelled().error().message));
    EXPECT_LE(openDescriptors(), before);
}
