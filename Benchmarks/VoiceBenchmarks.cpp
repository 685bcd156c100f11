#include "Foundation/Literals.h"
#include "Rivals.h"

#include "Foundation/SystemScheduler.h"
#include "Foundation/UserDefaults.h"
#include "Platform/Linux/Decode/DecodeChild.h"
#include "Platform/Linux/Decode/SeccompMediaDecoder.h"
#include "Platform/Linux/Services.h"
#include "Platform/Linux/Speech/ChildRecogniser.h"
#include "Platform/ProcessLauncher.h"
#include "Support/SpeechModelFile.h"
#include "Voice/SpeechModelStore.h"
#include "Voice/TranscriptionService.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <cstring>

namespace corvane::bench {

namespace {

/// A model of the base size, and half a minute of speech.
struct Files {
    Files()
    {
        write(model, speechModelFile(baseSpeechModel));
        constexpr int headerSize = 44;
        constexpr int seconds = 30;
        QByteArray sound;
        for (int i = 0; sound.size() < seconds * 32'000; i = (i + 1) % 5) {
            static const char* const names[] { "0870", "0880", "0890", "0920", "0930" };
            QFile spoken(u"/usr/share/pocketsphinx/test/data/librivox/"
                         "sense_and_sensibility_01_austen_64kb-%1.wav"_s.arg(QLatin1StringView(names[i])));
            if (!spoken.open(QIODevice::ReadOnly))
                qFatal("tools/setup bench installs the sound.");
            const QByteArray all = spoken.readAll();
            if (i == 0 && header.isEmpty())
                header = all.left(headerSize);
            sound += all.mid(headerSize);
        }
        sound.truncate(seconds * 32'000);
        const auto size = quint32(sound.size());
        std::memcpy(header.data() + headerSize - 4, &size, sizeof size);
        write(wave, header + sound);
    }

    static void write(const QString& path, const QByteArray& content)
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("The files of the benchmark cannot be written.");
    }

    QTemporaryDir folder;
    QString model = folder.filePath(u"ggml-base.bin"_s);
    QString wave = folder.filePath(u"speech.wav"_s);
    QByteArray header;
};

Files& files()
{
    static Files made;
    return made;
}

RecogniserProgram program()
{
    RecogniserProgram found = whisperProgram();
    found.executable = QStringLiteral(CORVANE_WHISPER);
    return found;
}

/// Of this process, without its children; in MiB.
double residentMemory()
{
    QFile file(u"/proc/self/statm"_s);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    constexpr double pagesOfOneMiB = 256;
    return file.readAll().split(' ').value(1).toDouble() / pagesOfOneMiB;
}

void transcribed(benchmark::State& state)
{
    SystemScheduler scheduler;
    SeccompMediaDecoder decoder(scheduler, QCoreApplication::applicationFilePath(), {});
    const auto launcher = makeProcessLauncher(scheduler);
    ChildRecogniser models(*launcher, program());
    const auto basic = makeBasicRecogniser(*launcher);
    UserDefaults defaults(files().folder.filePath(u"defaults.ini"_s));
    SpeechModelStore store(files().folder.path(), defaults, scheduler);
    SpeechInstalledModel model;
    model.spec.repository = u"whisper.cpp"_s;
    model.spec.variant = u"ggml-base.bin"_s;
    model.localPath = files().model;
    model.sizeBytes = QFile(files().model).size();
    store.add(model);
    TranscriptionService service(decoder, models, *basic, store);
    qint64 longestTurn = 0;
    const double before = residentMemory();
    for (auto _ : state) {
        std::optional<TranscriptionOutcome> outcome;
        service.transcribe({ .audioPath = files().wave, .locale = u"en"_s, .model = model.spec })
            .then([&outcome](TranscriptionOutcome result) { outcome = std::move(result); });
        while (!outcome) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            QElapsedTimer turn;
            turn.start();
            QCoreApplication::processEvents();
            longestTurn = std::max(longestTurn, turn.nsecsElapsed());
        }
        if (!*outcome || (*outcome)->model != model.spec)
            state.SkipWithError("the sound was not transcribed by the model");
    }
    state.counters["longest turn, ms"] = double(longestTurn) / 1e6;
    state.counters["kept after it, MiB"] = residentMemory() - before;
}

void byTheCommandLine(benchmark::State& state)
{
    const RecogniserProgram tool = program();
    SpeechJob job;
    job.model = files().model;
    job.language = u"en"_s;
    for (auto _ : state) {
        if (QProcess::execute(tool.executable, tool.arguments(job, files().wave)) != 0)
            state.SkipWithError("whisper.cpp failed");
    }
}

BENCHMARK(transcribed)->Name("transcribe(30 s, base)/corvane")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(byTheCommandLine)->Name("transcribe(30 s, base)/whisper.cpp")->Unit(benchmark::kMillisecond)->UseRealTime();

}

}

int main(int argc, char** argv)
{
    if (argc == 2 && std::strcmp(argv[1], "--decode") == 0)
        return corvane::runDecodeChild();
    const QCoreApplication application(argc, argv);
    return corvane::bench::runAgainstRivals(argc, argv);
}
