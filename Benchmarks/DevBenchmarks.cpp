#include "Rivals.h"
#include "WorkBench.h"

#include "Dev/TerminalWorkspaceView.h"
#include "Platform/PortHolders.h"
#include "Platform/ProcessLauncher.h"
#include "Terminals/TerminalsView.h"

#include <QCoreApplication>
#include <benchmark/benchmark.h>

namespace corvane::bench {

namespace {

constexpr int projects = 200;
constexpr int tabs = 1'000;
constexpr int updates = 50'000;

/// The Dev hub over 200 projects with 50,000 agents' reports.
class Bench : public WorkBench {
public:
    Bench()
    {
        const auto projectOf = [](int at) {
            return u"p:%1"_s.arg(at % projects);
        };
        insert(u"INSERT INTO project(id, slug, name, goal, category, updated_at) VALUES(?,?,?,?,?,?);"_s, projects,
            [&](int at) {
                return QList<SqlValue> { projectOf(at), u"project-%1"_s.arg(at), u"Project %1"_s.arg(at),
                    u"What it is for, in one sentence."_s, u"Client %1"_s.arg(at % 12), time(at) };
            });
        insert(u"INSERT INTO tab(id, current_project_id, name, heartbeat_at, created_at) VALUES(?,?,?,?,?);"_s, tabs,
            [&](int at) {
                return QList<SqlValue> { u"t:%1"_s.arg(at), projectOf(at), u"worker"_s, time(at), time(at) };
            });
        insert(uR"(INSERT INTO "update"(id, project_id, tab_id, ts, kind, body) VALUES(?,?,?,?,'status',?);)"_s,
            updates, [&](int at) {
                return QList<SqlValue> { u"u:%1"_s.arg(at), projectOf(at), u"t:%1"_s.arg(at % tabs), time(at),
                    u"What an agent reports, of the usual length and a little more."_s };
            });
    }

    DevDesk desk()
    {
        return { .work = services(),
            .terminals = m_terminals,
            .browser = m_browser,
            .desktop = m_desktop,
            .home = m_folder.path(),
            .console = WorkConsoleContext::dev() };
    }

private:
    const std::unique_ptr<ProcessLauncher> m_launcher = makeProcessLauncher(m_clock);
    const std::unique_ptr<PortHolders> m_portHolders = makePortHolders();
    BrowserView m_browser { { m_db, m_defaults, m_desktop,
        { m_clock, *m_launcher, *m_portHolders, AppPaths::fromEnvironment(), {} }, {} } };
    TerminalsView m_terminals { { m_clock, m_defaults, m_desktop, m_folder.path(), {} } };
};

Bench& bench()
{
    static Bench instance;
    return instance;
}

/// The first display of the hub, with its rail, tabs and inspector.
void openWorkspace(benchmark::State& state)
{
    for (auto _ : state) {
        TerminalWorkspaceView view(bench().desk());
        view.setShown(true);
        benchmark::DoNotOptimize(view.rail()->projects()->rows().size());
    }
}

void openWorkspaceBare(benchmark::State& state)
{
    for (auto _ : state) {
        for (const char* sql : { "SELECT * FROM project ORDER BY COALESCE(priority,3), updated_at DESC;",
                 "SELECT * FROM tab ORDER BY created_at DESC;",
                 "SELECT p.id, (SELECT body FROM \"update\" u WHERE u.project_id=p.id ORDER BY ts DESC LIMIT 1) FROM "
                 "project p;",
                 "SELECT * FROM \"update\" WHERE project_id='p:0' ORDER BY ts DESC LIMIT 50;" }) {
            BareStatement statement(bench().bare(), sql);
            while (statement.step())
                benchmark::DoNotOptimize(sqlite3_column_text(statement.get(), 1));
        }
    }
}

BENCHMARK(openWorkspace)->Name("openWorkspace/corvane")->Unit(benchmark::kMillisecond);
BENCHMARK(openWorkspaceBare)->Name("openWorkspace/bare, reading")->Unit(benchmark::kMillisecond);

}

}

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    return corvane::bench::runAgainstRivals(argc, argv);
}
