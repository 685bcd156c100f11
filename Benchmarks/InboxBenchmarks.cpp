#include "Foundation/Literals.h"
#include "Mirror.h"
#include "Rivals.h"

#include "AI/AIServices.h"
#include "Engines/AccountStore.h"
#include "Engines/EngineManager.h"
#include "Foundation/BackgroundQueue.h"
#include "Foundation/NotificationCentre.h"
#include "Foundation/SystemScheduler.h"
#include "Foundation/UserDefaults.h"
#include "Inbox/InboxView.h"
#include "Notifications/Notifier.h"
#include "Platform/AppPaths.h"
#include "Platform/Keychain.h"
#include "Platform/Linux/Services.h"
#include "Platform/MachineFacts.h"
#include "Platform/Microphone.h"
#include "Platform/ProcessLauncher.h"
#include "Platform/SpeechRecogniser.h"
#include "Platform/SystemLanguageModel.h"
#include "Platform/ToolRunner.h"
#include "Store/Core/LocalDB.h"
#include "Store/Messages/IngestQueries.h"
#include "Support/FakeAudioPlayer.h"
#include "Support/FakeDesktop.h"
#include "Support/FakeKeyring.h"
#include "Support/FakeNotificationService.h"
#include "Support/FakePortHolders.h"
#include "Voice/TranslationService.h"
#include "Voice/VoiceServices.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace corvane::bench {

namespace {

/// The inbox over a copy of the mirror, with the longest WhatsApp thread open.
class Bench {
public:
    Bench()
    {
        const QString busiest = m_engine.db()
                                    .scalar("SELECT conversation_id FROM unified_message WHERE conversation_id LIKE "
                                            "'wa:main:%' GROUP BY conversation_id ORDER BY COUNT(*) DESC LIMIT 1;")
                                    .value_or(QString());
        m_message.conversationExternalId = busiest.section(u':', 2);
        m_message.conversationTitle = u"The busiest person"_s;
        m_message.body = u"See you tomorrow"_s;
        m_inbox.person()->setOnScreen(false);
        m_inbox.appear();
        receive();
        m_inbox.person()->select(contactId());
    }

    void receive()
    {
        m_message.providerMsgId = u"LIVE%1"_s.arg(++m_messages);
        m_message.ts = m_scheduler.nowMs();
        raiseUnread(m_engine.db(), storeMessage(m_engine.db(), u"WHATSAPP"_s, u"main"_s, m_message)->conversationId);
    }

    QString contactId() const { return u"ct:WHATSAPP:"_s + m_message.conversationExternalId; }
    LocalDB& db() { return m_engine.db(); }
    InboxView& inbox() { return m_inbox; }

private:
    std::unique_ptr<LocalDB> openCopy()
    {
        QDir().mkpath(m_paths.applicationSupport);
        const QString path = m_paths.database();
        QFile::copy(sharedMirror(QStringLiteral(CORVANE_MIRROR_FOLDER)), path);
        return std::make_unique<LocalDB>(
            path, LocalDB::SchemaFolders { resourceFolder(), {} }, m_scheduler, m_defaults, m_centre);
    }

    QTemporaryDir m_folder { QStringLiteral(CORVANE_MIRROR_FOLDER "/../inbox-XXXXXX") };
    AppPaths m_paths { m_folder.path(), m_folder.filePath(u"share"_s), m_folder.filePath(u"defaults.ini"_s),
        resourceFolder() };
    SystemScheduler m_scheduler;
    UserDefaults m_defaults { m_paths.defaultsFile };
    NotificationCentre m_centre;
    std::unique_ptr<ProcessLauncher> m_launcher = makeProcessLauncher(m_scheduler);
    FakePortHolders m_ports;
    BackgroundQueue m_background;
    FakeKeyring m_keyring;
    Keychain m_keychain { m_keyring, m_paths.secretsFile(), m_scheduler };
    FakeNotificationService m_banners;
    Notifier m_notifier { m_banners, m_centre, m_defaults, m_scheduler, [] {
                         } };
    FakeDesktop m_desktop;
    FakeAudioPlayer m_player;
    EngineManager m_engine {
        { m_paths, m_scheduler, *m_launcher, m_ports, m_background, m_keychain, m_notifier, m_desktop }, openCopy()
    };
    AccountStore m_accounts { m_paths.applicationSupport };
    std::unique_ptr<Microphone> m_microphone = makeMicrophone(m_scheduler);
    std::unique_ptr<ToolRunner> m_tools = makeToolRunner();
    std::unique_ptr<SystemLanguageModel> m_model = makeLanguageModel(m_scheduler);
    std::unique_ptr<MachineFacts> m_facts = makeMachineFacts(m_paths);
    AIServices m_ai { *m_model, *m_facts, *m_tools, {}, m_scheduler };
    TranslationService m_translations { *m_facts };
    std::unique_ptr<MediaDecoder> m_decoder = makeMediaDecoder(m_scheduler);
    std::unique_ptr<SpeechRecogniser> m_models = makeModelRecogniser(*m_launcher);
    std::unique_ptr<SpeechRecogniser> m_basic = makeBasicRecogniser(*m_launcher);
    VoiceServices m_voice { { *m_decoder, *m_models, *m_basic, m_ai.gate, m_defaults, m_scheduler,
        m_paths.applicationSupport, *m_tools, m_player } };
    InboxView m_inbox { InboxView::Surroundings { m_engine, m_accounts, m_defaults, m_centre, m_scheduler,
        *m_microphone, m_desktop, m_player, m_paths, m_ai, m_translations, m_voice } };
    IncomingMessage m_message;
    int m_messages = 0;
};

Bench& bench()
{
    static Bench instance;
    return instance;
}

/// What one new message into the open thread costs the main thread, less what the list's statement costs: the
/// difference of the two lines is what counts.
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
    bench().inbox().person()->select(bench().contactId()); // for whatever runs next
}

BENCHMARK(reloadOfTheOpenInbox)->Name("reload on one message/corvane")->Unit(benchmark::kMillisecond);
BENCHMARK(statementOfTheList)->Name("reload on one message/bare")->Unit(benchmark::kMillisecond);
BENCHMARK(countsOfTheTabs)->Name("counts of the tabs")->Unit(benchmark::kMillisecond);
BENCHMARK(arrowKey)->Name("arrow key to the next person")->Unit(benchmark::kMillisecond);

}

}

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    return corvane::bench::runAgainstRivals(argc, argv);
}
