#include "Foundation/Literals.h"
#include "MirrorBench.h"
#include "Rivals.h"

#include "Inbox/Thread/ThreadRow.h"
#include "Presentation/RowListModel.h"
#include "Store/Messages/ThreadQueries.h"

#include <QCoreApplication>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <malloc.h>

namespace corvane::bench {

namespace {

constexpr int threadLimit = 1000;

MirrorBench& bench()
{
    static MirrorBench instance;
    return instance;
}

/// No person in the mirror has this many messages, so every n-th message is assigned to one person, who writes on two
/// channels. The two such people share no messages.
QString personWith(const char* name, int everyNth, int first)
{
    LocalDB& db = bench().store();
    const QString contact = u"ct:WHATSAPP:"_s + QLatin1StringView(name);
    int part = 0;
    for (const char* channel : { "WHATSAPP", "TELEGRAM" }) {
        const QString conversation = ensureConversation(
            db, QLatin1StringView(channel), u"main"_s, QLatin1StringView(name) + QString::number(part), u"Ana"_s, 1);
        db.run("UPDATE unified_conversation SET contact_id=? WHERE id=?;", { contact, conversation });
        db.run("UPDATE unified_message SET conversation_id=? WHERE rowid % ? = ?;",
            { conversation, everyNth * 2, first + part * everyNth });
        ++part;
    }
    return contact;
}

const QString& thousand()
{
    static const QString contact = personWith("a-thousand", 900, 0);
    return contact;
}

const QString& hundredThousand()
{
    static const QString contact = personWith("a-hundred-thousand", 9, 1);
    return contact;
}

QList<UnifiedMsgRow> thread()
{
    return fetchUnifiedThread(bench().store(), thousand(), threadLimit);
}

ThreadPlace middle()
{
    LocalDB& db = bench().store();
    const auto id
        = db.scalar("SELECT m.id FROM unified_message m JOIN unified_conversation c ON c.id=m.conversation_id "
                    "WHERE c.contact_id=? AND m.deleted_at IS NULL ORDER BY m.ts LIMIT 1 OFFSET 50000;",
            { hundredThousand() });
    return placeInThread(db, hundredThousand(), id.value_or(QString())).value_or(threadEnd);
}

void openThread(benchmark::State& state, const QString& contact)
{
    qsizetype rows = 0;
    for (auto _ : state) {
        const QList<UnifiedMsgRow> messages = fetchUnifiedThread(bench().store(), contact, threadLimit);
        rows = messages.size();
        benchmark::DoNotOptimize(ThreadBuilder::build(messages, 0));
    }
    state.counters["rows"] = double(rows);
}

void openedThread(benchmark::State& state)
{
    openThread(state, thousand());
}

void openedLongThread(benchmark::State& state)
{
    openThread(state, hundredThousand());
}

void turnPages(benchmark::State& state, Towards towards)
{
    const ThreadPlace from = middle();
    for (auto _ : state) {
        const QList<UnifiedMsgRow> page
            = fetchThreadPage(bench().store(), hundredThousand(), towards, from, threadLimit);
        benchmark::DoNotOptimize(ThreadBuilder::build(page, 0));
    }
}

void pageBack(benchmark::State& state)
{
    turnPages(state, Towards::Older);
}

void pageOn(benchmark::State& state)
{
    turnPages(state, Towards::Newer);
}

/// The same statement, through the C interface.
void threadStatement(benchmark::State& state)
{
    const QByteArray sql = bench().statementOf([](LocalDB& db) { fetchUnifiedThread(db, thousand(), threadLimit); });
    const QByteArray contact = thousand().toUtf8();
    for (auto _ : state) {
        BareStatement statement(bench().bare(), sql);
        for (bool row = statement.step(contact, threadEnd.ts, "", qint64(threadLimit), qint64(threadLimit)); row;
            row = statement.step()) {
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

/// The additional cost of the displayed texts.
void threadInWords(benchmark::State& state)
{
    const QList<ThreadItem> items = ThreadBuilder::build(thread(), 0);
    for (auto _ : state)
        benchmark::DoNotOptimize(threadRows(items, {}));
}

/// The memory of an open thread: its messages and the rows of its model.
void threadMemory(benchmark::State& state)
{
    for (auto _ : state) {
        const size_t before = mallinfo2().uordblks;
        const QList<UnifiedMsgRow> messages = thread();
        RowListModel<ThreadRow> model;
        model.assign(threadRows(ThreadBuilder::build(messages, 0), {}));
        state.counters["MB"] = double(mallinfo2().uordblks - before) / 1e6;
    }
}

BENCHMARK(openedThread)->Name("thread of 1000/corvane")->Unit(benchmark::kMillisecond);
BENCHMARK(threadStatement)->Name("thread of 1000/bare statement")->Unit(benchmark::kMillisecond);
BENCHMARK(openedLongThread)->Name("thread of 100000/corvane")->Unit(benchmark::kMillisecond);
BENCHMARK(pageBack)->Name("thread of 100000, a page back/corvane")->Unit(benchmark::kMillisecond);
BENCHMARK(pageOn)->Name("thread of 100000, a page on/corvane")->Unit(benchmark::kMillisecond);
BENCHMARK(fetchedThread)->Name("thread as rows")->Unit(benchmark::kMillisecond);
BENCHMARK(threadInWords)->Name("thread in words")->Unit(benchmark::kMillisecond);
BENCHMARK(threadMemory)->Name("thread in memory")->Unit(benchmark::kMillisecond)->Iterations(1);

}

}

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    corvane::bench::bench(); // created before the clock starts
    return corvane::bench::runAgainstRivals(argc, argv);
}
