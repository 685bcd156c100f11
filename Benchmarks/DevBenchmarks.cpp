#include "BareStatement.h"
#include "Rivals.h"

#include "Foundation/Literals.h"

#include "AI/AIServices.h"
#include "Dev/TerminalWorkspaceView.h"
#include "Foundation/NotificationCentre.h"
#include "Foundation/UserDefaults.h"
#include "Platform/AppPaths.h"
#include "Platform/Linux/Services.h"
#include "Platform/MachineFacts.h"
#include "Platform/PortHolders.h"
#include "Platform/ProcessLauncher.h"
#include "Platform/SystemLanguageModel.h"
#include "Platform/ToolRunner.h"
#include "Store/Core/LocalDB.h"
#include "Store/Core/StoreWatch.h"
#include "Support/FakeDesktop.h"
#include "Support/Places.h"
#include "Support/VirtualScheduler.h"
#include "Terminals/TerminalsView.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace corvane::bench {

namespace {

constexpr int projects = 200;
constexpr int tabs = 1'000;
constexpr int updates = 50'000;

/// The Dev hub over 200 projects whose agents reported 50,000 times.
class Bench {
public:
    Bench()
    {
        m_db.exec(u"BEGIN;"_s);
        const auto insert = [this](const QString& sql, int count, const std::function<QList<SqlValue>(int)>& values) {
            for (int at = 0; at < count; ++at)
                m_db.run(sql, values(at));
        };
        const auto projectOf = [](int at) {
            return u"p:%1"_s.arg(at % projects);
        };
        const auto time = [](int at) {
            return isoTime(1'763'000'000'000 + at * 1000LL);
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
        m_db.exec(u"COMMIT;"_s);
        sqlite3_open(m_db.path().toUtf8().constData(), &m_bare);
    }
    ~Bench() { sqlite3_close(m_bare); }

    DevDesk desk()
    {
        return { .work = { m_db, m_clock, m_ai.ai, m_centre, { m_clock, m_defaults, m_desktop, m_folder.path(), {} } },
            .terminals = m_terminals,
            .browser = m_browser,
            .desktop = m_desktop,
            .home = m_folder.path(),
            .console = WorkConsoleContext::dev() };
    }
    sqlite3* bare() { return m_bare; }

private:
    QTemporaryDir m_folder;
    VirtualScheduler m_clock;
    UserDefaults m_defaults { m_folder.filePath(u"defaults.ini"_s) };
    NotificationCentre m_centre;
    LocalDB m_db { m_folder.filePath(u"dev.db"_s), { QStringLiteral(CORVANE_SOURCE), m_folder.path() }, m_clock,
        m_defaults, m_centre };
    const std::unique_ptr<MachineFacts> m_machine = makeMachineFacts(AppPaths::fromEnvironment());
    const std::unique_ptr<ToolRunner> m_tools = makeToolRunner();
    const std::unique_ptr<SystemLanguageModel> m_model = makeLanguageModel(m_clock);
    AIServices m_ai { *m_model, *m_machine, *m_tools, {}, m_clock };
    FakeDesktop m_desktop;
    const std::unique_ptr<ProcessLauncher> m_launcher = makeProcessLauncher(m_clock);
    const std::unique_ptr<PortHolders> m_portHolders = makePortHolders();
    BrowserView m_browser { { m_db, m_defaults, m_desktop,
        { m_clock, *m_launcher, *m_portHolders, AppPaths::fromEnvironment(), {} }, {} } };
    TerminalsView m_terminals { { m_clock, m_defaults, m_desktop, m_folder.path(), {} } };
    sqlite3* m_bare = nullptr;
};

Bench& bench()
{
    static Bench instance;
    return instance;
}

/// The hub as it comes up the first time, with what its rail, tabs and inspector show.
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
