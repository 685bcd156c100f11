#include "Foundation/Literals.h"
#include "Rivals.h"

#include "AI/AIServices.h"
#include "Calls/CallSummarizer.h"
#include "Calls/CallTranscriptChunker.h"
#include "Foundation/SystemScheduler.h"
#include "Foundation/UserDefaults.h"
#include "Platform/CallAudio.h"
#include "Platform/Linux/Audio/M4aWriter.h"
#include "Platform/Linux/Services.h"
#include "Platform/MachineFacts.h"
#include "Platform/SystemLanguageModel.h"
#include "Platform/ToolRunner.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTextBoundaryFinder>
#include <QTimer>
#include <benchmark/benchmark.h>
#include <cmath>
#include <numbers>
#include <sys/resource.h>

namespace corvane::bench {

namespace {

constexpr double recordedSeconds = 20;
constexpr double callSeconds = 7200;
constexpr qsizetype transcriptLength = 200'000;

double cpuSeconds(int whose)
{
    rusage used {};
    getrusage(whose, &used);
    const auto seconds = [](const timeval& time) {
        return double(time.tv_sec) + double(time.tv_usec) / 1e6;
    };
    return seconds(used.ru_utime) + seconds(used.ru_stime);
}

double residentMB()
{
    QFile pages(u"/proc/self/statm"_s);
    if (!pages.open(QIODevice::ReadOnly))
        return 0;
    return double(pages.readAll().split(' ').value(1).toLongLong()) * 4096 / 1e6;
}

void turnTheLoopFor(double seconds)
{
    QEventLoop loop; // processEvents with a time limit would spin
    QTimer::singleShot(int(seconds * 1000), &loop, &QEventLoop::quit);
    loop.exec();
}

/// A private sound server in which both sides of a call hum.
class HummingServer {
public:
    HummingServer()
    {
        qputenv("PULSE_RUNTIME_PATH", QFile::encodeName(m_folder.path()));
        qputenv("PULSE_STATE_PATH", QFile::encodeName(m_folder.path()));
        qputenv("PULSE_SERVER", QFile::encodeName(u"unix:"_s + m_folder.filePath(u"s"_s)));
        QStringList arguments { u"-n"_s, u"--daemonize=no"_s, u"--exit-idle-time=-1"_s, u"--use-pid-file=no"_s };
        for (const QString& module :
            { u"module-native-protocol-unix auth-anonymous=1 socket="_s + m_folder.filePath("s"),
                u"module-null-sink sink_name=speaker rate=48000 channels=2"_s,
                u"module-null-sink sink_name=room rate=48000 channels=1"_s,
                u"module-remap-source source_name=mic master=room.monitor"_s,
                u"module-sine sink=speaker frequency=440"_s, u"module-sine sink=room frequency=330"_s })
            arguments << u"-L"_s << module;
        m_server.setStandardErrorFile(QProcess::nullDevice());
        m_server.start(u"pulseaudio"_s, arguments);
        QElapsedTimer time;
        time.start();
        while (!control({ u"info"_s }) && time.elapsed() < 5000) { }
        control({ u"set-default-sink"_s, u"speaker"_s });
        control({ u"set-default-source"_s, u"mic"_s });
    }
    ~HummingServer()
    {
        m_server.kill();
        m_server.waitForFinished();
    }
    HummingServer(const HummingServer&) = delete;
    HummingServer& operator=(const HummingServer&) = delete;

private:
    static bool control(const QStringList& arguments)
    {
        QProcess pactl;
        pactl.setStandardErrorFile(QProcess::nullDevice());
        pactl.start(u"pactl"_s, arguments);
        return pactl.waitForFinished() && pactl.exitCode() == 0;
    }

    QTemporaryDir m_folder;
    QProcess m_server;
};

/// Processor time of recording both tracks, measured over part of it.
void recorded(benchmark::State& state)
{
    const HummingServer server;
    for (auto _ : state) {
        const QTemporaryDir folder;
        SystemScheduler scheduler;
        const auto audio = makeCallAudio(scheduler);
        const auto mic = audio->recordMicrophone(folder.filePath(u"mic.m4a"_s));
        const auto system = audio->recordSystem(folder.filePath(u"system.m4a"_s), {}, scheduler.monotonicMs());
        turnTheLoopFor(3);
        const double memory = residentMB();
        const double used = cpuSeconds(RUSAGE_SELF);
        turnTheLoopFor(recordedSeconds);
        const double cost = cpuSeconds(RUSAGE_SELF) - used;
        state.SetIterationTime(cost);
        state.counters["of a core, %"] = 100 * cost / recordedSeconds;
        state.counters["memory, +MB"] = residentMB() - memory;
        if (!mic->hasSource() || !system->hasSource() || mic->elapsedSeconds() < recordedSeconds)
            state.SkipWithError("nothing was recorded");
    }
}

/// The same with FFmpeg's command line.
void recordedByFfmpeg(benchmark::State& state)
{
    const HummingServer server;
    for (auto _ : state) {
        const QTemporaryDir folder;
        QStringList arguments { u"-loglevel"_s, u"error"_s };
        for (const char* source : { "mic", "speaker.monitor" })
            arguments << u"-f"_s << u"pulse"_s << u"-i"_s << QLatin1StringView(source);
        const QString length = QString::number(recordedSeconds);
        arguments << u"-map"_s << u"0"_s << u"-t"_s << length << u"-ar"_s << u"44100"_s << u"-ac"_s << u"1"_s
                  << u"-b:a"_s << u"96k"_s << folder.filePath(u"mic.m4a"_s) << u"-map"_s << u"1"_s << u"-t"_s << length
                  << u"-b:a"_s << u"128k"_s << folder.filePath(u"system.m4a"_s);
        const double used = cpuSeconds(RUSAGE_CHILDREN);
        if (QProcess::execute(u"ffmpeg"_s, arguments) != 0)
            state.SkipWithError("ffmpeg failed");
        state.SetIterationTime(cpuSeconds(RUSAGE_CHILDREN) - used);
    }
}

/// Two hours of one track, written at full speed and finalized at the end.
void writtenWhole(benchmark::State& state)
{
    const SoundFormat format;
    std::vector<float> second(size_t(format.rate));
    for (size_t i = 0; i < second.size(); ++i)
        second[i] = 0.3F * std::sin(float(i) * 2 * std::numbers::pi_v<float> * 440 / float(format.rate));
    for (auto _ : state) {
        const QTemporaryDir folder;
        auto writer = M4aWriter::create(folder.filePath(u"mic.m4a"_s), format);
        (void)(*writer)->write(second);
        const double memory = residentMB();
        for (int i = 1; i < int(callSeconds); ++i)
            (void)(*writer)->write(second);
        state.counters["memory, +MB"] = residentMB() - memory;
        QElapsedTimer time;
        time.start();
        if (!(*writer)->finish())
            state.SkipWithError("the file was not written");
        state.counters["made whole, ms"] = double(time.elapsed());
    }
}

/// Turns of two people, ten sentences each.
const QString& transcript()
{
    static const QString text = [] {
        QString all;
        for (int turn = 0; all.size() < transcriptLength; ++turn) {
            all += turn % 2 == 0 ? u"Me:"_s : u"Meeting audio:"_s;
            for (int sentence = 0; sentence < 10; ++sentence)
                all += u" We said that the offer of batch %1 goes out on Friday."_s.arg(turn + sentence);
            all += u'\n';
        }
        return all.first(transcriptLength);
    }();
    return text;
}

/// Returns notes at the first request, then fails.
class FirstQuestion final : public SystemLanguageModel {
public:
    void choose(const Choice&) override { }
    std::optional<QString> unavailableReason() const override { return std::nullopt; }
    bool runsElsewhere() const override { return false; }
    QString modelName() const override { return u"none"_s; }
    QString displayName() const override { return u"none"_s; }
    QStringList models() const override { return {}; }
    QCoro::Task<> refresh() override { co_return; }
    QCoro::Task<Result<QString>> respond(QString, QString, CancelHandle) override
    {
        if (afterNs < 0)
            afterNs = time.nsecsElapsed();
        co_return failure(u"It never answers."_s);
    }
    QCoro::Task<Result<QJsonObject>> respondGenerating(QString, QString, QJsonObject, CancelHandle) override
    {
        co_return failure(u"It never answers."_s);
    }

    QElapsedTimer time;
    qint64 afterNs = -1;
};

class NoFacts final : public MachineFacts {
public:
    SystemVersion version() const override { return { 6, 1, 0 }; }
    SystemVersion minimumVersion() const override { return { 5, 10, 0 }; }
    MachineState state() const override { return {}; }
};

class NoTool final : public ToolRunner {
public:
    QCoro::Task<Result<ToolEnd>> run(QString, QStringList, QByteArray, CancelHandle) override
    {
        co_return failure(u"There is none."_s);
    }
};

/// From the transcript to the first request about its first chunk.
void firstGeneration(benchmark::State& state)
{
    const QTemporaryDir folder;
    UserDefaults defaults(folder.filePath(u"defaults.ini"_s));
    const SystemScheduler scheduler;
    const NoFacts facts;
    NoTool tools;
    for (auto _ : state) {
        FirstQuestion model;
        AIServices ai(model, facts, tools, {}, scheduler);
        CallSummarizer summarizer(ai.ai, defaults);
        model.time.start();
        bool done = false;
        summarizer.summaryInput(transcript()).then([&done](const QString&) { done = true; });
        while (!done)
            QCoreApplication::processEvents();
        if (model.afterNs < 0)
            state.SkipWithError("nothing was asked");
        state.SetIterationTime(double(model.afterNs) / 1e9);
    }
}

/// The time that Qt alone needs to count the characters once.
void charactersCounted(benchmark::State& state)
{
    for (auto _ : state) {
        QElapsedTimer time;
        time.start();
        QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, transcript());
        qsizetype count = 0;
        while (finder.toNextBoundary() >= 0)
            ++count;
        benchmark::DoNotOptimize(count);
        state.SetIterationTime(double(time.nsecsElapsed()) / 1e9);
    }
}

BENCHMARK(recorded)
    ->Name("record(20 s, both tracks)/corvane")
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(1);
BENCHMARK(recordedByFfmpeg)
    ->Name("record(20 s, both tracks)/ffmpeg")
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime()
    ->Iterations(1);
BENCHMARK(writtenWhole)->Name("write(2 h, one track)/corvane")->Unit(benchmark::kSecond)->Iterations(1);
BENCHMARK(firstGeneration)
    ->Name("first generation(200,000 characters)/corvane")
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime();
BENCHMARK(charactersCounted)
    ->Name("first generation(200,000 characters)/Qt, one count")
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime();

}

}

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    return corvane::bench::runAgainstRivals(argc, argv);
}
