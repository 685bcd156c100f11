// How fast live messages become rows, beside the bare C interface of SQLite, and how the event loop fares while a
// hundred engines crash at once and again.

#include "Engines/EngineManager.h"
#include "Foundation/SystemScheduler.h"
#include "Platform/Linux/LinuxPlatform.h"
#include "Support/PlayedEngine.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <sqlite3.h>

using namespace corvane;

namespace {

constexpr int messagesPerRound = 50;

/// Where the database lies: on the disk, whose waits both sides share, or in memory, where only the program's own
/// work counts.
QTemporaryDir databaseFolder(const benchmark::State& state)
{
    return QTemporaryDir(state.range(0) == 0 ? QDir::tempPath() + QStringLiteral("/corvane-XXXXXX")
                                             : QStringLiteral("/dev/shm/corvane-XXXXXX"));
}

QString messageLine(int number, const QString& direction)
{
    return QStringLiteral(
        "@@CORVANE@@{\"type\":\"message\",\"convExternalId\":\"346%1@s.whatsapp.net\",\"body\":"
        "\"See you tomorrow at the usual place, number %2\",\"providerMsgId\":\"3EB0%2\",\"direction\":\"%3\","
        "\"ts\":%4,\"convTitle\":\"Ana Ruiz %1\",\"sender\":\"Ana\"}\n")
        .arg(number % 200)
        .arg(number)
        .arg(direction)
        .arg(1'760'000'000'000 + number);
}

/// Lines as an engine prints them become rows, through the event loop.
void ingest(benchmark::State& state, const QString& direction)
{
    int number = 0;
    const QTemporaryDir folder = databaseFolder(state);
    SystemScheduler scheduler;
    PlayedEngine engine(scheduler, folder.filePath(QStringLiteral("nimblocal.db")));
    for (auto _ : state) {
        const qint64 target = engine.engines().inboxRevision() + messagesPerRound;
        QString chunk;
        for (int i = 0; i < messagesPerRound; ++i)
            chunk += messageLine(number++, direction);
        engine.print(chunk);
        while (engine.engines().inboxRevision() < target)
            QCoreApplication::processEvents(QEventLoop::AllEvents);
    }
    state.SetItemsProcessed(state.iterations() * messagesPerRound);
}

void ingestIncoming(benchmark::State& state)
{
    ingest(state, QStringLiteral("IN"));
}

void ingestOutgoing(benchmark::State& state)
{
    ingest(state, QStringLiteral("OUT"));
}

/// The five statements of a message, by the bare C interface.
class BareIngest {
public:
    enum class Statements { PreparedEachTime, PreparedOnce };

    BareIngest(const QString& path, Statements statements)
        : m_statements(statements)
    {
        sqlite3_open(path.toUtf8().constData(), &m_db);
        sqlite3_exec(m_db, "PRAGMA journal_mode=WAL;PRAGMA busy_timeout=5000;PRAGMA foreign_keys=ON;", nullptr, nullptr,
            nullptr);
    }
    ~BareIngest()
    {
        for (sqlite3_stmt* statement : m_prepared)
            sqlite3_finalize(statement);
        sqlite3_close(m_db);
    }
    BareIngest(const BareIngest&) = delete;
    BareIngest& operator=(const BareIngest&) = delete;

    void store(int number)
    {
        const std::string handle = "346" + std::to_string(number % 200) + "@s.whatsapp.net";
        const std::string title = "Ana Ruiz " + std::to_string(number % 200);
        const std::string conversation = "wa:bare:" + handle;
        const std::string contact = "ct:WHATSAPP:" + handle;
        const std::string provider = "3EB0" + std::to_string(number);
        const std::string body = "See you tomorrow at the usual place, number " + std::to_string(number);
        const sqlite3_int64 ts = 1'760'000'000'000 + number;
        const std::string digits = handle.substr(0, handle.find('@'));
        run(0, [&](sqlite3_stmt* s) {
            texts(s, { conversation, "local", "WHATSAPP", "bare", handle, title });
            sqlite3_bind_int64(s, 7, ts);
            sqlite3_bind_int64(s, 8, ts);
        });
        run(1, [&](sqlite3_stmt* s) {
            texts(s, { contact, "local", title });
            sqlite3_bind_int64(s, 4, ts);
        });
        run(2, [&](sqlite3_stmt* s) {
            texts(s, { "id:WHATSAPP:" + handle, "local", contact, "WHATSAPP", handle });
            text(s, 7, digits);
            sqlite3_bind_int64(s, 8, ts);
        });
        run(3, [&](sqlite3_stmt* s) { texts(s, { contact, conversation }); });
        run(4, [&](sqlite3_stmt* s) {
            texts(s, { "wa:msg:" + provider, "local", conversation, "OUT", body, "Ana" });
            sqlite3_bind_int64(s, 7, ts);
            text(s, 8, provider);
            text(s, 11, "local");
            sqlite3_bind_int64(s, 12, ts);
        });
    }

private:
    static void text(sqlite3_stmt* statement, int index, const std::string& value)
    {
        sqlite3_bind_text(statement, index, value.c_str(), -1, SQLITE_TRANSIENT);
    }
    static void texts(sqlite3_stmt* statement, std::initializer_list<std::string> values)
    {
        int index = 0;
        for (const std::string& value : values)
            text(statement, ++index, value);
    }

    template <typename Bind> void run(size_t which, Bind bind)
    {
        static constexpr std::array statements {
            "INSERT INTO unified_conversation(id, workspace_id, channel, account_id, external_id, title, last_ts, "
            "unread, "
            "updated_at) VALUES(?,?,?,?,?,?,?,0,?) ON CONFLICT(id) DO UPDATE SET title=COALESCE(excluded.title, "
            "unified_conversation.title), last_ts=MAX(unified_conversation.last_ts, excluded.last_ts), "
            "updated_at=excluded.updated_at;",
            "INSERT INTO contact(id, workspace_id, display_name, updated_at) VALUES(?,?,?,?) ON CONFLICT(id) DO UPDATE "
            "SET "
            "display_name=COALESCE(NULLIF(excluded.display_name,''), contact.display_name), "
            "updated_at=excluded.updated_at;",
            "INSERT INTO contact_identity(id, workspace_id, contact_id, channel, handle, email, phone, updated_at) "
            "VALUES(?,?,?,?,?,?,?,?) ON CONFLICT(id) DO UPDATE SET email=COALESCE(excluded.email, "
            "contact_identity.email), "
            "phone=COALESCE(excluded.phone, contact_identity.phone), updated_at=excluded.updated_at;",
            "UPDATE unified_conversation SET contact_id=? WHERE id=?;",
            "INSERT INTO unified_message(id, workspace_id, conversation_id, direction, body, sender, ts, "
            "provider_msg_id, "
            "media_type, media_path, source, updated_at) VALUES(?,?,?,?,?,?,?,?,?,?,?,?) ON CONFLICT(id) DO UPDATE SET "
            "body=excluded.body, media_type=COALESCE(excluded.media_type, unified_message.media_type), "
            "media_path=COALESCE(excluded.media_path, unified_message.media_path), "
            "source=COALESCE(unified_message.source, excluded.source), updated_at=excluded.updated_at;",
        };
        sqlite3_stmt*& kept = m_prepared[which];
        if (!kept)
            sqlite3_prepare_v2(m_db, statements[which], -1, &kept, nullptr);
        bind(kept);
        if (sqlite3_step(kept) != SQLITE_DONE)
            std::abort();
        if (m_statements == Statements::PreparedOnce)
            sqlite3_reset(kept);
        else
            sqlite3_finalize(std::exchange(kept, nullptr));
    }

    Statements m_statements;
    sqlite3* m_db = nullptr;
    std::array<sqlite3_stmt*, 5> m_prepared {};
};

void bare(benchmark::State& state, BareIngest::Statements statements)
{
    int number = 0;
    const QTemporaryDir folder = databaseFolder(state);
    const QString path = folder.filePath(QStringLiteral("nimblocal.db"));
    {
        SystemScheduler scheduler;
        PlayedEngine schema(scheduler, path);
    }
    BareIngest rival(path, statements);
    for (auto _ : state) {
        for (int i = 0; i < messagesPerRound; ++i)
            rival.store(number++);
    }
    state.SetItemsProcessed(state.iterations() * messagesPerRound);
}

void bareIngest(benchmark::State& state)
{
    bare(state, BareIngest::Statements::PreparedEachTime);
}

void bareIngestPreparedOnce(benchmark::State& state)
{
    bare(state, BareIngest::Statements::PreparedOnce);
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

BENCHMARK(bareIngest)->ArgName("memory")->Arg(0)->Arg(1)->MinTime(1)->Unit(benchmark::kMillisecond);
BENCHMARK(bareIngestPreparedOnce)->ArgName("memory")->Arg(0)->Arg(1)->MinTime(1)->Unit(benchmark::kMillisecond);
BENCHMARK(ingestOutgoing)->ArgName("memory")->Arg(0)->Arg(1)->MinTime(1)->Unit(benchmark::kMillisecond);
BENCHMARK(ingestIncoming)->ArgName("memory")->Arg(0)->Arg(1)->MinTime(1)->Unit(benchmark::kMillisecond);
BENCHMARK(crashStorm)->Iterations(1)->Unit(benchmark::kMillisecond);

}

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
