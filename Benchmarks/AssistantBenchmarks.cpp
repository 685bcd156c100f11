#include "Foundation/Literals.h"
#include "Rivals.h"

#include "AI/AIRequestWatcher.h"
#include "AI/AIServices.h"
#include "AI/UngroundedFacts.h"
#include "Foundation/NotificationCentre.h"
#include "Foundation/UserDefaults.h"
#include "Platform/AppPaths.h"
#include "Platform/Linux/Models/LoopbackLanguageModel.h"
#include "Platform/Linux/Services.h"
#include "Platform/MachineFacts.h"
#include "Platform/ToolRunner.h"
#include "Store/Core/LocalDB.h"
#include "Support/Places.h"
#include "Support/VirtualScheduler.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace corvane::bench {

namespace {

struct Input {
    LumoDraftCRMContext context;
    QList<UnifiedMsgRow> messages;
};

/// The largest input of a prompt: 80 messages, 8 notes and 12 identities.
Input fullInput(const QString& word)
{
    Input input { { u"ct:EMAIL:ana@example.com"_s, u"Ana Petrović"_s, { u"EMAIL"_s, u"WHATSAPP"_s }, {}, {} }, {} };
    for (int at = 0; at < 12; ++at) {
        input.context.identities.append(
            { u"EMAIL"_s, u"ana%1@example.com"_s.arg(at), u"ana%1@example.com"_s.arg(at), u"49170123%1"_s.arg(at) });
    }
    for (int at = 0; at < 8; ++at)
        input.context.recentNotes.append({ u"note:%1"_s.arg(at), word.repeated(100), 1'772'000'000'000 });
    for (int at = 0; at < 80; ++at) {
        UnifiedMsgRow row;
        row.id = u"wa:msg:%1"_s.arg(at);
        row.direction = u"IN"_s;
        row.platform = u"WHATSAPP"_s;
        row.body = word.repeated(160);
        row.ts = 1'772'000'000'000 + at * 60'000;
        input.messages.append(row);
    }
    return input;
}

void replyPrompt(benchmark::State& state, const QString& word)
{
    const Input input = fullInput(word);
    for (auto _ : state)
        benchmark::DoNotOptimize(makeDraftReplyPrompt(input.context, input.messages, u"friendly"_s));
}

void factsOfADraft(benchmark::State& state)
{
    const Input input = fullInput(u"word "_s);
    const QString context = makeDraftReplyPrompt(input.context, input.messages, QString()).prompt;
    const QString draft = u"Hi Ana, the 14 panels arrive on March 3 at 9 am, Petra calls you. "_s.repeated(5);
    for (auto _ : state)
        benchmark::DoNotOptimize(ungroundedFacts(draft, context));
}

/// Requests of other processes on a machine without a model: each accepted request fails at once, so that a tick does
/// all its own work without waiting.
class Queue {
public:
    Queue() { m_watcher.start(); }

    /// Fills up to this many waiting requests of that age.
    void fill(int waiting, qint64 ageMs)
    {
        m_db.run(u"DELETE FROM ai_requests WHERE status<>'pending';"_s);
        m_db.run(u"WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n WHERE i<?)\n"
                 "INSERT INTO ai_requests(id, prompt, created_at)\n"
                 "SELECT hex(randomblob(8)), printf('%.2000c', 'x'), ? FROM n\n"
                 "LIMIT ?-(SELECT COUNT(*) FROM ai_requests);"_s,
            { waiting, m_standing.nowMs() - ageMs, waiting });
    }
    void tick() { m_ticking.advance(seconds(1)); }

private:
    QTemporaryDir m_folder;
    AppPaths m_paths { m_folder.path(), m_folder.path(), m_folder.filePath(u"defaults.ini"_s),
        QStringLiteral(CORVANE_SOURCE) };
    VirtualScheduler m_standing; ///< so that waiting requests do not age
    VirtualScheduler m_ticking;
    UserDefaults m_defaults { m_paths.defaultsFile };
    NotificationCentre m_centre;
    LocalDB m_db { m_folder.filePath(u"queue.db"_s), { m_paths.resources, {} }, m_standing, m_defaults, m_centre };
    LoopbackLanguageModel m_model { m_standing, {} };
    std::unique_ptr<MachineFacts> m_facts = makeMachineFacts(m_paths);
    std::unique_ptr<ToolRunner> m_tools = makeToolRunner();
    AIServices m_services { m_model, *m_facts, *m_tools, {}, m_standing };
    AIRequestWatcher m_watcher { m_db, m_services.ai, m_ticking };
};

void queueTick(benchmark::State& state, int waiting, qint64 ageMs)
{
    int argc = 0;
    const QCoreApplication application(argc, nullptr);
    Queue queue;
    for (auto _ : state) {
        if (waiting > 0) {
            state.PauseTiming();
            queue.fill(waiting, ageMs);
            state.ResumeTiming();
        }
        queue.tick();
    }
}

BENCHMARK_CAPTURE(queueTick, idle, 0, 0)->Name("idle tick of the queue")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(queueTick, waiting, 1000, 0)
    ->Name("tick of the queue while 1,000 requests wait")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(queueTick, stale, 1000, 120'001)
    ->Name("tick of the queue that finds 1,000 requests expired")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(replyPrompt, plain, u"word "_s)
    ->Name("prompt of 80 messages, 8 notes, 12 identities")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(replyPrompt, beyondLatin, u"слово "_s)->Name("the same in Cyrillic")->Unit(benchmark::kMillisecond);
BENCHMARK(factsOfADraft)->Name("facts of a draft against that prompt")->Unit(benchmark::kMillisecond);

}

}

int main(int argc, char** argv)
{
    return corvane::bench::runAgainstRivals(argc, argv);
}
