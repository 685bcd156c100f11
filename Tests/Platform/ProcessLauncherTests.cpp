#include "Foundation/Literals.h"
#include "Foundation/SystemScheduler.h"
#include "Platform/Linux/Processes/WholeLines.h"
#include "Platform/Linux/Services.h"
#include "Platform/ProcessLauncher.h"
#include "Support/Await.h"
#include "Support/Places.h"
#include "Support/Print.h"
#include "Support/VirtualScheduler.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

using namespace corvane;

namespace {

/// The output and the exit codes of a child.
struct Watched {
    std::shared_ptr<ChildProcess> child;
    QString text;
    QList<int> codes;

    bool ended() const { return !codes.isEmpty(); }
};

class ProcessLauncherTest : public testing::Test {
protected:
    static ProcessSpec specOf(const QStringList& commands)
    {
        ProcessSpec spec;
        spec.executable = CORVANE_TEST_PROGRAMS "/ChildProgram";
        spec.arguments = commands;
        spec.environment = QProcessEnvironment::systemEnvironment();
        return spec;
    }

    std::shared_ptr<Watched> startAs(const ProcessSpec& spec)
    {
        auto watched = std::make_shared<Watched>();
        const auto listen = [watched](const OutputChunk& chunk) {
            EXPECT_FALSE(watched->ended()) << "a chunk after the end";
            watched->text += QString::fromUtf8(chunk.lines);
        };
        const auto end = [watched](int code) {
            watched->codes.append(code);
        };
        watched->child = launcher->start(spec, { listen, end }).value();
        return watched;
    }

    std::shared_ptr<Watched> start(const QStringList& commands) { return startAs(specOf(commands)); }

    /// Runs a child until it exits by itself.
    std::shared_ptr<Watched> run(const QStringList& commands)
    {
        auto watched = start(commands);
        EXPECT_TRUE(await([&] { return watched->ended(); }));
        return watched;
    }

    static bool exists(qint64 pid) { return ::kill(static_cast<pid_t>(pid), 0) == 0; }

    static qsizetype openDescriptors() { return QDir("/proc/self/fd").entryList().size(); }

    VirtualScheduler clock;
    std::unique_ptr<ProcessLauncher> launcher = makeProcessLauncher(clock);
};

}

TEST_F(ProcessLauncherTest, aChildGetsItsArgumentsFolderAndEnvironmentAndNothingElseOfOurs)
{
    const QTemporaryDir folder;
    QFile inheritable(folder.filePath("file"));
    ASSERT_TRUE(inheritable.open(QIODevice::WriteOnly));
    ::fcntl(inheritable.handle(), F_SETFD, 0);
    sigset_t blocked;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &blocked, nullptr);

    ProcessSpec spec = specOf({ "--flag", "arguments", "folder", "env GIVEN", "env PATH", "descriptors", "hang" });
    spec.workingDirectory = folder.path();
    spec.environment = QProcessEnvironment();
    spec.environment.insert("GIVEN", "ü=1");
    const auto watched = startAs(spec);
    ::pthread_sigmask(SIG_UNBLOCK, &blocked, nullptr);
    const QString expected
        = spec.arguments.join(u'|') + u'\n' + QDir(folder.path()).canonicalPath() + "\nGIVEN=ü=1\nPATH unset\n0 1 2\n";
    EXPECT_TRUE(await([&] { return watched->text.size() >= expected.size(); }));
    EXPECT_EQ(watched->text, expected);
    watched->child->terminate();
    EXPECT_TRUE(await([&] { return watched->ended(); }));
    EXPECT_EQ(watched->codes, QList<int>({ -SIGTERM }));
}

TEST_F(ProcessLauncherTest, anEndIsToldOnceWithTheStatusOrTheSignalThoughAHundredCrashAtOnce)
{
    const qsizetype before = openDescriptors();
    QList<std::shared_ptr<Watched>> children;
    for (int i = 0; i < 100; ++i)
        children.append(start({ "await", "print before", "half lost", "crash 11" }));
    for (const auto& each : children)
        ASSERT_TRUE(each->child->write("now\n"));
    for (const auto& each : children) {
        ASSERT_TRUE(await([&] { return each->ended(); }));
        EXPECT_EQ(each->text, "before\n");
        EXPECT_FALSE(each->child->isRunning());
        EXPECT_FALSE(exists(each->child->pid())) << "a zombie";
        EXPECT_FALSE(each->child->write("late\n"));
        each->child->terminate();
        EXPECT_EQ(each->codes, QList<int>({ -SIGSEGV }));
    }
    children.clear();
    EXPECT_LE(openDescriptors(), before);

    ProcessSpec silent = specOf({ "print unheard", "exit 4" });
    silent.pipes = false;
    const auto watched = startAs(silent);
    EXPECT_FALSE(watched->child->write("x"));
    ASSERT_TRUE(await([&] { return watched->ended(); }));
    EXPECT_EQ(watched->codes, QList<int>({ 4 }));
    EXPECT_EQ(watched->text, "");
}

TEST_F(ProcessLauncherTest, aFailedStartNamesTheReasonAndLeavesNothingOpen)
{
    const QTemporaryDir folder;
    QFile plain(folder.filePath("plain"));
    ASSERT_TRUE(plain.open(QIODevice::WriteOnly));
    const auto messageOf = [&](const ProcessSpec& spec) {
        const auto started = launcher->start(spec, {});
        return started ? u"started"_s : started.error().message;
    };
    const qsizetype before = openDescriptors();
    ProcessSpec spec = specOf({});
    spec.workingDirectory = "/nowhere/at/all";
    EXPECT_EQ(messageOf(spec), "/nowhere/at/all: No such file or directory");
    spec.executable = folder.filePath("missing");
    spec.workingDirectory = folder.path();
    EXPECT_EQ(messageOf(spec), spec.executable + ": No such file or directory");
    spec.executable = plain.fileName();
    EXPECT_EQ(messageOf(spec), spec.executable + ": Permission denied");

    rlimit files {};
    ::getrlimit(RLIMIT_NOFILE, &files);
    const rlimit none { STDERR_FILENO + 1, files.rlim_max };
    ::setrlimit(RLIMIT_NOFILE, &none);
    const QString full = messageOf(specOf({}));
    ::setrlimit(RLIMIT_NOFILE, &files);
    EXPECT_TRUE(full.endsWith(": Too many open files")) << qPrintable(full);
    EXPECT_LE(openDescriptors(), before);
}

TEST_F(ProcessLauncherTest, aChildMayTalkOverDescriptorsOfItsOwn)
{
    ProcessSpec spec = specOf({ u"-c"_s, u"echo lost; read line <&3; printf '%s\\n!\\0half' \"$line\" >&4; exit 3"_s });
    spec.executable = u"/bin/sh"_s;
    spec.inputNumber = 3;
    spec.outputNumber = 4;
    spec.lineEnd = '\0';
    const auto watched = startAs(spec);
    ASSERT_TRUE(watched->child->write("hello\n"));
    ASSERT_TRUE(await([&] { return watched->ended(); }));
    EXPECT_EQ(watched->text, u"hello\n!"_s + QChar(u'\0'));
    EXPECT_EQ(watched->codes, QList<int> { 3 });
}

TEST_F(ProcessLauncherTest, aChildLeadsItsGroupAndABrokenPipeEndsIt)
{
    ProcessSpec spec = specOf({ u"-c"_s, u"ps -o pgid= -p $$ | tr -d ' '; kill -PIPE $$; echo alive"_s });
    spec.executable = u"/bin/sh"_s;
    const auto watched = startAs(spec);
    ASSERT_TRUE(await([&] { return watched->ended(); }));
    EXPECT_EQ(watched->text, QString::number(watched->child->pid()) + '\n');
    EXPECT_EQ(watched->codes, QList<int> { -SIGPIPE });
}

TEST(WholeLines, aLineComesWholeAndOneThatNeverEndsIsDroppedAlone)
{
    WholeLines lines;
    EXPECT_EQ(lines.take("on"), "");
    EXPECT_EQ(lines.take("e\ntwo\nthr"), "one\ntwo\n");
    EXPECT_EQ(lines.take("ee\n"), "three\n");
    const QByteArray flood(16 * 1024 * 1024, 'x');
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(lines.take(flood), "");
    EXPECT_EQ(lines.take("end of it\nfour\nfi"), "four\n");
    EXPECT_EQ(lines.take("ve\n"), "five\n");
}

TEST_F(ProcessLauncherTest, aHeldChunkStopsTheReadingAndTheEndWaitsForIt)
{
    QList<OutputChunk> held;
    QList<int> codes;
    ProcessLauncher::Handlers handlers;
    handlers.output = [&](OutputChunk chunk) {
        held.append(std::move(chunk));
    };
    handlers.exited = [&](int code) {
        codes.append(code);
    };
    const auto started = launcher->start(specOf({ "lines 200000 {n}" }), handlers);
    ASSERT_TRUE(started);
    ASSERT_TRUE(await([&] { return !held.isEmpty(); }));
    // Meanwhile other children are read, and this one is blocked.
    run({ "sleep 100", "print done" });
    EXPECT_EQ(held.size(), 1);
    EXPECT_TRUE(exists((*started)->pid()));

    QString text;
    ASSERT_TRUE(await([&] {
        for (const OutputChunk& chunk : std::exchange(held, {})) {
            EXPECT_LE(chunk.lines.size(), 128 * 1024);
            text += QString::fromUtf8(chunk.lines);
        }
        return !codes.isEmpty();
    }));
    EXPECT_EQ(text.count(u'\n'), 200000);
    EXPECT_TRUE(text.endsWith("\n199999\n"));
}

TEST_F(ProcessLauncherTest, aGrandchildThatHoldsThePipeDelaysNothing)
{
    const auto watched = run({ "grandchild 12000", "print mine", "exit 5" });
    EXPECT_EQ(watched->text, "mine\n");
    EXPECT_EQ(watched->codes, QList<int>({ 5 }));
}

TEST_F(ProcessLauncherTest, whatIsWrittenArrivesWholeThoughTheChildReadsLate)
{
    const auto watched = start({ "sleep 200", "count 4001" });
    const QByteArray line = QByteArray(1023, 'w') + '\n';
    for (int i = 0; i < 4000; ++i)
        ASSERT_TRUE(watched->child->write(line)) << i;
    EXPECT_FALSE(watched->child->write(QByteArray(1024 * 1024, 'x'))) << "more than may wait";
    EXPECT_TRUE(watched->child->write(line));
    ASSERT_TRUE(await([&] { return watched->ended(); }));
    EXPECT_EQ(watched->text, u"counted %1\n"_s.arg(4001 * 1024)) << "what did not fit left no trace";

    const QByteArray half(3 * 1024 * 1024, 'h');
    const auto reader = start({ "count 2" });
    ASSERT_TRUE(reader->child->write(half));
    ASSERT_TRUE(await([&] { return reader->child->hasRead(half); }));
    ASSERT_TRUE(reader->child->write('\n' + half)) << "what is read makes room";
    ASSERT_TRUE(reader->child->write("\n"));
    ASSERT_TRUE(await([&] { return reader->ended(); }));
    EXPECT_EQ(reader->text, u"counted %1\n"_s.arg(2 * half.size() + 2));
    const QByteArray most(4 * 1024 * 1024, 'm');
    const auto deaf = start({ "hang" });
    EXPECT_FALSE(deaf->child->write(most + 'm'));
    ASSERT_TRUE(deaf->child->write(most));
    const QByteArray queued(3 * 1024, 'q');
    int count = 0;
    while (deaf->child->write(queued))
        ++count;
    EXPECT_GT(count, 0) << "the pipe has taken a part";
    ASSERT_TRUE(deaf->child->withdraw(queued));
    EXPECT_TRUE(deaf->child->write(queued)) << "what is withdrawn makes room";
    EXPECT_FALSE(deaf->child->write(queued));

    const auto echo = start({ "echo" });
    ASSERT_TRUE(echo->child->write("one\ntw"));
    ASSERT_TRUE(echo->child->write("o ü\n"));
    EXPECT_TRUE(await([&] { return echo->text == "echo one\necho two ü\n"; }));
    EXPECT_TRUE(echo->child->isRunning());
}

TEST_F(ProcessLauncherTest, whatAChildHasNotReadIsKnownAlsoAfterItsEnd)
{
    const auto reader = start({ "await", "print read", "hang" });
    ASSERT_TRUE(reader->child->write("heard\n"));
    ASSERT_TRUE(await([&] { return !reader->text.isEmpty(); }));
    EXPECT_TRUE(reader->child->hasRead("heard\n"));
    EXPECT_FALSE(reader->child->withdraw("heard\n"));

    const auto deaf = start({ "sleep 100", "hang" });
    const QByteArray large(200'000, 'x');
    for (const QByteArray& line : { QByteArray("first\n"), large, QByteArray("queued\n") }) {
        ASSERT_TRUE(deaf->child->write(line));
        EXPECT_FALSE(deaf->child->hasRead(line));
    }
    EXPECT_TRUE(deaf->child->withdraw("queued\n"));
    EXPECT_TRUE(deaf->child->hasRead("queued\n")) << "nothing is left of it to read";
    EXPECT_FALSE(deaf->child->withdraw("first\n")) << "it is in the pipe";
    EXPECT_FALSE(deaf->child->withdraw(large)) << "a part of it is";
    deaf->child->terminate();
    EXPECT_FALSE(deaf->child->withdraw("first\n")) << "it may still be read";
    ASSERT_TRUE(await([&] { return deaf->ended(); }));
    EXPECT_FALSE(deaf->child->hasRead("first\n"));
    EXPECT_TRUE(deaf->child->withdraw("first\n"));
    EXPECT_TRUE(deaf->child->withdraw(large));
}

TEST_F(ProcessLauncherTest, whatAChildStartedEndsWithItAndWhatIsMarkedIsFound)
{
    const QString mark = u"CORVANE_TEST_MARK=%1"_s.arg(::getpid());
    ProcessSpec spec = specOf({ "grandchild 60000", "await" });
    spec.environment.insert("CORVANE_TEST_MARK", QString::number(::getpid()));
    const auto parent = startAs(spec);
    const auto marked = [&] {
        return launcher->marked(mark, ProcessLauncher::Marked::Count);
    };
    EXPECT_TRUE(await([&] { return marked() == 2; }));
    EXPECT_EQ(launcher->marked(mark + "0", ProcessLauncher::Marked::Kill), 0);
    ASSERT_TRUE(parent->child->write("end\n"));
    ASSERT_TRUE(await([&] { return parent->ended(); }));
    EXPECT_EQ(parent->codes, QList<int>({ 0 }));
    EXPECT_TRUE(await([&] { return marked() == 0; }));

    const auto orphan = startAs(spec);
    EXPECT_TRUE(await([&] { return marked() == 2; }));
    launcher->marked(mark, ProcessLauncher::Marked::Kill);
    EXPECT_TRUE(await([&] { return orphan->ended() && marked() == 0; }));
}

TEST_F(ProcessLauncherTest, aClosedInputFailsTheWriteAndHarmsNobody)
{
    const auto watched = start({ "close-input", "print closed", "hang" });
    ASSERT_TRUE(await([&] { return !watched->text.isEmpty(); }));
    EXPECT_FALSE(watched->child->write("lost\n"));
    EXPECT_TRUE(watched->child->isRunning());

    // Pending data is lost when the input closes, and a later write fails.
    const auto late = start({ "sleep 100", "close-input", "print closed", "hang" });
    EXPECT_TRUE(late->child->write(QByteArray(200'000, 'x')));
    ASSERT_TRUE(await([&] { return !late->text.isEmpty(); }));
    EXPECT_TRUE(await([&] { return !late->child->write("y"); }));
}

TEST_F(ProcessLauncherTest, aChildThatIgnoresTheRequestIsKilledAfterFiveSeconds)
{
    const auto stubborn = start({ "ignore-term", "print ready", "hang" });
    ASSERT_TRUE(await([&] { return !stubborn->text.isEmpty(); }));
    stubborn->child->terminate();
    stubborn->child->terminate();
    EXPECT_FALSE(stubborn->child->write("x")) << "the input closes with the request";
    clock.advance(Milliseconds(4999));
    run({ "sleep 50" });
    EXPECT_TRUE(stubborn->child->isRunning());
    clock.advance(Milliseconds(1));
    ASSERT_TRUE(await([&] { return stubborn->ended(); }));
    EXPECT_EQ(stubborn->codes, QList<int>({ -SIGKILL }));
    EXPECT_EQ(clock.pendingTimers(), 0);

    const auto listening = start({ "ignore-term", "echo", "exit 7" });
    ASSERT_TRUE(listening->child->write("x\n"));
    ASSERT_TRUE(await([&] { return !listening->text.isEmpty(); }));
    listening->child->terminate();
    ASSERT_TRUE(await([&] { return listening->ended(); }));
    EXPECT_EQ(listening->codes, QList<int>({ 7 })) << "the end of its input is a way to end";
}

TEST_F(ProcessLauncherTest, aDroppedHandleNeitherEndsTheChildNorLosesItsEnd)
{
    const auto watched = start({ "sleep 100", "print on", "exit 9" });
    const std::weak_ptr<ChildProcess> gone = watched->child;
    watched->child.reset();
    ASSERT_TRUE(await([&] { return watched->ended(); }));
    EXPECT_EQ(watched->text, "on\n");
    EXPECT_EQ(watched->codes, QList<int>({ 9 }));
    EXPECT_TRUE(gone.expired());
    EXPECT_EQ(watched.use_count(), 1) << "a handler outlived its child";
}

TEST_F(ProcessLauncherTest, theLauncherEndsEveryChildAndIsSilentAfterwards)
{
    const qsizetype before = openDescriptors();
    QList<std::shared_ptr<Watched>> children;
    children.append(start({ "print a", "hang" }));
    children.append(start({ "flood" }));
    children.append(start({ "print a", "echo", "hang" }));
    children.append(start({ "ignore-term", "print a", "hang" }));
    ASSERT_TRUE(await([&] {
        return std::all_of(children.begin(), children.end(), [](const auto& each) { return !each->text.isEmpty(); });
    }));
    children.append(start({ "print late" }));
    children.last()->child->terminate();

    QElapsedTimer elapsed;
    elapsed.start();
    launcher.reset();
    EXPECT_GE(elapsed.elapsed(), 4900) << "a child has five seconds to end by itself";
    QCoreApplication::processEvents();
    clock.advance(seconds(10));
    for (const auto& each : children) {
        EXPECT_FALSE(exists(each->child->pid()));
        EXPECT_FALSE(each->child->isRunning());
        EXPECT_FALSE(each->child->write("x"));
        each->child->terminate();
        EXPECT_FALSE(each->ended());
        each->child.reset();
    }
    EXPECT_LE(openDescriptors(), before);
}

TEST_F(ProcessLauncherTest, aHandlerMayStartAChildOrDestroyTheLauncher)
{
    QString text;
    ProcessLauncher::Handlers ofSecond;
    ofSecond.exited = [](int) {
        ADD_FAILURE() << "a call after the launcher's end";
    };
    ofSecond.output = [&](const OutputChunk& chunk) {
        launcher.reset();
        text = QString::fromUtf8(chunk.lines);
    };
    const auto startSecond = [&](int) {
        EXPECT_TRUE(launcher->start(specOf({ "print second", "hang" }), ofSecond));
    };
    ASSERT_TRUE(launcher->start(specOf({ "exit 1" }), { {}, startSecond }));
    EXPECT_TRUE(await([&] { return !text.isEmpty(); }));
    EXPECT_EQ(launcher, nullptr);
}

TEST_F(ProcessLauncherTest, aLineOfFiftyMegabytesArrivesWholeAndOneWithoutAnEndNotAtAll)
{
    const auto watched
        = run({ "bytes f09f", "sleep 50", "bytes 9880", "repeat 17476267 €", "half cut", "bytes 0a", "half lost" });
    EXPECT_TRUE(watched->text.startsWith("😀€"));
    EXPECT_EQ(watched->text.count(u'€'), 17476267);
    EXPECT_TRUE(watched->text.endsWith("cut\n"));
}
