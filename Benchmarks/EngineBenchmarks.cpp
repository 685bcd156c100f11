// How fast the lines of an engine become rows, beside the bare C interface of SQLite, and how the event loop fares
// while a hundred engines crash at once and again.

#include "MirrorBench.h"
#include "Rivals.h"

#include "Engines/EngineManager.h"
#include "Platform/Linux/Services.h"
#include "Support/PlayedEngine.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <algorithm>
#include <benchmark/benchmark.h>

namespace corvane::bench {

namespace {

constexpr int messagesPerChunk = 50;

/// The mirror, and an engine whose lines go into it.
struct Bench {
    MirrorBench mirror;
    SystemScheduler scheduler;
    PlayedEngine engine { scheduler, mirror.path() };
};

Bench& bench()
{
    static Bench instance;
    return instance;
}

QString lineOf(const IncomingMessage& message)
{
    const QJsonObject event { { QStringLiteral("type"), QStringLiteral("message") },
        { QStringLiteral("convExternalId"), message.conversationExternalId },
        { QStringLiteral("providerMsgId"), message.providerMsgId }, { QStringLiteral("body"), message.body },
        { QStringLiteral("direction"), QStringLiteral("IN") }, { QStringLiteral("ts"), message.ts },
        { QStringLiteral("convTitle"), *message.conversationTitle }, { QStringLiteral("sender"), *message.sender } };
    return QStringLiteral("@@CORVANE@@") + QString::fromUtf8(QJsonDocument(event).toJson(QJsonDocument::Compact))
        + u'\n';
}

/// Live messages, from the text that an engine printed to the rows, the unread counts and the banners, through the
/// event loop.
void ingestLines(benchmark::State& state)
{
    EngineManager& engines = bench().engine.engines();
    for (auto _ : state) {
        state.PauseTiming();
        QString chunk;
        for (int i = 0; i < messagesPerChunk; ++i)
            chunk += lineOf(bench().mirror.nextMessage());
        const qint64 target = engines.inboxRevision() + messagesPerChunk;
        state.ResumeTiming();
        bench().engine.print(chunk);
        while (engines.inboxRevision() < target)
            QCoreApplication::processEvents();
    }
    state.SetItemsProcessed(state.iterations() * messagesPerChunk);
}

/// The rival only runs the statements: prepared each time, as the store does, or once and for all.
void ingestBare(benchmark::State& state, MirrorBench::Prepared prepared)
{
    for (auto _ : state) {
        for (int i = 0; i < messagesPerChunk; ++i)
            bench().mirror.ingestBare(prepared);
    }
    state.SetItemsProcessed(state.iterations() * messagesPerChunk);
}

/// How late the event loop answers, in milliseconds, at the given share of the samples.
double percentile(std::vector<double>& delays, double share)
{
    std::ranges::sort(delays);
    return delays.empty() ? 0 : delays.at(static_cast<size_t>(share * static_cast<double>(delays.size() - 1)));
}

/// A hundred engines die as they start; two waves of restarts follow. Only the waves themselves are sampled.
void crashStorm(benchmark::State& state)
{
    constexpr int engineCount = 100;
    qputenv("CORVANE_NODE", "/bin/false");
    SystemScheduler scheduler;
    const auto launcher = makeProcessLauncher(scheduler);
    for (auto _ : state) {
        PlayedEngine world(scheduler, QStringLiteral(":memory:"), launcher.get());
        EngineManager& engines = world.engines();
        int exits = 0;
        int starts = 0;
        QObject::connect(&engines, &EngineManager::runtimeChanged, &engines, [&](const QUuid& id) {
            const WAStatus status = engines.runtime(id).status;
            exits += status == WAStatus::Connecting;
            starts += status == WAStatus::Starting;
        });
        std::vector<double> delays;
        QElapsedTimer sinceTick;
        sinceTick.start();
        const auto ticks = scheduler.every(Milliseconds(1), [&] {
            const double late = static_cast<double>(sinceTick.nsecsElapsed()) / 1e6 - 1.0;
            sinceTick.start();
            if (exits < starts)
                delays.push_back(std::max(0.0, late));
        });
        for (int i = 0; i < engineCount; ++i) {
            Account account;
            account.id = QUuid::createUuid();
            account.slug = QStringLiteral("crashing-%1").arg(i);
            engines.start(account);
        }
        while (exits < 3 * engineCount)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        state.counters["delay p50 ms"] = percentile(delays, 0.5);
        state.counters["delay p99 ms"] = percentile(delays, 0.99);
        state.counters["delay max ms"] = percentile(delays, 1);
        state.counters["samples"] = static_cast<double>(delays.size());
    }
    qunsetenv("CORVANE_NODE");
}

BENCHMARK(ingestLines)->Name("50 lines/corvane")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(ingestBare, each, MirrorBench::Prepared::EachTime)
    ->Name("50 lines/bare")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(ingestBare, once, MirrorBench::Prepared::Once)
    ->Name("50 lines/bare, prepared once")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(crashStorm)->Iterations(1)->Repetitions(1)->Unit(benchmark::kMillisecond)->UseRealTime();

}

}

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    corvane::bench::bench(); // made before the clock runs
    return corvane::bench::runAgainstRivals(argc, argv);
}
