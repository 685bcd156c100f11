#include "Platform/CallAudio.h"

#include "Foundation/SystemScheduler.h"
#include "Platform/Linux/Audio/M4aWriter.h"
#include "Platform/Linux/Services.h"
#include "SoundFiles.h"
#include "SoundServer.h"
#include "Support/LogCapture.h"

#include <QSignalSpy>
#include <QStandardPaths>
#include <QTextStream>
#include <array>
#include <sys/resource.h>

using namespace corvane;

namespace {

const char* const childsFolder = "CORVANE_TEST_RECORD_TO";

class CallAudioTest : public testing::Test {
protected:
    QString file(const QString& name) const { return folder.filePath(name); }

    static bool reaches(TrackRecording& track, double seconds)
    {
        return await([&] { return track.elapsedSeconds() >= seconds; });
    }

    static bool stops(TrackRecording& track)
    {
        std::optional<bool> stopped;
        track.stop([&](const Result<void>& result) { stopped = result.has_value(); });
        EXPECT_TRUE(await([&] { return stopped.has_value(); }));
        return stopped.value_or(false);
    }

    QList<SoundApplication> applications()
    {
        std::optional<QList<SoundApplication>> found;
        audio->findApplications([&](const QList<SoundApplication>& given) { found = given; });
        EXPECT_TRUE(await([&] { return found.has_value(); }));
        return found.value_or(QList<SoundApplication>());
    }

    bool hasOutput()
    {
        std::optional<bool> found;
        audio->findSystemAudio([&](const Result<void>& result) { found = result.has_value(); });
        EXPECT_TRUE(await([&] { return found.has_value(); }));
        return found.value_or(false);
    }

    LogCapture logs;
    QTemporaryDir folder;
    SystemScheduler scheduler;
    std::unique_ptr<CallAudio> audio = makeCallAudio(scheduler);
};

/// A program with a different name that plays silence, like a call in which nobody speaks.
class Phone {
public:
    explicit Phone(const QString& folder)
    {
        const QString program = folder + "/phone";
        QFile::copy(QStandardPaths::findExecutable("pacat"), program);
        m_process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
        m_process.start(program, { "--latency-msec=20", "/dev/zero" });
    }
    ~Phone()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

private:
    QProcess m_process;
};

}

TEST_F(CallAudioTest, bothSidesOfACallAreRecordedOnOneTimeLine)
{
    SoundServer server(Microphones::One);
    ASSERT_TRUE(SoundServer::control({ "load-module", "module-sine", "sink=speaker", "frequency=880" }));
    EXPECT_TRUE(hasOutput());
    const auto mic = audio->recordMicrophone(file("mic.m4a"));
    const auto system = audio->recordSystem(file("system.m4a"), {}, scheduler.monotonicMs() - 2000);
    ASSERT_TRUE(mic && system && reaches(*mic, 2) && reaches(*system, 4));
    EXPECT_GT(mic->level(), 0.1);
    EXPECT_NEAR(mic->elapsedSeconds() + 2, system->elapsedSeconds(), 0.8) << "it began before its sound was found";
    for (const QString& name : { "mic.m4a", "system.m4a" })
        EXPECT_GT(peakOf(file(name)), 0.05F) << "it plays while it grows";
    EXPECT_TRUE(stops(*mic) && stops(*system));
    EXPECT_EQ(formatOf(file("mic.m4a")), "aac,44100,1");
    EXPECT_EQ(formatOf(file("system.m4a")), "aac,48000,2");
    EXPECT_NEAR(secondsOf(file("system.m4a")), system->elapsedSeconds(), 0.1);
    QFile whole(file("mic.m4a"));
    ASSERT_TRUE(whole.open(QIODevice::ReadOnly));
    EXPECT_FALSE(whole.readAll().contains("moof")) << "its pieces were joined";
    EXPECT_FALSE(audio->recordMicrophone(file("mic.m4a"))) << "a file that stands there is not written over";
}

TEST_F(CallAudioTest, aTrackFollowsItsSourceAndGapsAreSilence)
{
    SoundServer server(Microphones::One);
    const auto mic = audio->recordMicrophone(file("mic.m4a"));
    ASSERT_TRUE(await([&] { return mic->hasSource() && mic->level() > 0.1; }));
    const auto goesOn = [&](double seconds) {
        return reaches(*mic, mic->elapsedSeconds() + seconds);
    };
    const auto isHeard = [&] {
        return mic->hasSource() && mic->level() > 0.1;
    };
    ASSERT_TRUE(server.unplug());
    ASSERT_TRUE(await([&] { return !mic->hasSource(); }));
    (void)mic->level();
    EXPECT_TRUE(goesOn(0.6));
    EXPECT_EQ(mic->level(), 0);
    ASSERT_TRUE(server.plugIn());
    EXPECT_TRUE(await(isHeard));
    server.kill();
    ASSERT_TRUE(await([&] { return !mic->hasSource(); }));
    EXPECT_TRUE(goesOn(0.6));
    server.start();
    EXPECT_TRUE(await(isHeard)) << "the server came back";
    const double recorded = mic->elapsedSeconds();
    EXPECT_TRUE(stops(*mic));
    EXPECT_GE(secondsOf(file("mic.m4a")), recorded);
}

TEST_F(CallAudioTest, onlyTheSourceThatWasChosenLastIsRecorded)
{
    SoundServer server(Microphones::One);
    const auto mic = audio->recordMicrophone(file("mic.m4a"));
    const auto sources = [] {
        QList<QByteArray> lines = output("pactl", { "list", "short", "source-outputs" }).split('\n');
        lines.removeIf([](const QByteArray& line) { return !line.contains("float32le 1ch 44100Hz"); });
        QList<QByteArray> sources;
        for (const QByteArray& line : std::as_const(lines))
            sources.append(line.split('\t').value(1));
        return sources;
    };
    const auto number = [](const QByteArray& name) {
        const QList<QByteArray> lines = output("pactl", { "list", "short", "sources" }).split('\n');
        for (const QByteArray& line : lines)
            if (line.split('\t').value(1) == name)
                return line.split('\t').value(0);
        return QByteArray();
    };
    ASSERT_TRUE(await([&] { return sources() == QList { number("mic") }; }));
    ASSERT_TRUE(
        SoundServer::control({ "load-module", "module-remap-source", "source_name=desk", "master=room.monitor" }));
    ASSERT_TRUE(SoundServer::control({ "set-default-source", "desk" }));
    EXPECT_TRUE(await([&] { return sources() == QList { number("desk") }; }));
    EXPECT_TRUE(await([&] { return mic->hasSource() && mic->level() > 0.1; }));
    EXPECT_TRUE(stops(*mic));
    EXPECT_TRUE(await([&] { return sources().isEmpty(); }));
}

TEST_F(CallAudioTest, soundThatComesLateStandsAtItsTimeAndNotAfterTheSilenceInItsPlace)
{
    SoundServer server(Microphones::One);
    const qint64 begun = scheduler.monotonicMs();
    const auto mic = audio->recordMicrophone(file("mic.m4a"));
    ASSERT_TRUE(await([&] { return mic->level() > 0.1; }));
    server.freeze();
    EXPECT_TRUE(reaches(*mic, mic->elapsedSeconds() + 1));
    (void)mic->level();
    server.thaw();
    ASSERT_TRUE(await([&] { return mic->level() > 0.1; }));
    EXPECT_TRUE(reaches(*mic, mic->elapsedSeconds() + 1));
    EXPECT_LT(mic->elapsedSeconds(), double(scheduler.monotonicMs() - begun) / 1000 + 0.6);
}

TEST_F(CallAudioTest, oneApplicationIsHeardWithoutTheOthers)
{
    SoundServer server(Microphones::One);
    ASSERT_TRUE(SoundServer::control({ "load-module", "module-sine", "sink=speaker", "frequency=880" }));
    const auto phoneOnly = audio->recordSystem(file("phone.m4a"), "phone", scheduler.monotonicMs());
    const auto mic = audio->recordMicrophone(file("mic.m4a"));
    {
        const Phone phone(folder.path());
        EXPECT_TRUE(await([&] { return phoneOnly->hasSource(); })) << "it came after the recording began";
        EXPECT_TRUE(reaches(*phoneOnly, phoneOnly->elapsedSeconds() + 1));
        const auto found = applications();
        EXPECT_TRUE(std::ranges::any_of(found, [](const SoundApplication& application) {
            return application.binary == "phone" && application.plays && !application.records;
        }));
        EXPECT_TRUE(std::ranges::none_of(found, &SoundApplication::records)) << "our own recording is none";
    }
    EXPECT_TRUE(await([&] { return !phoneOnly->hasSource(); }));
    EXPECT_TRUE(stops(*phoneOnly));
    EXPECT_LT(peakOf(file("phone.m4a")), 0.01F);
}

TEST_F(CallAudioTest, withoutASoundServerNothingIsFoundAndNoFileIsLeft)
{
    qputenv("PULSE_SERVER", "unix:/nowhere");
    EXPECT_FALSE(hasOutput());
    EXPECT_TRUE(applications().isEmpty());
    const auto system = audio->recordSystem(file("system.m4a"), {}, scheduler.monotonicMs());
    ASSERT_TRUE(system && reaches(*system, 0.5)) << "silence, should it come yet";
    EXPECT_FALSE(stops(*system));
    EXPECT_FALSE(QFile::exists(file("system.m4a")));
    EXPECT_FALSE(audio->recordSystem(file("nowhere/system.m4a"), {}, 0));
    qunsetenv("PULSE_SERVER");
}

TEST_F(CallAudioTest, aFullDiskEndsTheTrackAndWhatWasRecordedPlays)
{
    SoundServer server(Microphones::One);
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit before {};
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit small { 30'000, before.rlim_max };
    const auto mic = audio->recordMicrophone(file("mic.m4a"));
    QSignalSpy failed(mic.get(), &TrackRecording::failed);
    setrlimit(RLIMIT_FSIZE, &small);
    EXPECT_TRUE(await([&] { return !failed.isEmpty(); }));
    setrlimit(RLIMIT_FSIZE, &before);
    (void)stops(*mic);
    EXPECT_GT(secondsOf(file("mic.m4a")), 0.9);
}

/// Not a test by itself: the next test runs it in child processes and kills them.
TEST_F(CallAudioTest, DISABLED_recordsUntilItIsKilled)
{
    const QString to = qEnvironmentVariable(childsFolder);
    const auto mic = audio->recordMicrophone(to + "/mic.m4a");
    const auto system = audio->recordSystem(to + "/system.m4a", {}, scheduler.monotonicMs());
    QTextStream out(stdout);
    await([&] {
        out << std::min(mic->elapsedSeconds(), system->elapsedSeconds()) << Qt::endl;
        return false;
    });
}

TEST_F(CallAudioTest, aKilledProgramLosesASecondAtMostOfBothTracks)
{
    SoundServer server(Microphones::One);
    struct Victim {
        QTemporaryDir folder;
        QProcess process;
        double recorded = 0;
    };
    constexpr int kills = 30;
    constexpr int atOnce = 10;
    for (int killed = 0; killed < kills;) {
        std::array<Victim, atOnce> victims;
        for (Victim& victim : victims) {
            qputenv(childsFolder, QFile::encodeName(victim.folder.path()));
            victim.process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
            victim.process.start("/proc/self/exe",
                { "--gtest_filter=CallAudioTest.DISABLED_recordsUntilItIsKilled", "--gtest_also_run_disabled_tests" });
        }
        for (Victim& victim : victims) {
            const double moment = 1 + ++killed * 0.06;
            const auto hear = [&victim, moment] {
                while (victim.process.canReadLine())
                    victim.recorded = std::max(victim.recorded, victim.process.readLine().toDouble());
                return victim.recorded >= moment;
            };
            EXPECT_TRUE(await(hear));
            victim.process.kill();
            victim.process.waitForFinished();
            hear();
            for (const QString& name : { "/mic.m4a", "/system.m4a" }) {
                const QString path = victim.folder.path() + name;
                std::optional<bool> whole;
                audio->repair(path, [&](const Result<void>& result) { whole = result.has_value(); });
                EXPECT_TRUE(await([&] { return whole.has_value(); }) && *whole);
                EXPECT_GT(secondsOf(path), victim.recorded - 1) << name.toStdString() << " at " << moment;
            }
        }
    }
    qunsetenv(childsFolder);
}
