#include "Foundation/Literals.h"
#include "Rivals.h"

#include "Foundation/SystemScheduler.h"
#include "Platform/Linux/Decode/DecodeChild.h"
#include "Platform/Linux/Decode/SeccompMediaDecoder.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImageReader>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <cstring>

namespace corvane::bench {

namespace {

constexpr int pictureCount = 50;
constexpr PictureBox box { 240, 140, 480 };

/// Photographs as phones send them: three megapixels of gradients and noise.
const QStringList& pictures()
{
    static QTemporaryDir folder;
    static const QStringList paths = [] {
        QStringList all;
        quint32 noise = 1;
        for (int i = 0; i < pictureCount; ++i) {
            QImage image(2016, 1512, QImage::Format_RGB32);
            for (int y = 0; y < image.height(); ++y) {
                auto* const line = reinterpret_cast<QRgb*>(image.scanLine(y));
                for (int x = 0; x < image.width(); ++x) {
                    noise = noise * 1664525 + 1013904223;
                    line[x] = qRgb(x * 255 / 2016, y * 255 / 1512, int(noise >> 27) + i);
                }
            }
            all.append(folder.filePath(u"%1.jpg"_s.arg(i)));
            image.save(all.last());
        }
        return all;
    }();
    return paths;
}

void throughTheChild(benchmark::State& state)
{
    SystemScheduler scheduler;
    SeccompMediaDecoder decoder(scheduler, QCoreApplication::applicationFilePath(), {});
    qint64 longestTurn = 0;
    pictures();
    for (auto _ : state) {
        int left = pictureCount;
        std::vector<MediaDecoder::Handle> requests;
        for (const QString& path : pictures())
            requests.push_back(decoder.picture(path, box, [&](const auto& pixels) {
                if (!pixels)
                    state.SkipWithError("a picture was not read");
                --left;
            }));
        while (left > 0) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            QElapsedTimer turn;
            turn.start();
            QCoreApplication::processEvents();
            longestTurn = std::max(longestTurn, turn.nsecsElapsed());
        }
    }
    state.counters["longest turn, ms"] = double(longestTurn) / 1e6;
}

void withinTheProcess(benchmark::State& state)
{
    pictures();
    for (auto _ : state) {
        for (const QString& path : pictures()) {
            QImageReader reader(path);
            reader.setAutoTransform(true);
            reader.setScaledSize({ 320, 240 });
            benchmark::DoNotOptimize(reader.read());
        }
    }
}

BENCHMARK(throughTheChild)->Name("pictures(50)/corvane")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(withinTheProcess)->Name("pictures(50)/QImageReader")->Unit(benchmark::kMillisecond)->UseRealTime();

}

}

int main(int argc, char** argv)
{
    if (argc == 2 && std::strcmp(argv[1], "--decode") == 0)
        return corvane::runDecodeChild();
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    return corvane::bench::runAgainstRivals(argc, argv);
}
