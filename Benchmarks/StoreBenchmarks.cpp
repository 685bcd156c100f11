#include "MirrorBench.h"
#include "Rivals.h"

#include "CRM/MergeSuggestions.h"
#include "Store/Core/Salvage.h"
#include "Store/Messages/InboxQueries.h"

#include <QCoreApplication>
#include <QFile>
#include <benchmark/benchmark.h>

namespace corvane::bench {

namespace {

MirrorBench& bench()
{
    static MirrorBench instance;
    return instance;
}

void fetchContactsByStore(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(fetchContacts(bench().store(), InboxFilter::All, {}, 300));
}

void fetchContactsBare(benchmark::State& state)
{
    for (auto _ : state) {
        BareStatement statement(bench().bare(), bench().contactsStatement());
        for (bool row = statement.step("local", "", "", qint64(300)); row; row = statement.step()) {
            for (int column = 0; column < 10; ++column)
                benchmark::DoNotOptimize(sqlite3_column_text(statement.get(), column));
        }
    }
}

void suggestedMergesByStore(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(suggestedMerges(bench().store(), 20));
}

void suggestedMergesOfOneByStore(benchmark::State& state)
{
    const QString anybody = fetchContacts(bench().store(), InboxFilter::All, {}, 1).first().id;
    for (auto _ : state)
        benchmark::DoNotOptimize(suggestedMerges(bench().store(), 20, anybody));
}

/// Only reads the data for the suggestions.
void suggestedMergesBare(benchmark::State& state)
{
    const auto read = [](const QByteArray& sql, int columns) {
        BareStatement statement(bench().bare(), sql);
        for (bool row = statement.step("local"); row; row = statement.step()) {
            for (int column = 0; column < columns; ++column)
                benchmark::DoNotOptimize(sqlite3_column_text(statement.get(), column));
        }
    };
    for (auto _ : state) {
        read("SELECT ct.id, COALESCE(ct.display_name,''), (SELECT COUNT(*) FROM unified_conversation c WHERE "
             "c.contact_id=ct.id AND c.deleted_at IS NULL) FROM contact ct WHERE ct.workspace_id=? AND ct.deleted_at "
             "IS NULL;",
            3);
        for (const QByteArray& field : { QByteArray("email"), QByteArray("phone") })
            read("SELECT a.contact_id, b.contact_id FROM contact_identity a JOIN contact_identity b ON a." + field
                    + "=b." + field + " AND a.contact_id<b.contact_id WHERE a.workspace_id=? AND a." + field
                    + " IS NOT NULL AND a." + field + "!='' AND a.deleted_at IS NULL AND b.deleted_at IS NULL;",
                2);
    }
}

/// The mirror with one damaged page per 8 MB, recovered to a new file; "lost" is the share of messages not recovered.
void salvagedMirror(benchmark::State& state)
{
    LocalDB& store = bench().store();
    const auto messages = store.scalar("SELECT COUNT(*) FROM unified_message;").value_or(QString()).toDouble();
    store.exec(u"PRAGMA wal_checkpoint(TRUNCATE);"_s);
    const QString damaged = bench().path() + u".damaged"_s;
    const QString saved = bench().path() + u".new"_s;
    QFile::copy(bench().path(), damaged);
    QFile file(damaged);
    (void)file.open(QIODevice::ReadWrite);
    for (qint64 at = 8 << 20; at < file.size(); at += 8 << 20) {
        file.seek(at);
        file.write(QByteArray(4096, '\xa5'));
    }
    file.close();
    for (auto _ : state) {
        state.PauseTiming();
        QFile::remove(saved);
        store.makeEmpty(saved);
        state.ResumeTiming();
        SalvageProgress progress;
        if (const auto result = salvage(damaged, saved, progress); !result)
            state.SkipWithError(result.error().message.toUtf8().constData());
    }
    const auto reader = SqlConnection::reader(saved, std::make_shared<std::atomic<bool>>(false));
    const auto kept = reader->firstRow(
        u"SELECT COUNT(*) FROM unified_message;"_s, {}, [](const SqlRow& row) { return double(row.integer(0)); });
    state.counters["lost"] = 1 - kept.value_or(0) / messages;
    QFile::remove(damaged);
    QFile::remove(saved);
}

BENCHMARK(salvagedMirror)->Name("damaged mirror/saved")->Unit(benchmark::kSecond)->Iterations(1)->UseRealTime();
BENCHMARK(fetchContactsByStore)->Name("fetchContacts/corvane")->Unit(benchmark::kMillisecond);
BENCHMARK(fetchContactsBare)->Name("fetchContacts/bare")->Unit(benchmark::kMillisecond);
BENCHMARK(suggestedMergesByStore)->Name("suggestedMerges/corvane")->Unit(benchmark::kMillisecond);
BENCHMARK(suggestedMergesOfOneByStore)->Name("suggestedMerges/of one")->Unit(benchmark::kMillisecond);
BENCHMARK(suggestedMergesBare)->Name("suggestedMerges/bare, reading")->Unit(benchmark::kMillisecond);

}

}

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    corvane::bench::bench(); // created before the clock starts
    return corvane::bench::runAgainstRivals(argc, argv);
}
