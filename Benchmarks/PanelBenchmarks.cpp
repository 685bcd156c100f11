#include "Desk/CorvaneMenuBarView.h"
#include "Foundation/Literals.h"
#include "PlayedProgram.h"

#include "Approvals/ApprovalsStore.h"
#include "Engines/DraftDelivery.h"
#include "Engines/EngineManager.h"
#include "Shell/Notices.h"
#include "Store/Core/LocalDB.h"
#include "UI/PanelWindow.h"

#include <benchmark/benchmark.h>

namespace corvane::bench {

namespace {

/// A program with 10,000 waiting messages, CRM updates and decisions each.
class Bench {
public:
    Bench()
    {
        LocalDB& db = m_program.app.engine().db();
        const QString numbers = u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<10000) "_s;
        db.exec(u"BEGIN;"_s);
        db.run(
            uR"(INSERT INTO outbound_draft(id, workspace_id, conversation_id, channel, account_id, external_id, title, body, status, source, created_at, updated_at)
)"_s + numbers
            + u"SELECT 'od:'||i, 'local', 'wa:main:'||i, 'WHATSAPP', 'main', i, 'Person '||i, "
              "'A letter '||hex(zeroblob(500)), 'pending', 'mcp', i, i FROM n;"_s);
        db.run(
            uR"(INSERT INTO crm_update_proposal(id, workspace_id, kind, title, payload_json, status, created_at, updated_at)
)"_s + numbers
            + uR"(SELECT 'p:'||i, 'local', 'task', 'Call '||i, '{"title":"Call back"}', 'pending', i, i FROM n;)"_s);
        db.run(
            uR"(INSERT INTO work_decision(id, module, title, status, proposal, rationale, risk, created_at, updated_at)
)"_s + numbers
            + u"SELECT 'w:'||i, 'ops', 'Decide '||i, 'proposed', 'Do it', 'It is due', 'money', i, i "
              "FROM n;"_s);
        db.exec(u"COMMIT;"_s);
        m_program.app.approvals().attach(m_program.app.delivery(), m_program.app.recordedCalls());
        m_program.app.delivery().refresh();
        m_program.screens.panel->setTab(u"approvals"_s);
    }

    ApprovalsStore& approvals() { return m_program.app.approvals(); }
    DraftDelivery& delivery() { return m_program.app.delivery(); }
    std::unique_ptr<PanelWindow> panel()
    {
        return std::make_unique<PanelWindow>(
            m_program.window.engine(), *m_program.screens.panel, *m_program.screens.notices, m_program.scheduler);
    }

private:
    PlayedProgram m_program;
};

std::unique_ptr<Bench> instance; // destroyed before the application object, as its window requires

Bench& bench()
{
    if (!instance)
        instance = std::make_unique<Bench>();
    return *instance;
}

void show(PanelWindow& panel)
{
    panel.show({});
    benchmark::DoNotOptimize(panel.window()->grabWindow());
}

/// From the first click on the icon to the picture.
void firstOpening(benchmark::State& state)
{
    for (auto _ : state) {
        const auto panel = bench().panel();
        show(*panel);
        state.PauseTiming();
        panel->hide();
        state.ResumeTiming();
    }
}

void openingAgain(benchmark::State& state)
{
    const auto panel = bench().panel();
    show(*panel);
    for (auto _ : state) {
        panel->hide();
        show(*panel);
    }
}

void pollTick(benchmark::State& state)
{
    for (auto _ : state)
        bench().approvals().refresh();
}

void deliveryTick(benchmark::State& state)
{
    for (auto _ : state)
        bench().delivery().refresh();
}

BENCHMARK(firstOpening)->Name("panel of 30,000 waiting/first opening")->Unit(benchmark::kMillisecond);
BENCHMARK(openingAgain)->Name("panel of 30,000 waiting/opened again")->Unit(benchmark::kMillisecond);
BENCHMARK(pollTick)->Name("poll of 30,000 waiting")->Unit(benchmark::kMillisecond);
BENCHMARK(deliveryTick)->Name("delivery tick of 30,000 waiting")->Unit(benchmark::kMillisecond);

}

}

int main(int argc, char** argv)
{
    return corvane::bench::runWithWindow(argc, argv, corvane::bench::instance);
}
