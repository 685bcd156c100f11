#include "BareStatement.h"
#include "Foundation/Literals.h"
#include "Rivals.h"

#include "AI/AIServices.h"
#include "Foundation/NotificationCentre.h"
#include "Foundation/UserDefaults.h"
#include "Platform/AppPaths.h"
#include "Platform/Linux/Services.h"
#include "Platform/MachineFacts.h"
#include "Platform/SystemLanguageModel.h"
#include "Platform/ToolRunner.h"
#include "Store/Core/LocalDB.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Work/WorkWrites.h"
#include "Support/FakeDesktop.h"
#include "Support/Places.h"
#include "Support/VirtualScheduler.h"
#include "Work/OpsHub.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace corvane::bench {

namespace {

constexpr int contexts = 500;
constexpr int items = 10'000;
constexpr int messages = 20'000;
constexpr int decisions = 2'000;

/// The ops hub over 500 contexts, of which one holds a tenth of everything.
class Bench {
public:
    Bench()
    {
        m_db.exec(u"BEGIN;"_s);
        const auto insert = [this](const char* sql, int count, const std::function<QList<SqlValue>(int)>& values) {
            for (int at = 0; at < count; ++at)
                m_db.run(QString::fromLatin1(sql), values(at));
        };
        const auto contextOf = [](int at) {
            return u"ctx:%1"_s.arg(at % 10 == 0 ? 0 : at % contexts);
        };
        const auto time = [](int at) {
            return isoTime(1'763'000'000'000 + at * 1000LL);
        };
        insert("INSERT INTO work_context(id, module, slug, title, updated_at) VALUES(?,'ops',?,?,?);", contexts,
            [&](int at) {
                const QString name = u"ctx:%1"_s.arg(at);
                return QList<SqlValue> { name, name, u"Process %1"_s.arg(at), time(contexts - at) };
            });
        const QStringList statuses { u"open"_s, u"in_progress"_s, u"waiting"_s, u"done"_s };
        insert(
            "INSERT INTO work_item(id, context_id, module, kind, title, status, priority, owner, summary, updated_at) "
            "VALUES(?,?,'ops','task',?,?,'normal',?,'What there is to do, in one sentence.',?);",
            items, [&](int at) {
                return QList<SqlValue> { u"item:%1"_s.arg(at), contextOf(at), u"Item %1"_s.arg(at), statuses.at(at % 4),
                    u"Owner %1"_s.arg(at % 7), time(at) };
            });
        insert("INSERT INTO work_message(id, context_id, module, speaker, role, kind, body, status, created_at) "
               "VALUES(?,?,'ops','Agent','agent','message','Something that an agent says, of the usual length.',"
               "'posted',?);",
            messages, [&](int at) { return QList<SqlValue> { u"msg:%1"_s.arg(at), contextOf(at), time(at) }; });
        insert(
            "INSERT INTO work_decision(id, context_id, module, title, status, proposal, risk, created_at, updated_at) "
            "VALUES(?,?,'ops',?,?,'Hold it.','money',?,?);",
            decisions, [&](int at) {
                return QList<SqlValue> { u"dec:%1"_s.arg(at), contextOf(at), u"Review Item %1"_s.arg(at),
                    at % 5 ? u"approved"_s : u"proposed"_s, time(at), time(at) };
            });
        m_db.exec(u"COMMIT;"_s);
        sqlite3_open(m_db.path().toUtf8().constData(), &m_bare);
        m_db.watch().start();
        m_hub.shell()->setShown(true);
    }
    ~Bench() { sqlite3_close(m_bare); }

    WorkModuleShell& shell() { return *m_hub.shell(); }
    LocalDB& db() { return m_db; }
    sqlite3* bare() { return m_bare; }
    VirtualScheduler& clock() { return m_clock; }

private:
    QTemporaryDir m_folder;
    VirtualScheduler m_clock;
    UserDefaults m_defaults { m_folder.filePath(u"defaults.ini"_s) };
    NotificationCentre m_centre;
    LocalDB m_db { m_folder.filePath(u"work.db"_s), { QStringLiteral(CORVANE_SOURCE), m_folder.path() }, m_clock,
        m_defaults, m_centre };
    const std::unique_ptr<MachineFacts> m_machine = makeMachineFacts(AppPaths::fromEnvironment());
    const std::unique_ptr<ToolRunner> m_tools = makeToolRunner();
    const std::unique_ptr<SystemLanguageModel> m_model = makeLanguageModel(m_clock);
    AIServices m_ai { *m_model, *m_machine, *m_tools, {}, m_clock };
    FakeDesktop m_desktop;
    OpsHub m_hub { { m_db, m_clock, m_ai.ai, m_centre, { m_clock, m_defaults, m_desktop, m_folder.path(), {} } } };
    sqlite3* m_bare = nullptr;
};

Bench& bench()
{
    static Bench instance;
    return instance;
}

/// The context with a thousand items, all that its board shows, and the rail.
void openContext(benchmark::State& state)
{
    for (auto _ : state) {
        bench().shell().setPlace(u"asks"_s);
        bench().shell().select(u"ctx:0"_s);
    }
}

void openContextBare(benchmark::State& state)
{
    for (auto _ : state) {
        for (const char* sql :
            { "SELECT * FROM work_context WHERE module='ops' ORDER BY updated_at DESC LIMIT 100;",
                "SELECT * FROM work_item WHERE module='ops' AND context_id='ctx:0' ORDER BY CASE priority WHEN 'high' "
                "THEN 0 WHEN 'normal' THEN 1 ELSE 2 END, updated_at DESC LIMIT 250;",
                "SELECT * FROM work_decision WHERE module='ops' AND context_id='ctx:0' LIMIT 50;",
                "SELECT status, COUNT(*) FROM work_item WHERE module='ops' AND context_id='ctx:0' GROUP BY status;" }) {
            BareStatement statement(bench().bare(), sql);
            while (statement.step())
                benchmark::DoNotOptimize(sqlite3_column_text(statement.get(), 0));
        }
    }
}

/// Three seconds of a shell that nobody writes to.
void idleRefresh(benchmark::State& state)
{
    for (auto _ : state)
        bench().clock().advance(Milliseconds(3000));
}

void idleRefreshBare(benchmark::State& state)
{
    for (auto _ : state) {
        for (int second = 0; second < 3; ++second) {
            BareStatement statement(bench().bare(), "PRAGMA data_version;");
            statement.step();
        }
    }
}

BENCHMARK(openContext)->Name("openContext/corvane")->Unit(benchmark::kMillisecond);
BENCHMARK(openContextBare)->Name("openContext/bare, reading")->Unit(benchmark::kMillisecond);
BENCHMARK(idleRefresh)->Name("idleRefresh/corvane")->Unit(benchmark::kMillisecond);
BENCHMARK(idleRefreshBare)->Name("idleRefresh/bare")->Unit(benchmark::kMillisecond);

}

}

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    corvane::bench::bench(); // made before the clock runs
    return corvane::bench::runAgainstRivals(argc, argv);
}
