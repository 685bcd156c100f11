#include "Foundation/Literals.h"
#include "Inbox/InboxView.h"
#include "Mirror.h"
#include "PlayedProgram.h"

#include "Store/Core/LocalDB.h"
#include "Store/Messages/IngestQueries.h"

#include <benchmark/benchmark.h>

namespace corvane::bench {

namespace {

/// The inbox over a copy of the mirror, with the longest WhatsApp thread open and no window.
class Bench {
public:
    Bench()
    {
        const QString busiest
            = db().scalar("SELECT conversation_id FROM unified_message WHERE conversation_id LIKE 'wa:main:%' "
                          "GROUP BY conversation_id ORDER BY COUNT(*) DESC LIMIT 1;")
                  .value_or(QString());
        m_message.conversationExternalId = busiest.section(u':', 2);
        m_message.conversationTitle = u"The busiest person"_s;
        m_message.body = u"See you tomorrow"_s;
        inbox().person()->setOnScreen(false);
        inbox().appear();
        receive();
        inbox().person()->select(contactId());
    }

    void receive()
    {
        m_message.providerMsgId = u"LIVE%1"_s.arg(++m_messages);
        m_message.ts = m_program.scheduler.nowMs();
        raiseUnread(db(), storeMessage(db(), u"WHATSAPP"_s, u"main"_s, m_message)->conversationId);
    }

    QString contactId() const { return u"ct:WHATSAPP:"_s + m_message.conversationExternalId; }
    LocalDB& db() { return m_program.app.db(); }
    InboxView& inbox() { return *m_program.screens.inbox; }

private:
    PlayedProgram m_program { sharedMirror(QStringLiteral(CORVANE_MIRROR_FOLDER)) };
    IncomingMessage m_message;
    int m_messages = 0;
};

std::unique_ptr<Bench> instance; // destroyed before the application object, as its window requires

Bench& bench()
{
    if (!instance)
        instance = std::make_unique<Bench>();
    return *instance;
}

/// Main thread time for a new message in the open thread, and the list's statement alone: the difference between the
/// two is what counts.
void reloadOfTheOpenInbox(benchmark::State& state)
{
    for (auto _ : state) {
        state.PauseTiming();
        bench().receive();
        state.ResumeTiming();
        bench().inbox().list()->reload();
    }
}

void statementOfTheList(benchmark::State& state)
{
    for (auto _ : state) {
        state.PauseTiming();
        bench().receive();
        state.ResumeTiming();
        benchmark::DoNotOptimize(fetchContacts(bench().db(), InboxFilter::All, {}, 300));
    }
}

void countsOfTheTabs(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(fetchCountedPeople(bench().db()));
}

void arrowKey(benchmark::State& state)
{
    int delta = 1;
    for (auto _ : state) {
        bench().inbox().person()->moveSelection(delta);
        delta = -delta;
    }
    bench().inbox().person()->select(bench().contactId()); // for the next benchmark
}

BENCHMARK(reloadOfTheOpenInbox)->Name("reload on one message/corvane")->Unit(benchmark::kMillisecond);
BENCHMARK(statementOfTheList)->Name("reload on one message/bare")->Unit(benchmark::kMillisecond);
BENCHMARK(countsOfTheTabs)->Name("counts of the tabs")->Unit(benchmark::kMillisecond);
BENCHMARK(arrowKey)->Name("arrow key to the next person")->Unit(benchmark::kMillisecond);

}

}

int main(int argc, char** argv)
{
    return corvane::bench::runWithWindow(argc, argv, corvane::bench::instance);
}
