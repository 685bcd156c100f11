#include "BareStatement.h"
#include "Mirror.h"
#include "Rivals.h"

#include "Foundation/Ids.h"
#include "Foundation/NotificationCentre.h"
#include "Foundation/SystemScheduler.h"
#include "Foundation/UserDefaults.h"
#include "Store/InboxQueries.h"
#include "Store/IngestQueries.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <vector>

namespace corvane::bench {

namespace {

/// What the store was seen to run, so that the rival runs the very same texts.
QList<QByteArray> tracedStatements;

int traceConnection(sqlite3* db, char**, const void*)
{
    const auto onStatement = [](unsigned, void*, void* statement, void*) {
        tracedStatements.append(sqlite3_sql(static_cast<sqlite3_stmt*>(statement)));
        return 0;
    };
    return sqlite3_trace_v2(db, SQLITE_TRACE_STMT, onStatement, nullptr);
}

/// A copy of the mirror under the store, and a second connection to it through the C interface alone.
class Bench {
public:
    Bench()
    {
        const QString path = m_folder.filePath(QStringLiteral("mirror.db"));
        QFile::copy(sharedMirror(QStringLiteral(CORVANE_MIRROR_FOLDER)), path);
        m_store = open(path);
        sqlite3_open(path.toUtf8().constData(), &m_bare);
        for (const char* pragma : { "PRAGMA busy_timeout=5000;", "PRAGMA foreign_keys=ON;" })
            sqlite3_exec(m_bare, pragma, nullptr, nullptr, nullptr);
        learnStatements(path);
        m_handles = m_store->rows("SELECT external_id FROM unified_conversation WHERE channel='WHATSAPP' AND "
                                  "account_id='main' ORDER BY last_ts DESC LIMIT 2000;",
            {}, [](const SqlRow& row) { return row.text(0); });
    }
    ~Bench() { sqlite3_close(m_bare); }

    LocalDB& store() { return *m_store; }
    sqlite3* bare() { return m_bare; }
    const QByteArray& contactsStatement() const { return m_contacts; }
    const QList<QByteArray>& ingestStatements() const { return m_ingest; }

    /// A live message as an engine tells it: somebody who is known already writes something new.
    IncomingMessage nextMessage()
    {
        ++m_messages;
        IncomingMessage message;
        message.conversationExternalId = m_handles[m_messages * 7919 % m_handles.size()];
        message.providerMsgId = QStringLiteral("LIVE%1").arg(m_messages);
        message.body = QStringLiteral("See you tomorrow at the usual place, thanks for the invoice");
        message.ts = m_scheduler.nowMs();
        message.conversationTitle = QStringLiteral("Person %1").arg(m_messages % 500);
        message.sender = message.conversationTitle;
        return message;
    }

private:
    std::unique_ptr<LocalDB> open(const QString& path)
    {
        return std::make_unique<LocalDB>(
            path, LocalDB::SchemaFolders { resourceFolder(), {} }, m_scheduler, m_defaults, m_centre);
    }

    void learnStatements(const QString& path)
    {
        sqlite3_auto_extension(reinterpret_cast<void (*)()>(traceConnection));
        const auto traced = open(path);
        sqlite3_reset_auto_extension();
        tracedStatements.clear();
        fetchContacts(*traced, InboxFilter::All, {}, 300);
        m_contacts = tracedStatements.last();
        for (const char* providerId : { "first", "second" }) { // the second finds its conversation linked
            tracedStatements.clear();
            IncomingMessage message;
            message.conversationExternalId = QStringLiteral("learn");
            message.providerMsgId = QString::fromUtf8(providerId);
            raiseUnread(*traced, storeMessage(*traced, QStringLiteral("WHATSAPP"), QStringLiteral("main"), message));
        }
        for (const QByteArray& sql : std::as_const(tracedStatements)) {
            if (sql.startsWith("INSERT") || sql.startsWith("UPDATE"))
                m_ingest.append(sql);
        }
    }

    QTemporaryDir m_folder; // under TMPDIR, which tells the disk that is measured
    SystemScheduler m_scheduler;
    UserDefaults m_defaults { m_folder.filePath(QStringLiteral("defaults.ini")) };
    NotificationCentre m_centre;
    std::unique_ptr<LocalDB> m_store;
    sqlite3* m_bare = nullptr;
    QByteArray m_contacts;
    QList<QByteArray> m_ingest;
    QStringList m_handles;
    qsizetype m_messages = 0;
};

Bench& bench()
{
    static Bench instance;
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

void ingestByStore(benchmark::State& state)
{
    for (auto _ : state) {
        const IncomingMessage message = bench().nextMessage();
        raiseUnread(bench().store(),
            storeMessage(bench().store(), QStringLiteral("WHATSAPP"), QStringLiteral("main"), message));
    }
    state.SetItemsProcessed(state.iterations());
}

enum class Prepare { EachTime, Once };

/// The rival knows everything beforehand and only runs the statements: prepared each time, as the store does,
/// or once and for all.
void ingestBare(benchmark::State& state, Prepare prepare)
{
    const QList<QByteArray>& texts = bench().ingestStatements();
    if (texts.size() != 5)
        qFatal("a live message takes five statements, not %d", static_cast<int>(texts.size()));
    std::vector<BareStatement> prepared;
    for (const QByteArray& sql : texts)
        prepared.emplace_back(bench().bare(), sql);
    const auto run = [&](qsizetype index, const auto&... values) {
        if (prepare == Prepare::Once)
            return prepared[static_cast<std::size_t>(index)].run(values...);
        BareStatement(bench().bare(), texts[index]).run(values...);
    };
    for (auto _ : state) {
        const IncomingMessage message = bench().nextMessage();
        const QByteArray handle = message.conversationExternalId.toUtf8();
        const QByteArray title = message.conversationTitle->toUtf8();
        const QByteArray body = message.body.toUtf8();
        const QByteArray providerId = message.providerMsgId.toUtf8();
        const QByteArray conversation = "wa:main:" + handle;
        const QByteArray contact = "ct:WHATSAPP:" + handle;
        const QByteArray identity = "id:WHATSAPP:" + handle;
        const QByteArray id = "wa:msg:" + providerId;
        const qint64 now = message.ts;
        run(0, conversation, "local", "WHATSAPP", "main", handle, title, now, now);
        run(1, contact, "local", title, now);
        run(2, identity, "local", contact, "WHATSAPP", handle, nullptr, "34600", now);
        run(3, id, "local", conversation, "IN", body, title, now, providerId, nullptr, nullptr, "local", now);
        run(4, conversation);
    }
    state.SetItemsProcessed(state.iterations());
}

BENCHMARK(fetchContactsByStore)->Name("fetchContacts/corvane")->Unit(benchmark::kMillisecond);
BENCHMARK(fetchContactsBare)->Name("fetchContacts/bare")->Unit(benchmark::kMillisecond);
BENCHMARK(ingestByStore)->Name("ingest/corvane")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(ingestBare, each, Prepare::EachTime)
    ->Name("ingest/bare")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(ingestBare, once, Prepare::Once)
    ->Name("ingest/bare, prepared once")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

}

}

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    corvane::bench::bench(); // made before the clock runs
    return corvane::bench::runAgainstRivals(argc, argv);
}
