#include "Foundation/Literals.h"
#include "MirrorBench.h"
#include "Rivals.h"

#include "Inbox/Thread/ThreadRow.h"
#include "Presentation/RowListModel.h"
#include "Store/Messages/ThreadQueries.h"
#include "Store/Search/MessageSearch.h"
#include "Store/Search/SearchIndex.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <malloc.h>
#include <random>

namespace corvane::bench {

namespace {

constexpr int threadLimit = 1000;
const QString rareWord = u"zebra crossing"_s;

MirrorBench& bench()
{
    static MirrorBench instance;
    return instance;
}

/// Nobody of the mirror wrote as much, so every so-and-so-many-th message of it becomes one person's, who writes on
/// two channels. The two of them share no message.
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

/// The very statement, through the C interface alone.
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

/// What the words of the screen cost on top.
void threadInWords(benchmark::State& state)
{
    const QList<ThreadItem> items = ThreadBuilder::build(thread(), 0);
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
        model.assign(threadRows(ThreadBuilder::build(messages, 0), {}));
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
        search.start(rareWord, 60, [&](const FoundMessages&) { found = true; });
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

/// Pieces of 3 to 20 characters: every other one of some message, the rest with a letter that no message holds.
QStringList seededPieces(LocalDB& db, int count)
{
    std::mt19937 random(7);
    const QStringList bodies
        = db.rows("SELECT body FROM unified_message WHERE rowid % 97 = 0 AND length(body) > 25 AND "
                  "body NOT LIKE '%!%%' ESCAPE '!' AND body NOT LIKE '%!_%' ESCAPE '!';",
            {}, [](const SqlRow& row) { return row.text(0); });
    QStringList pieces;
    while (pieces.size() < count) {
        const QString& body = bodies.at(qsizetype(random() % size_t(bodies.size())));
        const qsizetype length = 3 + qsizetype(random() % 18);
        QString piece = body.mid(qsizetype(random() % size_t(body.size() - length + 1)), length);
        if (pieces.size() % 2 == 1)
            piece[qsizetype(random() % size_t(length))] = u'ŋ';
        pieces.append(piece);
    }
    return pieces;
}

/// 10,000 searches by the index, once it is built. Every 1000th is compared with the statement's rows.
void searchesByIndex(benchmark::State& state)
{
    LocalDB& db = bench().store();
    const auto never = std::make_shared<std::atomic<bool>>(false);
    const QString path = SearchIndex::pathBeside(db.path());
    QElapsedTimer time;
    time.start();
    {
        SearchIndex index(path, never);
        const auto reader = SqlConnection::reader(db.path(), never);
        while (!index.advance(*reader, {}).complete) { }
    }
    state.counters["build, s"] = double(time.elapsed()) / 1e3;
    state.counters["file, MB"] = double(QFileInfo(path).size()) / 1e6;
    const QStringList pieces = seededPieces(db, 10'000);
    for (auto _ : state) {
        std::vector<double> taken;
        for (const QString& piece : pieces) {
            time.start();
            const auto found = searchByIndex(
                *SqlConnection::reader(db.path(), never), *SqlConnection::reader(path, never), piece, 60, {});
            taken.push_back(double(time.nsecsElapsed()) / 1e6);
            if (!found || (taken.size() % 1000 == 0 && *found != searchMessages(db, piece, 60)))
                state.SkipWithError("other rows than the statement's");
        }
        std::ranges::sort(taken);
        state.counters["p50, ms"] = taken.at(taken.size() / 2);
        state.counters["p99, ms"] = taken.at(taken.size() * 99 / 100);
        state.counters["longest, ms"] = taken.back();
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
BENCHMARK(searchFromTheWindow)->Name("rare word/corvane")->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();
BENCHMARK(searchesByIndex)->Name("10000 searches by the index")->Unit(benchmark::kMillisecond)->Iterations(1);
BENCHMARK(searchBare)->Name("rare word/bare")->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();

}

}

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    corvane::bench::bench(); // made before the clock runs
    return corvane::bench::runAgainstRivals(argc, argv);
}
