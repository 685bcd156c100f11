// How fast an engine's lines become rows, compared with SQLite's bare C interface; how long another writer has to wait
// meanwhile; and the latency of the event loop while a hundred engines crash at once, repeatedly.

#include "Foundation/Literals.h"
#include "MirrorBench.h"
#include "Rivals.h"

#include "Engines/EngineManager.h"
#include "Platform/Linux/Services.h"
#include "Support/PlayedEngine.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QJsonDocument>
#include <algorithm>
#include <atomic>
#include <benchmark/benchmark.h>
#include <thread>

namespace corvane::bench {

namespace {

constexpr int messagesPerChunk = 50;
constexpr int historyLength = 50'000;
constexpr int historyPerChunk = 250; // about the size of a pipe's buffer
constexpr int linesPerGroup = 64;
constexpr int secondsOfFlood = 20;

/// The mirror, and an engine whose lines are stored in it.
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

QByteArray lineOf(const IncomingMessage& message, MirrorBench::Age age)
{
    const QJsonObject event { { u"type"_s, u"message"_s }, { u"convExternalId"_s, message.conversationExternalId },
        { u"providerMsgId"_s, message.providerMsgId }, { u"body"_s, message.body }, { u"direction"_s, u"IN"_s },
        { u"ts"_s, message.ts }, { u"convTitle"_s, *message.conversationTitle }, { u"sender"_s, *message.sender },
        { u"historical"_s, age == MirrorBench::Age::Historical } };
    return "@@CORVANE@@" + QJsonDocument(event).toJson(QJsonDocument::Compact) + '\n';
}

QByteArray nextLines(int count, MirrorBench::Age age)
{
    QByteArray lines;
    for (int i = 0; i < count; ++i)
        lines += lineOf(bench().mirror.nextMessage(), age);
    return lines;
}

/// Adds the sizes of the commits, if requested.
void ingest(const QByteArray& lines, int count, std::vector<int>* groups = nullptr)
{
    EngineManager& engines = bench().engine.engines();
    qint64 revision = engines.inboxRevision();
    const qint64 target = revision + count;
    bench().engine.print(lines);
    while (revision < target) {
        QCoreApplication::processEvents();
        const qint64 before = std::exchange(revision, engines.inboxRevision());
        if (groups && revision > before)
            groups->push_back(int(revision - before));
    }
}

/// Live messages, from an engine's output to rows, unread counts and banners, through the event loop.
void ingestLines(benchmark::State& state)
{
    for (auto _ : state) {
        state.PauseTiming();
        const QByteArray lines = nextLines(messagesPerChunk, MirrorBench::Age::Live);
        state.ResumeTiming();
        ingest(lines, messagesPerChunk);
    }
    state.SetItemsProcessed(state.iterations() * messagesPerChunk);
}

/// The baseline only runs the statements: prepared each time, as the store does, or once.
void ingestBare(benchmark::State& state, MirrorBench::Prepared prepared)
{
    for (auto _ : state) {
        for (int i = 0; i < messagesPerChunk; ++i)
            bench().mirror.ingestBare(prepared);
    }
    state.SetItemsProcessed(state.iterations() * messagesPerChunk);
}

QByteArrayList historyChunks(int count)
{
    QByteArrayList chunks;
    for (int i = 0; i < count; i += historyPerChunk)
        chunks.append(nextLines(historyPerChunk, MirrorBench::Age::Historical));
    return chunks;
}

std::vector<int>& historyGroups()
{
    static std::vector<int> groups;
    return groups;
}

/// A history as it arrives after pairing.
void historyLines(benchmark::State& state)
{
    std::vector<int>& groups = historyGroups();
    for (auto _ : state) {
        state.PauseTiming();
        const QByteArrayList chunks = historyChunks(historyLength);
        groups.clear();
        state.ResumeTiming();
        for (const QByteArray& lines : chunks)
            ingest(lines, historyPerChunk, &groups);
    }
    state.SetItemsProcessed(state.iterations() * historyLength);
    state.counters["groups"] = static_cast<double>(groups.size());
}

void groupBare(int lines)
{
    sqlite3_exec(bench().mirror.bare(), "BEGIN IMMEDIATE;", nullptr, nullptr, nullptr);
    for (int i = 0; i < lines; ++i)
        bench().mirror.ingestBare(MirrorBench::Prepared::Once, MirrorBench::Age::Historical);
    sqlite3_exec(bench().mirror.bare(), "COMMIT;", nullptr, nullptr, nullptr);
}

/// Only the statements, prepared once, in the same groups as the program's.
void historyBare(benchmark::State& state)
{
    if (historyGroups().empty())
        return state.SkipWithError("It runs after the program's own history.");
    for (auto _ : state) {
        for (const int lines : historyGroups())
            groupBare(lines);
    }
    state.SetItemsProcessed(state.iterations() * historyLength);
}

/// The latency of the event loop in milliseconds, at the given quantile.
double percentile(std::vector<double>& delays, double share)
{
    std::ranges::sort(delays);
    return delays.empty() ? 0 : delays.at(static_cast<size_t>(share * static_cast<double>(delays.size() - 1)));
}

/// Another program that writes fifty times a second: its waiting time for each write, in milliseconds.
std::vector<double> waitsOfSecondWriter(const std::function<void()>& flood)
{
    std::atomic<bool> done = false;
    std::vector<double> waits;
    std::thread writer([&] {
        sqlite3* db = nullptr;
        sqlite3_open(bench().mirror.path().toUtf8().constData(), &db);
        sqlite3_busy_timeout(db, 5000);
        while (!done) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            QElapsedTimer waiting;
            waiting.start();
            sqlite3_exec(db, "BEGIN IMMEDIATE;", nullptr, nullptr, nullptr);
            waits.push_back(static_cast<double>(waiting.nsecsElapsed()) / 1e6);
            sqlite3_exec(
                db, "UPDATE sync_workspace_selection SET updated_at=updated_at+1; COMMIT;", nullptr, nullptr, nullptr);
        }
        sqlite3_close(db);
    });
    flood();
    QElapsedTimer flooding;
    flooding.start();
    while (flooding.elapsed() < secondsOfFlood * 1000)
        flood();
    done = true;
    writer.join();
    return waits;
}

void secondWriter(benchmark::State& state, void (*flood)())
{
    for (auto _ : state) {
        std::vector<double> waits = waitsOfSecondWriter(flood);
        state.counters["wait p50 ms"] = percentile(waits, 0.5);
        state.counters["wait p99 ms"] = percentile(waits, 0.99);
        state.counters["wait max ms"] = percentile(waits, 1);
        state.counters["writes"] = static_cast<double>(waits.size());
    }
}

/// Generated in advance, as if by an engine in parallel: the flood leaves the second writer no pause.
void floodLines()
{
    static QByteArrayList chunks = historyChunks(10 * historyLength);
    ingest(chunks.takeFirst(), historyPerChunk);
}

/// A hundred engines that crash at the start, with two waves of restarts. Only the waves are sampled.
void crashStorm(benchmark::State& state)
{
    constexpr int engineCount = 100;
    qputenv("CORVANE_NODE", "/bin/false");
    SystemScheduler scheduler;
    const auto launcher = makeProcessLauncher(scheduler);
    for (auto _ : state) {
        PlayedEngine world(scheduler, u":memory:"_s, launcher.get());
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
            account.slug = u"crashing-%1"_s.arg(i);
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
BENCHMARK(historyLines)
    ->Name("50000 lines of history/corvane")
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(historyBare)
    ->Name("50000 lines of history/bare, prepared once")
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(secondWriter, corvane, floodLines)
    ->Name("second writer in a flood/corvane")
    ->Iterations(1)
    ->Repetitions(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(secondWriter, bare, [] { groupBare(linesPerGroup); })
    ->Name("second writer in a flood/bare")
    ->Iterations(1)
    ->Repetitions(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK(crashStorm)->Iterations(1)->Repetitions(1)->Unit(benchmark::kMillisecond)->UseRealTime();

}

}

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    corvane::bench::bench(); // created before the clock starts
    return corvane::bench::runAgainstRivals(argc, argv);
}
