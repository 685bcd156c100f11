#include "Foundation/SystemScheduler.h"
#include "Platform/Linux/LinuxPlatform.h"
#include "Platform/Linux/Utf8Chunks.h"
#include "Platform/ProcessLauncher.h"
#include "Support/Await.h"
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

/// What a child said and how it ended.
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
        spec.executable = QStringLiteral(CORVANE_TEST_PROGRAMS "/ChildProgram");
        spec.arguments = commands;
        spec.environment = QProcessEnvironment::systemEnvironment();
        return spec;
    }

    std::shared_ptr<Watched> start(const ProcessSpec& spec)
    {
        auto watched = std::make_shared<Watched>();
        Result<std::shared_ptr<ChildProcess>> started = launcher->start(spec,
            { [watched](const OutputChunk& chunk) {
                 EXPECT_FALSE(watched->ended()) << "a chunk after the end";
                 watched->text += chunk.text;
             },
                [watched](int code) {
                    watched->codes.append(code);
                } });
        EXPECT_TRUE(started) << qPrintable(started ? QString() : started.error().message);
        if (started)
            watched->child = *started;
        return watched;
    }

    std::shared_ptr<Watched> start(const QStringList& commands) { return start(specOf(commands)); }

    /// The whole life of a child that ends by itself.
    std::shared_ptr<Watched> run(const QStringList& commands)
    {
        auto watched = start(commands);
        EXPECT_TRUE(await([&] { return watched->ended(); }));
        return watched;
    }

    static bool exists(qint64 pid) { return ::kill(static_cast<pid_t>(pid), 0) == 0; }

    static qsizetype openDescriptors() { return QDir(QStringLiteral("/proc/self/fd")).entryList().size(); }

    VirtualScheduler clock;
    std::unique_ptr<ProcessLauncher> launcher = makeProcessLauncher(clock);
};

}

TEST_F(ProcessLauncherTest, aChildGetsItsArgumentsFolderAndEnvironmentAndNothingElseOfOurs)
{
    const QTemporaryDir folder;
    QFile inheritable(folder.filePath(QStringLiteral("file")));
    ASSERT_TRUE(inheritable.open(QIODevice::WriteOnly));
    ::fcntl(inheritable.handle(), F_SETFD, 0);
    sigset_t blocked;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    ::pthread_sigmask(SIG_BLOCK, &blocked, nullptr);

    ProcessSpec spec = specOf(
        { QStringLiteral("--flag"), QStringLiteral("arguments"), QStringLiteral("folder"), QStringLiteral("env GIVEN"),
            QStringLiteral("env PATH"), QStringLiteral("descriptors"), QStringLiteral("hang") });
    spec.workingDirectory = folder.path();
    spec.environment = QProcessEnvironment();
    spec.environment.insert(QStringLiteral("GIVEN"), QStringLiteral("ü=1"));
    const auto watched = start(spec);
    ::pthread_sigmask(SIG_UNBLOCK, &blocked, nullptr);
    const QString expected = spec.arguments.join(u'|') + u'\n' + QDir(folder.path()).canonicalPath()
        + QStringLiteral("\nGIVEN=ü=1\nPATH unset\n0 1 2\n");
    EXPECT_TRUE(await([&] { return watched->text.size() >= expected.size(); }));
    EXPECT_EQ(watched->text, expected);
    watched->child->terminate();
    EXPECT_TRUE(await([&] { return watched->ended(); }));
    EXPECT_EQ(watched->codes, QList<int>({ -SIGTERM }));
}

TEST_F(ProcessLauncherTest, anEndIsToldOnceWithTheStatusOrTheSignal)
{
    EXPECT_EQ(run({ QStringLiteral("exit 3") })->codes, QList<int>({ 3 }));
    const auto crashed = run({ QStringLiteral("half before "), QStringLiteral("crash 11") });
    EXPECT_EQ(crashed->codes, QList<int>({ -SIGSEGV }));
    EXPECT_EQ(crashed->text, QStringLiteral("before "));
    EXPECT_FALSE(crashed->child->isRunning());
    EXPECT_FALSE(exists(crashed->child->pid())) << "a zombie";
    EXPECT_FALSE(crashed->child->write("late\n"));
    crashed->child->terminate();

    ProcessSpec silent = specOf({ QStringLiteral("print unheard"), QStringLiteral("exit 4") });
    silent.pipes = false;
    const auto watched = start(silent);
    EXPECT_FALSE(watched->child->write("x"));
    ASSERT_TRUE(await([&] { return watched->ended(); }));
    EXPECT_EQ(watched->codes, QList<int>({ 4 }));
    EXPECT_EQ(watched->text, QString());
}

TEST_F(ProcessLauncherTest, aFailedStartNamesTheReasonAndLeavesNothingOpen)
{
    const QTemporaryDir folder;
    QFile plain(folder.filePath(QStringLiteral("plain")));
    ASSERT_TRUE(plain.open(QIODevice::WriteOnly));
    const auto messageOf = [&](const ProcessSpec& spec) {
        const auto started = launcher->start(spec, {});
        return started ? QStringLiteral("started") : started.error().message;
    };
    const qsizetype before = openDescriptors();
    ProcessSpec spec = specOf({});
    spec.workingDirectory = QStringLiteral("/nowhere/at/all");
    EXPECT_EQ(messageOf(spec), QStringLiteral("/nowhere/at/all: No such file or directory"));
    spec.executable = folder.filePath(QStringLiteral("missing"));
    spec.workingDirectory = folder.path();
    EXPECT_EQ(messageOf(spec), spec.executable + QStringLiteral(": No such file or directory"));
    spec.executable = plain.fileName();
    EXPECT_EQ(messageOf(spec), spec.executable + QStringLiteral(": Permission denied"));

    rlimit files {};
    ::getrlimit(RLIMIT_NOFILE, &files);
    const rlimit none { STDERR_FILENO + 1, files.rlim_max };
    ::setrlimit(RLIMIT_NOFILE, &none);
    const QString full = messageOf(specOf({}));
    ::setrlimit(RLIMIT_NOFILE, &files);
    EXPECT_TRUE(full.endsWith(QStringLiteral(": Too many open files"))) << qPrintable(full);
    EXPECT_LE(openDescriptors(), before);
}

TEST_F(ProcessLauncherTest, aCharacterIsNeverCutHoweverTheBytesArrive)
{
    // Blocks of 65536 bytes do not divide into characters of three.
    const auto large = run({ QStringLiteral("repeat 100000 €") });
    EXPECT_EQ(large->text, QStringLiteral("€").repeated(100000));

    const auto slow = run({ QStringLiteral("bytes f09f"), QStringLiteral("sleep 50"), QStringLiteral("bytes 98"),
        QStringLiteral("sleep 50"), QStringLiteral("bytes 80"), QStringLiteral("half !") });
    EXPECT_EQ(slow->text, QStringLiteral("😀!"));

    EXPECT_EQ(run({ QStringLiteral("half cut"), QStringLiteral("bytes e282") })->text, QStringLiteral("cut"));
}

TEST(Utf8Chunks, whatIsNoTextIsDroppedAndNothingElse)
{
    Utf8Chunks chunks;
    EXPECT_EQ(chunks.take("a"), QStringLiteral("a"));
    EXPECT_EQ(chunks.take("b\xff"
                          "b"),
        QString())
        << "a read that is not valid goes whole";
    EXPECT_EQ(chunks.take("c\xe2"), QStringLiteral("c"));
    EXPECT_EQ(chunks.take("d"), QStringLiteral("d")) << "a character that is never finished goes alone";
    EXPECT_EQ(chunks.take("e\xf0\x9f"), QStringLiteral("e"));
    EXPECT_EQ(chunks.take("\x98"), QString());
    EXPECT_EQ(chunks.take("\x80\xc3"), QStringLiteral("😀"));
    EXPECT_EQ(chunks.take("\xa9\xef\xbb\xbf!"), QStringLiteral("é\uFEFF!"));
    EXPECT_EQ(chunks.take("\xed\xa0\x80"), QString()) << "half a surrogate pair";
    EXPECT_EQ(chunks.take("\xc0\xaf"), QString()) << "an overlong form";
    EXPECT_EQ(chunks.take("\x80\x80"), QString());
    EXPECT_EQ(chunks.take("f"), QStringLiteral("f"));
}

TEST_F(ProcessLauncherTest, aHeldChunkStopsTheReadingAndTheEndWaitsForIt)
{
    QList<OutputChunk> held;
    QList<int> codes;
    const auto started = launcher->start(specOf({ QStringLiteral("lines 200000 {n}") }),
        { [&](OutputChunk chunk) { held.append(std::move(chunk)); },
            [&](int code) {
                codes.append(code);
            } });
    ASSERT_TRUE(started);
    ASSERT_TRUE(await([&] { return !held.isEmpty(); }));
    // Other children are read meanwhile, and this one stands still.
    run({ QStringLiteral("sleep 100"), QStringLiteral("print done") });
    EXPECT_EQ(held.size(), 1);
    EXPECT_TRUE(exists((*started)->pid()));

    QString text;
    ASSERT_TRUE(await([&] {
        for (const OutputChunk& chunk : std::exchange(held, {})) {
            EXPECT_LE(chunk.text.size(), 64 * 1024);
            text += chunk.text;
        }
        return !codes.isEmpty();
    }));
    EXPECT_EQ(text.count(u'\n'), 200000);
    EXPECT_TRUE(text.endsWith(QStringLiteral("\n199999\n")));
}

TEST_F(ProcessLauncherTest, aGrandchildThatHoldsThePipeDelaysNothing)
{
    QElapsedTimer elapsed;
    elapsed.start();
    const auto watched
        = run({ QStringLiteral("grandchild 4000"), QStringLiteral("print mine"), QStringLiteral("exit 5") });
    EXPECT_LT(elapsed.elapsed(), 3000);
    EXPECT_EQ(watched->text, QStringLiteral("mine\n"));
    EXPECT_EQ(watched->codes, QList<int>({ 5 }));
}

TEST_F(ProcessLauncherTest, whatIsWrittenArrivesWholeThoughTheChildReadsLate)
{
    const auto watched = start(QStringList { QStringLiteral("sleep 200"), QStringLiteral("count 4001") });
    const QByteArray line = QByteArray(1023, 'w') + '\n';
    for (int i = 0; i < 4000; ++i)
        ASSERT_TRUE(watched->child->write(line)) << i;
    EXPECT_FALSE(watched->child->write(QByteArray(1024 * 1024, 'x'))) << "more than may wait";
    EXPECT_TRUE(watched->child->write(line));
    ASSERT_TRUE(await([&] { return watched->ended(); }));
    EXPECT_EQ(watched->text, QStringLiteral("counted %1\n").arg(4001 * 1024)) << "what did not fit left no trace";

    const auto echo = start(QStringList { QStringLiteral("echo") });
    ASSERT_TRUE(echo->child->write("one\ntw"));
    ASSERT_TRUE(echo->child->write("o ü\n"));
    EXPECT_TRUE(await([&] { return echo->text == QStringLiteral("echo one\necho two ü\n"); }));
    EXPECT_TRUE(echo->child->isRunning());
}

TEST_F(ProcessLauncherTest, aClosedInputFailsTheWriteAndHarmsNobody)
{
    const auto watched
        = start(QStringList { QStringLiteral("close-input"), QStringLiteral("print closed"), QStringLiteral("hang") });
    ASSERT_TRUE(await([&] { return !watched->text.isEmpty(); }));
    EXPECT_FALSE(watched->child->write("lost\n"));
    EXPECT_TRUE(watched->child->isRunning());

    // What waits when the input closes is lost, and the next write says so.
    const auto late = start(QStringList { QStringLiteral("sleep 100"), QStringLiteral("close-input"),
        QStringLiteral("print closed"), QStringLiteral("hang") });
    EXPECT_TRUE(late->child->write(QByteArray(200'000, 'x')));
    ASSERT_TRUE(await([&] { return !late->text.isEmpty(); }));
    EXPECT_TRUE(await([&] { return !late->child->write("y"); }));
}

TEST_F(ProcessLauncherTest, aChildThatIgnoresTheRequestIsKilledAfterFiveSeconds)
{
    const auto stubborn
        = start(QStringList { QStringLiteral("ignore-term"), QStringLiteral("print ready"), QStringLiteral("hang") });
    ASSERT_TRUE(await([&] { return !stubborn->text.isEmpty(); }));
    stubborn->child->terminate();
    stubborn->child->terminate();
    EXPECT_FALSE(stubborn->child->write("x")) << "the input closes with the request";
    clock.advance(Milliseconds(4999));
    run({ QStringLiteral("sleep 50") });
    EXPECT_TRUE(stubborn->child->isRunning());
    clock.advance(Milliseconds(1));
    ASSERT_TRUE(await([&] { return stubborn->ended(); }));
    EXPECT_EQ(stubborn->codes, QList<int>({ -SIGKILL }));
    EXPECT_EQ(clock.pendingTimers(), 0);

    const auto listening
        = start(QStringList { QStringLiteral("ignore-term"), QStringLiteral("echo"), QStringLiteral("exit 7") });
    ASSERT_TRUE(listening->child->write("x\n"));
    ASSERT_TRUE(await([&] { return !listening->text.isEmpty(); }));
    listening->child->terminate();
    ASSERT_TRUE(await([&] { return listening->ended(); }));
    EXPECT_EQ(listening->codes, QList<int>({ 7 })) << "the end of its input is a way to end";
}

TEST_F(ProcessLauncherTest, aDroppedHandleNeitherEndsTheChildNorLosesItsEnd)
{
    const auto watched
        = start(QStringList { QStringLiteral("sleep 100"), QStringLiteral("print on"), QStringLiteral("exit 9") });
    const std::weak_ptr<ChildProcess> gone = watched->child;
    watched->child.reset();
    ASSERT_TRUE(await([&] { return watched->ended(); }));
    EXPECT_EQ(watched->text, QStringLiteral("on\n"));
    EXPECT_EQ(watched->codes, QList<int>({ 9 }));
    EXPECT_TRUE(gone.expired());
    EXPECT_EQ(watched.use_count(), 1) << "a handler outlived its child";
}

TEST_F(ProcessLauncherTest, theLauncherEndsEveryChildAndIsSilentAfterwards)
{
    const qsizetype before = openDescriptors();
    QList<std::shared_ptr<Watched>> children;
    children.append(start(QStringList { QStringLiteral("print a"), QStringLiteral("hang") }));
    children.append(start(QStringList { QStringLiteral("flood") }));
    children.append(start(QStringList { QStringLiteral("print a"), QStringLiteral("echo"), QStringLiteral("hang") }));
    children.append(
        start(QStringList { QStringLiteral("ignore-term"), QStringLiteral("print a"), QStringLiteral("hang") }));
    ASSERT_TRUE(await([&] {
        return std::all_of(children.begin(), children.end(), [](const auto& each) { return !each->text.isEmpty(); });
    }));
    children.append(start(QStringList { QStringLiteral("print late") }));
    children.last()->child->terminate();

    QElapsedTimer elapsed;
    elapsed.start();
    launcher.reset();
    EXPECT_GE(elapsed.elapsed(), 1900) << "a child has two seconds to end by itself";
    EXPECT_LT(elapsed.elapsed(), 5000);
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
    const auto first = launcher->start(specOf({ QStringLiteral("exit 1") }),
        { {}, [&](int) {
             const auto second = launcher->start(specOf({ QStringLiteral("print second"), QStringLiteral("hang") }),
                 { [&](const OutputChunk& chunk) {
                      launcher.reset();
                      text = chunk.text;
                  },
                     [](int) {
                         ADD_FAILURE() << "a call after the launcher's end";
                     } });
             EXPECT_TRUE(second);
         } });
    ASSERT_TRUE(first);
    EXPECT_TRUE(await([&] { return !text.isEmpty(); }));
    EXPECT_EQ(launcher, nullptr);
}

TEST_F(ProcessLauncherTest, aHundredChildrenThatCrashAtOnceAreEachToldOnce)
{
    const qsizetype before = openDescriptors();
    QList<std::shared_ptr<Watched>> children;
    for (int i = 0; i < 100; ++i)
        children.append(
            start(QStringList { QStringLiteral("await"), QStringLiteral("half x"), QStringLiteral("crash 6") }));
    for (const auto& each : children)
        ASSERT_TRUE(each->child->write("now\n"));
    ASSERT_TRUE(await(
        [&] { return std::all_of(children.begin(), children.end(), [](const auto& each) { return each->ended(); }); }));
    for (const auto& each : children) {
        EXPECT_EQ(each->text, QStringLiteral("x"));
        EXPECT_EQ(each->codes, QList<int>({ -SIGABRT }));
    }
    children.clear();
    EXPECT_LE(openDescriptors(), before);
}

TEST_F(ProcessLauncherTest, aLineOfFiftyMegabytesArrivesWhole)
{
    const auto watched = run({ QStringLiteral("repeat 52428800 x"), QStringLiteral("print .") });
    EXPECT_EQ(watched->text.size(), 52428802);
}
