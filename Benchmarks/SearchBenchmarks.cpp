#include "Foundation/Literals.h"
#include "Mirror.h"
#include "MirrorBench.h"
#include "Rivals.h"

#include "Store/Search/IndexedSearch.h"
#include "Store/Search/MessageSearch.h"
#include "Store/Search/RecordQueries.h"
#include "Store/Search/SearchIndex.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <ctime>
#include <random>
#include <string>

namespace corvane::bench {

namespace {

const QString rareWord = u"zebra crossing"_s;

MirrorBench& bench()
{
    static MirrorBench instance;
    return instance;
}

/// A word that occurs nowhere: the whole mirror is read, while the main thread runs its event loop.
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

/// Up to its last row.
void runBare(BareStatement& statement, const QString& words)
{
    const QByteArray pattern = "%" + words.toUtf8() + "%";
    for (bool row = statement.step(pattern, pattern, pattern, qint64(60)); row; row = statement.step()) { }
    sqlite3_reset(statement.get());
}

BareStatement bareSearch()
{
    return { bench().bare(), bench().statementOf([](LocalDB& db) { searchMessages(db, rareWord, 60); }) };
}

void searchBare(benchmark::State& state)
{
    BareStatement statement = bareSearch();
    for (auto _ : state)
        runBare(statement, rareWord);
}

/// Pieces of 3 to 20 characters: every other one from some message, the rest with a letter that no message contains.
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

/// Measures each search, in wall-clock and in processor time; the latter is more meaningful on a busy machine.
class Stopwatch {
public:
    void start()
    {
        m_cpuStart = cpuMs();
        m_wall.start();
    }
    void stop()
    {
        m_wallMs.push_back(double(m_wall.nsecsElapsed()) / 1e6);
        m_cpuMs.push_back(cpuMs() - m_cpuStart);
    }
    std::size_t count() const { return m_wallMs.size(); }

    /// In milliseconds.
    void report(benchmark::State& state)
    {
        for (auto& [name, taken] : { std::pair("", &m_wallMs), std::pair("cpu ", &m_cpuMs) }) {
            std::ranges::sort(*taken);
            state.counters[name + std::string("p50")] = taken->at(taken->size() / 2);
            state.counters[name + std::string("p99")] = taken->at(taken->size() * 99 / 100);
        }
    }

private:
    static double cpuMs()
    {
        timespec now {};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
        return double(now.tv_sec) * 1e3 + double(now.tv_nsec) / 1e6;
    }

    QElapsedTimer m_wall;
    double m_cpuStart = 0;
    std::vector<double> m_wallMs;
    std::vector<double> m_cpuMs;
};

/// Searches for each of `queries` on separate connections. Compares the first of every thousand with the statement's
/// rows.
void runByIndex(benchmark::State& state, const QList<SearchQuery>& queries)
{
    LocalDB& db = bench().store();
    const auto never = std::make_shared<std::atomic<bool>>(false);
    const QString path = SearchIndex::pathBeside(db.path());
    for (auto _ : state) {
        Stopwatch watch;
        for (const SearchQuery& query : queries) {
            watch.start();
            const auto database = SqlConnection::reader(db.path(), never);
            const auto found = searchByIndex(*database, *SqlConnection::reader(path, never), query, 60, {});
            const QList<MessageHit> hits = found ? *found : searchMessages(*database, query, 60);
            watch.stop();
            if (watch.count() % 1000 == 1 && hits != searchMessages(db, query, 60))
                state.SkipWithError("other rows than the statement's");
        }
        watch.report(state);
    }
}

void build(const QString& path)
{
    const auto never = std::make_shared<std::atomic<bool>>(false);
    SearchIndex index(path, never);
    const auto reader = SqlConnection::reader(bench().path(), never);
    while (!index.advance(*reader, {}).complete) { }
}

/// Built once for all runs and kept beside the shared mirror.
void haveIndex()
{
    const QString kept = SearchIndex::pathBeside(sharedMirror(QStringLiteral(CORVANE_MIRROR_FOLDER)));
    const QString path = SearchIndex::pathBeside(bench().path());
    QFile::copy(kept, path);
    build(path); // does nothing if it is complete and has the current format
    QFile::remove(kept);
    QFile::copy(path, kept);
}

void buildIndex(benchmark::State& state)
{
    const QString path = bench().path() + u"-another"_s;
    for (auto _ : state) {
        SearchIndex::remove(path);
        build(path);
    }
    state.counters["file, MB"] = double(QFileInfo(path).size()) / 1e6;
    SearchIndex::remove(path);
}

void searchesByIndex(benchmark::State& state)
{
    QList<SearchQuery> queries;
    for (const QString& piece : seededPieces(bench().store(), 10'000))
        queries.append(piece);
    runByIndex(state, queries);
}

/// Some of the same pieces.
void searchesBare(benchmark::State& state)
{
    BareStatement statement = bareSearch();
    for (auto _ : state) {
        Stopwatch watch;
        for (const QString& piece : seededPieces(bench().store(), 40)) {
            watch.start();
            runBare(statement, piece);
            watch.stop();
        }
        watch.report(state);
    }
}

/// A condition that narrows the search, with a number that differs each time, and a piece of some message or none.
enum class With { Nothing, Piece };
void narrowedSearches(benchmark::State& state, const QString& narrowing, With with)
{
    constexpr int searches = 200;
    const QStringList pieces = seededPieces(bench().store(), searches);
    std::mt19937 random(11);
    QList<SearchQuery> queries;
    for (const QString& piece : pieces) {
        QString typed = narrowing;
        typed.replace(u"NNNNN"_s, QString::number(10'000 + random() % 10'000));
        typed.replace(u"NNN"_s, QString::number(100 + random() % 100));
        queries.append(parseSearch(typed + (with == With::Piece ? u' ' + piece : QString()), QDate(2025, 10, 9)));
    }
    runByIndex(state, queries);
}

void registerNarrowedSearches()
{
    for (const auto& narrowing : { u"from:\"Person NNNNN of\""_s, u"from:\"Person NNN\""_s, u"from:\"Person 1\""_s,
             u"from:me"_s, u"in:\"Person NNNNN of\""_s, u"in:email"_s, u"has:image"_s, u"has:video"_s, u"has:link"_s,
             u"before:2024-06"_s, u"after:2025-06"_s }) {
        for (const With with : { With::Nothing, With::Piece }) {
            const QString name = narrowing + (with == With::Piece ? u" and words"_s : QString());
            benchmark::RegisterBenchmark(name.toUtf8().constData(),
                [narrowing, with](benchmark::State& state) { narrowedSearches(state, narrowing, with); })
                ->Unit(benchmark::kMillisecond)
                ->Iterations(1)
                ->Repetitions(1);
        }
    }
}

/// Years of other records: 500 hours of calls, and notes, deals, tasks, events and work by the ten thousands.
void addRecords(LocalDB& db)
{
    static bool added = false;
    if (std::exchange(added, true))
        return;
    const QString rows = u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<%1), "
                         "p(i, body) AS (SELECT rowid, body FROM unified_message WHERE rowid<=20000) "_s;
    for (const auto& [count, insert] : std::initializer_list<std::pair<int, QString>> {
             { 1000,
                 u"INSERT INTO call_recording(id, title, started_at, created_at, updated_at) "
                 "SELECT 'c'||n.i, 'Call '||body, n.i, 1, 1 FROM n JOIN p USING(i);"_s },
             { 1000,
                 u"INSERT INTO call_transcript(id, call_id, segment_index, text, created_at, updated_at) SELECT "
                 "'t'||n.i, 'c'||n.i, 0, (SELECT group_concat(body, ' ') FROM unified_message m WHERE m.rowid BETWEEN "
                 "n.i*19 AND n.i*19+400), 1, 1 FROM n;"_s },
             { 20'000,
                 u"INSERT INTO contact_note(id, contact_id, body, ts, updated_at) "
                 "SELECT 'n'||n.i, 'nobody', body, n.i, 1 FROM n JOIN p USING(i);"_s },
             { 10'000, u"INSERT INTO crm_deal(id, name) SELECT 'd'||n.i, body FROM n JOIN p USING(i);"_s },
             { 20'000, u"INSERT INTO crm_task(id, title) SELECT 't'||n.i, body FROM n JOIN p USING(i);"_s },
             { 10'000,
                 u"INSERT INTO calendar_event(id, workspace_id, title, start_ms, end_ms, notes, updated_at) "
                 "SELECT 'e'||n.i, 'local', 'Event '||n.i, n.i, n.i+1, body, 1 FROM n JOIN p USING(i);"_s },
             { 20'000,
                 u"INSERT INTO work_item(id, module, title, summary) "
                 "SELECT 'w'||n.i, 'ops', 'Item '||n.i, body FROM n JOIN p USING(i);"_s } })
        db.run(rows.arg(count) + insert);
}

void recordSearches(benchmark::State& state)
{
    LocalDB& db = bench().store();
    addRecords(db);
    const auto never = std::make_shared<std::atomic<bool>>(false);
    const QStringList pieces = seededPieces(db, 1000);
    for (auto _ : state) {
        Stopwatch watch;
        for (const QString& piece : pieces) {
            watch.start();
            benchmark::DoNotOptimize(
                findRecords(*SqlConnection::reader(db.path(), never), piece, { u"local"_s, 5000, 6 }));
            watch.stop();
        }
        watch.report(state);
    }
}

/// Only the texts, through the C interface.
void recordsBare(benchmark::State& state)
{
    addRecords(bench().store());
    std::vector<BareStatement> statements;
    for (const char* from : { "title FROM call_recording WHERE title", "text FROM call_transcript WHERE text",
             "body FROM contact_note WHERE body", "name FROM crm_deal WHERE name", "title FROM crm_task WHERE title",
             "notes FROM calendar_event WHERE notes", "summary FROM work_item WHERE summary" })
        statements.emplace_back(bench().bare(), QByteArray("SELECT ") + from + " LIKE ? LIMIT 6;");
    const QStringList pieces = seededPieces(bench().store(), 1000);
    for (auto _ : state) {
        Stopwatch watch;
        for (const QString& piece : pieces) {
            watch.start();
            const QByteArray pattern = '%' + piece.toUtf8() + '%';
            for (BareStatement& statement : statements) {
                for (bool row = statement.step(pattern); row; row = statement.step()) { }
                sqlite3_reset(statement.get());
            }
            watch.stop();
        }
        watch.report(state);
    }
}

void once(benchmark::internal::Benchmark* each)
{
    each->Unit(benchmark::kMillisecond)->Iterations(1)->Repetitions(1);
}

BENCHMARK(searchFromTheWindow)->Name("rare word/corvane")->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();
BENCHMARK(searchBare)->Name("rare word/bare")->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();
BENCHMARK(buildIndex)->Name("search index built")->Apply(once);
BENCHMARK(searchesByIndex)->Name("10000 searches by the index")->Apply(once);
BENCHMARK(searchesBare)->Name("40 searches by the bare statement")->Apply(once);
BENCHMARK(recordSearches)->Name("1000 searches of records/corvane")->Apply(once);
BENCHMARK(recordsBare)->Name("1000 searches of records/bare")->Apply(once);

}

}

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    corvane::bench::haveIndex(); // before the clock starts
    corvane::bench::registerNarrowedSearches();
    return corvane::bench::runAgainstRivals(argc, argv);
}
