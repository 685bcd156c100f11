#include "MirrorBench.h"
#include "Rivals.h"

#include "Inbox/Thread/ThreadRow.h"
#include "Presentation/RowListModel.h"
#include "Store/Messages/MessageSearch.h"
#include "Store/Messages/ThreadQueries.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <benchmark/benchmark.h>
#include <malloc.h>

namespace corvane::bench {

namespace {

constexpr int threadLimit = 1000;
const QString rareWord = QStringLiteral("zebra crossing");

MirrorBench& bench()
{
    static MirrorBench instance;
    return instance;
}

/// Nobody of the mirror wrote as much, so a thousand messages from all over it become one person's.
const QString& longestThread()
{
    static const QString contact = [] {
        LocalDB& db = bench().store();
        IncomingMessage message = bench().nextMessage();
        message.conversationExternalId = QStringLiteral("a-thousand");
        const QString conversation = storeMessage(db, QStringLiteral("WHATSAPP"), QStringLiteral("main"), message);
        db.run("UPDATE unified_message SET conversation_id=? WHERE rowid % 900 = 0;", { conversation });
        return QStringLiteral("ct:WHATSAPP:a-thousand");
    }();
    return contact;
}

QList<UnifiedMsgRow> thread()
{
    return fetchUnifiedThread(bench().store(), longestThread(), threadLimit);
}

void openedThread(benchmark::State& state)
{
    qsizetype rows = 0;
    for (auto _ : state) {
        const QList<UnifiedMsgRow> messages = thread();
        rows = messages.size();
        benchmark::DoNotOptimize(ThreadBuilder::build(messages));
    }
    state.counters["rows"] = double(rows);
}

void threadStatement(benchmark::State& state)
{
    const QByteArray sql
        = bench().statementOf([](LocalDB& db) { fetchUnifiedThread(db, longestThread(), threadLimit); });
    const QByteArray contact = longestThread().toUtf8();
    for (auto _ : state) {
        BareStatement statement(bench().bare(), sql);
        for (bool row = statement.step(contact, qint64(threadLimit)); row; row = statement.step()) {
            for (int column = 0; column < 14; ++column)
                benchmark::DoNotOptimize(sqlite3_column_text(statement.get(), column));
        }
    }
}

void fetchedThread(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(thread());
}

/// What the words of the screen cost on top.
void threadInWords(benchmark::State& state)
{
    const QList<ThreadItem> items = ThreadBuilder::build(thread());
    for (auto _ : state)
        benchmark::DoNotOptimize(threadRows(items, {}));
}

/// The memory that an open thread takes: its messages and the rows of its model.
void threadMemory(benchmark::State& state)
{
    for (auto _ : state) {
        const size_t before = mallinfo2().uordblks;
        const QList<UnifiedMsgRow> messages = thread();
        RowListModel<ThreadRow> model;
        model.assign(threadRows(ThreadBuilder::build(messages), {}));
        state.counters["MB"] = double(mallinfo2().uordblks - before) / 1e6;
    }
}

/// A word that nothing holds: the whole mirror is read. The main thread turns its loop meanwhile.
void searchFromTheWindow(benchmark::State& state)
{
    MessageSearch search(bench().store());
    qint64 longestTurn = 0;
    for (auto _ : state) {
        bool found = false;
        search.start(rareWord, 60, [&](const QList<MessageHit>&) { found = true; });
        while (!found) {
            QElapsedTimer turn;
            turn.start();
            QCoreApplication::processEvents();
            longestTurn = std::max(longestTurn, turn.nsecsElapsed());
        }
    }
    state.counters["longest_turn_ms"] = double(longestTurn) / 1e6;
}

void searchBare(benchmark::State& state)
{
    const QByteArray sql = bench().statementOf([](LocalDB& db) { searchMessages(db, rareWord, 60); });
    const QByteArray pattern = "%" + rareWord.toUtf8() + "%";
    for (auto _ : state) {
        BareStatement statement(bench().bare(), sql);
        statement.step(pattern, pattern, qint64(60));
    }
}

BENCHMARK(openedThread)->Name("thread of 1000/corvane")->Unit(benchmark::kMillisecond);
BENCHMARK(threadStatement)->Name("thread of 1000/bare statement")->Unit(benchmark::kMillisecond);
BENCHMARK(fetchedThread)->Name("thread as rows")->Unit(benchmark::kMillisecond);
BENCHMARK(threadInWords)->Name("thread in words")->Unit(benchmark::kMillisecond);
BENCHMARK(threadMemory)->Name("thread in memory")->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(searchFromTheWindow)->Name("rare word/corvane")->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();
BENCHMARK(searchBare)->Name("rare word/bare")->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();

}

}

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    corvane::bench::bench(); // made before the clock runs
    return corvane::bench::runAgainstRivals(argc, argv);
}
