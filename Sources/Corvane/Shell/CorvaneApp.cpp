#include "Shell/CorvaneApp.h"

#include "AI/AIServices.h"
#include "AI/ModelChoice.h"
#include "Approvals/ApprovalsStore.h"
#include "CRM/ContactsBridge.h"
#include "Calendar/CalendarServices.h"
#include "Calls/CallServices.h"
#include "Care/Backup/BackupKeeper.h"
#include "Desk/QuickCapture.h"
#include "Desk/ResourceMonitor.h"
#include "Engines/AccountStore.h"
#include "Engines/DraftDelivery.h"
#include "Engines/EngineManager.h"
#include "Engines/ToolServer.h"
#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Notifications/Notifier.h"
#include "Platform/AddressBook.h"
#include "Platform/AudioPlayer.h"
#include "Platform/CalendarSource.h"
#include "Platform/Desktop.h"
#include "Platform/GlobalShortcuts.h"
#include "Platform/MachineFacts.h"
#include "Platform/MediaDecoder.h"
#include "Platform/Microphone.h"
#include "Platform/NotificationService.h"
#include "Platform/PortHolders.h"
#include "Platform/ProcessLauncher.h"
#include "Platform/SpeechRecogniser.h"
#include "Platform/ToolRunner.h"
#include "Shell/AppTray.h"
#include "Shell/DictationBanner.h"
#include "Shell/Notices.h"
#include "Shell/ProgramCommands.h"
#include "Shell/StoreRecovery.h"
#include "Store/Core/LocalDB.h"
#include "Store/Core/StoreHealth.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Core/Upkeep.h"
#include "Store/Search/SearchIndexer.h"
#include "Voice/DictationAnywhere.h"
#include "Voice/VoiceServices.h"
#include "Web/SessionStore.h"
#include "Web/WebServices.h"

#include <QUrl>
#include <algorithm>

namespace corvane {

namespace {

constexpr Milliseconds quitLimit { 6000 }; // engines are killed after five seconds, and may print until then

const QString dictationArgument = u"--toggle-dictation"_s;
const QString backgroundArgument = u"--background"_s;

/// The user's own addresses, from the accounts.
QStringList ownAddresses(const AccountStore& store, const SessionStore& session)
{
    QStringList addresses;
    for (const Account& account : store.accounts())
        addresses += account.email.value_or(QString());
    return addresses << session.email().value_or(QString());
}

bool isPaused(const Account& account)
{
    return account.paused.value_or(false);
}

}

CorvaneApp::CorvaneApp(const AppPaths& paths, Scheduler& scheduler, Machine machine, QObject* parent)
    : QObject(parent)
    , m_paths(paths)
    , m_scheduler(scheduler)
    , m_machine(std::move(machine))
    , m_defaults(paths.defaultsFile)
    , m_keychain(*m_machine.keyring, paths.secretsFile(), scheduler)
    , m_contacts(std::make_unique<ContactsBridge>(*m_machine.addressBook, m_background, m_defaults))
    , m_notifier(std::make_unique<Notifier>(
          *m_machine.notifications, m_notifications, m_defaults, m_scheduler, [this] { Q_EMIT windowRequested(); }))
    , m_store(std::make_unique<AccountStore>(m_paths.applicationSupport))
{
    const EngineManager::Surroundings surroundings { m_paths, m_scheduler, *m_machine.launcher, *m_machine.ports,
        m_background, m_keychain, *m_notifier, *m_machine.desktop };
    m_engine = std::make_unique<EngineManager>(surroundings,
        std::make_unique<LocalDB>(m_paths.database(), LocalDB::SchemaFolders { m_paths.resources, m_paths.home },
            m_scheduler, m_defaults, m_notifications));
    m_searchIndexer = std::make_unique<SearchIndexer>(m_engine->db(), m_scheduler);
    m_engine->setContactsBridge(m_contacts.get());
    m_engine->setAccounts(m_store.get());
    m_delivery = std::make_unique<DraftDelivery>(m_engine->db(), *m_engine, m_scheduler);
    m_ai = std::make_unique<AIServices>(
        *m_machine.languageModel, *m_machine.facts, *m_machine.tools, codexCandidates(m_paths.home), m_scheduler);
    m_ai->drafts.setMemoryDB(m_engine->db());
    m_voice = std::make_unique<VoiceServices>(
        VoiceServices::Surroundings { *m_machine.decoder, *m_machine.modelRecogniser, *m_machine.basicRecogniser,
            m_ai->gate, m_defaults, m_scheduler, m_paths.applicationSupport, *m_machine.tools, *m_machine.reader });
    m_machine.languageModel->choose(modelChoice(m_defaults));
    m_resources = std::make_unique<ResourceMonitor>(*m_machine.facts, m_background, m_scheduler, m_machine.systemRoot);
    m_calendar = std::make_unique<CalendarServices>(CalendarStore::Surroundings { m_engine->db(), *m_machine.calendars,
                                                        m_background, m_scheduler, m_defaults, m_notifications,
                                                        [this] {
                                                            return ownAddresses(*m_store, *m_session);
                                                        } },
        *m_ai);
    m_recordedCalls = std::make_unique<RecordedCalls>(m_engine->db());
    m_calls = std::make_unique<CallServices>(*m_recordedCalls, m_calendar->store, m_ai->ai,
        CallServices::Speech {
            [this](TranscriptionRequest request) { return transcribeCall(std::move(request)); }, m_voice->store },
        CallServices::Program { m_defaults, m_scheduler, m_paths, m_background },
        CallServices::Machine { *m_machine.microphone, *m_machine.callAudio, *m_machine.sleep, *m_machine.facts,
            *m_machine.callPlayers[0], *m_machine.callPlayers[1], m_machine.shortcuts.get() });
    m_approvals = std::make_unique<ApprovalsStore>(m_notifications, *m_notifier, m_scheduler);
    m_capture = std::make_unique<QuickCapture>(m_engine->db(), m_machine.shortcuts.get(), m_defaults);
    m_dictation = std::make_unique<DictationAnywhere>(DictationAnywhere::Surroundings { *m_voice, *m_machine.microphone,
        m_machine.insertion.get(), m_machine.shortcuts.get(), m_defaults, m_scheduler });
    if (m_dictation->isBoundToFocus())
        m_dictationBanner = std::make_unique<DictationBanner>(*m_dictation, *m_notifier, m_notifications);
    connect(this, &CorvaneApp::quitting, m_dictation.get(), &DictationAnywhere::cancel);
    connect(m_approvals.get(), &ApprovalsStore::confirmationRequested, this, &CorvaneApp::windowRequested);
    m_session = std::make_unique<SessionStore>(m_paths, m_keychain, m_defaults, *m_machine.desktop, m_scheduler);
    m_web = std::make_unique<WebServices>(*m_session, m_engine->db(), m_scheduler);
    m_recovery = std::make_unique<StoreRecovery>(
        StoreRecovery::Surroundings { *m_engine, *m_store, m_background, m_scheduler, m_paths });
    m_backups = std::make_unique<BackupKeeper>(
        BackupKeeper::Surroundings { m_paths, m_defaults, m_scheduler, m_background, *m_machine.desktop });
    m_commands.add(programCommands(*this));
    if (m_machine.tray)
        m_tray = std::make_unique<AppTray>(*this, *m_machine.tray);
    watchStore();
    watchCalls();
}

CorvaneApp::~CorvaneApp() = default;

LocalDB& CorvaneApp::db()
{
    return m_engine->db();
}

/// Calls are processed on mains power unless the user allows battery.
QCoro::Task<TranscriptionOutcome> CorvaneApp::transcribeCall(TranscriptionRequest request)
{
    request.onBattery = m_calls->settings.alsoOnBattery() ? BatteryWork::Allowed : BatteryWork::Waits;
    return m_voice->speech.transcribe(std::move(request));
}

void CorvaneApp::onAppear()
{
    if (isQuitting() || m_recovery->needed())
        return; // with a corrupt database it runs once there is another
    m_engine->startUnifiedMCP(toolServerPort());
    m_engine->db().watch().start();
    m_searchIndexer->start();
    m_delivery->startWatch();
    m_engine->startAIRequestWatch(m_ai->ai);
    m_resources->start();
    m_data.local.emplace(m_engine->db());
    m_recordedCalls->refresh();
    m_calendar->store.bootstrap();
    m_calls->autoRecorder.start();
    m_web->push.attach();
    // Leaves an empty workspace before any list is built from it.
    m_web->sync.takeUp();
    m_web->sync.refresh();
    m_contacts->load();
    m_notifier->bootstrap();
    m_engine->refreshUnreadBadge();
    m_approvals->attach(*m_delivery, *m_recordedCalls);
    m_approvals->attach(m_calendar->commands);
    m_capture->registerHotKey();
    m_calls->keys.bind();
    m_dictation->start();
    m_backups->start();
    m_idleCare = m_scheduler.every(std::chrono::hours(1), [this] {
        if (db().isSound() && !db().inTransaction())
            careWhileIdle(db());
    });
    deleteOldSound(m_calls->recorder);
    m_callHousekeeping = m_scheduler.every(std::chrono::hours(24), [this] { deleteOldSound(m_calls->recorder); });
    for (const Account& account : m_store->accounts()) {
        if (account.channel() == Channel::WhatsApp && account.autoStart && !isPaused(account))
            m_engine->start(account);
    }
    for (const Account& account : m_store->accounts()) {
        if (account.startAtBoot.value_or(false) && !isPaused(account))
            m_engine->start(account);
    }
}

void CorvaneApp::startAllEngines()
{
    if (m_recovery->needed())
        return;
    for (const Account& account : m_store->accounts()) {
        if (!isPaused(account))
            m_engine->start(account);
    }
}

bool CorvaneApp::isForRunning(const QStringList& arguments)
{
    return arguments.size() == 1
        && QStringList({ recordCommand, markCommand, dictationArgument }).contains(arguments.first());
}

void CorvaneApp::open(const QStringList& arguments)
{
    if (arguments.size() == 1
        && QStringList({ captureCommand, recordCommand, markCommand }).contains(arguments.first()))
        return m_commands.run(arguments.first());
    if (arguments == QStringList { dictationArgument }) {
        if (!isQuitting())
            m_dictation->toggleRecording();
        return;
    }
    if (arguments == QStringList { backgroundArgument })
        return;
    for (const QString& argument : arguments) {
        if (argument.startsWith("nimb-companion:"_L1))
            m_session->handleCallback(QUrl(argument));
    }
    if (!isQuitting())
        Q_EMIT windowRequested();
}

void CorvaneApp::willTerminate()
{
    m_calls->recorder.stopForQuit();
    m_engine->stopAll();
}

void CorvaneApp::quit()
{
    if (isQuitting())
        return;
    const auto end = [this] {
        m_quitLimit = m_scheduler.after(Milliseconds(0), [this] { Q_EMIT ended(); });
    };
    m_quitLimit = m_scheduler.after(quitLimit, end);
    Q_EMIT quitting();
    connect(m_engine.get(), &EngineManager::allEnded, this, end);
    m_calls->recorder.stopForQuit();
    m_engine->stopAll();
}

QString CorvaneApp::storeTrouble() const
{
    return m_recovery->needed() ? m_recovery->title() + u". "_s + m_recovery->explanation()
                                : describe(m_engine->db().health().fault(), m_paths);
}

/// Without a window, banners report what happens to a recording.
void CorvaneApp::watchCalls()
{
    RecordingView& recording = m_calls->recording;
    connect(&recording, &RecordingView::consentAsked, this, &CorvaneApp::windowRequested);
    connect(&recording, &RecordingView::started, this, [this, &recording] {
        if (recording.beganByItself())
            m_notifier->notifyRecording(recording.aloudText(), recording.consentReminder());
    });
    connect(&m_calls->recorder, &CallRecorder::refused, this,
        [this](const QString& reason) { m_notifier->notifyRecording(u"No call is being recorded"_s, reason); });
}

void CorvaneApp::watchStore()
{
    const auto tell = [this] {
        const QString trouble = storeTrouble();
        if (trouble == m_told)
            return;
        m_told = trouble;
        log(trouble.isEmpty() ? u"The database can be written again."_s : trouble);
    };
    connect(&m_engine->db().health(), &StoreHealth::changed, this, tell);
    connect(m_recovery.get(), &StoreRecovery::changed, this, tell);
    connect(m_recovery.get(), &StoreRecovery::recovered, this, &CorvaneApp::onAppear);
    tell();
}

}
