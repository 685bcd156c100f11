#include "Rivals.h"
#include "WorkBench.h"

#include "Store/Work/WorkWrites.h"
#include "Work/OpsHub.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>

namespace corvane::bench {

namespace {

constexpr int contexts = 500;
constexpr int items = 10'000;
constexpr int messages = 20'000;
constexpr int decisions = 2'000;

/// The ops hub over 500 contexts, of which one holds a tenth of everything.
class Bench : public WorkBench {
public:
    Bench()
    {
        const auto contextOf = [](int at) {
            return u"ctx:%1"_s.arg(at % 10 == 0 ? 0 : at % contexts);
        };
        insert(u"INSERT INTO work_context(id, module, slug, title, updated_at) VALUES(?,'ops',?,?,?);"_s, contexts,
            [&](int at) {
                const QString name = u"ctx:%1"_s.arg(at);
                return QList<SqlValue> { name, name, u"Process %1"_s.arg(at), time(contexts - at) };
            });
        const QStringList statuses { u"open"_s, u"in_progress"_s, u"waiting"_s, u"done"_s };
        insert(
            u"INSERT INTO work_item(id, context_id, module, kind, title, status, priority, owner, summary, updated_at) "
            "VALUES(?,?,'ops','task',?,?,'normal',?,'What there is to do, in one sentence.',?);"_s,
            items, [&](int at) {
                return QList<SqlValue> { u"item:%1"_s.arg(at), contextOf(at), u"Item %1"_s.arg(at), statuses.at(at % 4),
                    u"Owner %1"_s.arg(at % 7), time(at) };
            });
        insert(u"INSERT INTO work_message(id, context_id, module, speaker, role, kind, body, status, created_at) "
               "VALUES(?,?,'ops','Agent','agent','message','Something that an agent says, of the usual length.',"
               "'posted',?);"_s,
            messages, [&](int at) { return QList<SqlValue> { u"msg:%1"_s.arg(at), contextOf(at), time(at) }; });
        insert(
            u"INSERT INTO work_decision(id, context_id, module, title, status, proposal, risk, created_at, updated_at) "
            "VALUES(?,?,'ops',?,?,'Hold it.','money',?,?);"_s,
            decisions, [&](int at) {
                return QList<SqlValue> { u"dec:%1"_s.arg(at), contextOf(at), u"Review Item %1"_s.arg(at),
                    at % 5 ? u"approved"_s : u"proposed"_s, time(at), time(at) };
            });
        m_db.watch().start();
        m_hub.shell()->setShown(true);
    }

    WorkModuleShell& shell() { return *m_hub.shell(); }
    LocalDB& db() { return m_db; }

private:
    OpsHub m_hub { services() };
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
        bench().shell().rail()->setPlace(u"asks"_s);
        bench().shell().rail()->select(u"ctx:0"_s);
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
