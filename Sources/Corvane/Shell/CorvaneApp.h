#pragma once

#include "Foundation/BackgroundQueue.h"
#include "Foundation/NotificationCentre.h"
#include "Foundation/Scheduler.h"
#include "Foundation/UserDefaults.h"
#include "Platform/AppPaths.h"
#include "Platform/Keychain.h"
#include "Presentation/Commands.h"
#include "Shell/AppData.h"
#include "Shell/Machine.h"
#include "Voice/SpeechTranscript.h"

#include <QObject>
#include <QPoint>
#include <QStringList>
#include <memory>
#include <qcoro/qcorotask.h>

namespace corvane {

class AccountStore;
class AppTray;
class ApprovalsStore;
class ContactsBridge;
class AudioPlayer;
class Autostart;
class BackupKeeper;
class Desktop;
class DictationAnywhere;
class DictationBanner;
class DraftDelivery;
class EngineManager;
class LocalDB;
class MediaDecoder;
class Microphone;
class Notifier;
class RecordedCalls;
class ProcessLauncher;
class QuickCapture;
class ResourceMonitor;
class SearchIndexer;
class SessionStore;
class StoreRecovery;
class Tray;
struct AIServices;
struct CalendarServices;
struct VoiceServices;
struct CallServices;
struct WebServices;

/// The composition root: creates every long-lived object once and hands out references.
class CorvaneApp : public QObject {
    Q_OBJECT
public:
    /// `scheduler` outlives the application.
    CorvaneApp(const AppPaths& paths, Scheduler& scheduler, Machine machine, QObject* parent = nullptr);
    ~CorvaneApp() override;

    AccountStore& store() { return *m_store; }
    EngineManager& engine() { return *m_engine; }
    LocalDB& db();
    DraftDelivery& delivery() { return *m_delivery; }
    AppData& data() { return m_data; }
    CalendarServices& calendar() { return *m_calendar; }
    CallServices& calls() { return *m_calls; }
    RecordedCalls& recordedCalls() { return *m_recordedCalls; }
    ResourceMonitor& resources() { return *m_resources; }
    ApprovalsStore& approvals() { return *m_approvals; }
    AIServices& ai() { return *m_ai; }
    VoiceServices& voice() { return *m_voice; }
    QuickCapture& capture() { return *m_capture; }
    DictationAnywhere& dictation() { return *m_dictation; }
    SessionStore& session() { return *m_session; }
    WebServices& web() { return *m_web; }
    StoreRecovery& recovery() { return *m_recovery; }
    BackupKeeper& backups() { return *m_backups; }
    UserDefaults& defaults() { return m_defaults; }
    NotificationCentre& notifications() { return m_notifications; }
    Keychain& keychain() { return m_keychain; }
    Scheduler& scheduler() { return m_scheduler; }
    ProcessLauncher& launcher() { return *m_machine.launcher; }
    PortHolders& portHolders() { return *m_machine.ports; }
    AddressBook& addressBook() { return *m_machine.addressBook; }
    BackgroundQueue& background() { return m_background; }
    Desktop& desktop() { return *m_machine.desktop; }
    Notifier& notifier() { return *m_notifier; }
    Microphone& microphone() { return *m_machine.microphone; }
    MediaDecoder& decoder() { return *m_machine.decoder; }
    AudioPlayer& player() { return *m_machine.player; }
    const Tray* tray() const { return m_machine.tray.get(); } ///< null in a headless run
    Autostart* autostart() { return m_machine.autostart.get(); } ///< null in a headless run
    Commands& commands() { return m_commands; } ///< commands that work without a window
    std::optional<mode_t> userUmask() const { return m_machine.userUmask; }
    const AppPaths& paths() const { return m_paths; }

    /// The start sequence: runs whenever the main window appears, and once in a headless run. May run again.
    void onAppear();

    /// Starts the engines of all accounts that are not paused.
    void startAllEngines();

    /// The problem with the database and its remedy; empty if there is none.
    QString storeTrouble() const;

    /// The arguments of a later start of the program: a sign-in URL, "capture", "record", "mark", "--toggle-dictation",
    /// "--background" to do nothing, or none to show the window.
    void open(const QStringList& arguments);

    /// Whether the arguments need no window.
    static bool isForRunning(const QStringList& arguments);

    /// Shuts down, and emits `ended` once the engines have exited and their output is stored, after at most six
    /// seconds. A second call has no effect.
    void quit();
    bool isQuitting() const { return m_quitLimit != nullptr; }

    /// Shuts down without an event loop; the process is about to exit.
    void willTerminate();

Q_SIGNALS:
    void windowRequested(); ///< raise the main window
    void panelRequested(const QPoint& at); ///< toggle the small window at this position of the screen
    void settingsRequested();
    void quitRequested();
    void quitting(); ///< all windows must close
    void ended(); ///< the process may exit

private:
    void watchStore();
    void watchCalls();
    QCoro::Task<TranscriptionOutcome> transcribeCall(TranscriptionRequest request);

    const AppPaths m_paths;
    Scheduler& m_scheduler;
    Machine m_machine;
    UserDefaults m_defaults;
    NotificationCentre m_notifications;
    BackgroundQueue m_background;
    Keychain m_keychain;
    AppData m_data;
    std::unique_ptr<ContactsBridge> m_contacts;
    std::unique_ptr<Notifier> m_notifier;
    std::unique_ptr<AccountStore> m_store;
    std::unique_ptr<AIServices> m_ai;
    std::unique_ptr<EngineManager> m_engine;
    std::unique_ptr<SearchIndexer> m_searchIndexer;
    std::unique_ptr<DraftDelivery> m_delivery;
    std::unique_ptr<CalendarServices> m_calendar;
    std::unique_ptr<VoiceServices> m_voice;
    std::unique_ptr<ResourceMonitor> m_resources;
    std::unique_ptr<RecordedCalls> m_recordedCalls;
    std::unique_ptr<CallServices> m_calls;
    std::unique_ptr<Timer> m_callHousekeeping;
    std::unique_ptr<ApprovalsStore> m_approvals;
    std::unique_ptr<QuickCapture> m_capture;
    std::unique_ptr<DictationAnywhere> m_dictation;
    std::unique_ptr<DictationBanner> m_dictationBanner; ///< if there is no panel
    std::unique_ptr<SessionStore> m_session;
    std::unique_ptr<WebServices> m_web;
    std::unique_ptr<StoreRecovery> m_recovery;
    std::unique_ptr<BackupKeeper> m_backups;
    std::unique_ptr<Timer> m_idleCare;
    Commands m_commands;
    std::unique_ptr<AppTray> m_tray; ///< null in a headless run
    QString m_told; ///< the last problem of the database
    std::unique_ptr<Timer> m_quitLimit; ///< while quitting
};

}
