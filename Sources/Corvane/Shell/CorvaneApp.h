#pragma once

#include "Foundation/BackgroundQueue.h"
#include "Foundation/NotificationCentre.h"
#include "Foundation/Scheduler.h"
#include "Foundation/UserDefaults.h"
#include "Platform/AppPaths.h"
#include "Platform/Keychain.h"
#include "Presentation/Commands.h"
#include "Shell/AppData.h"
#include "Voice/SpeechTranscript.h"

#include <QObject>
#include <QPoint>
#include <QStringList>
#include <array>
#include <memory>
#include <optional>
#include <qcoro/qcorotask.h>
#include <sys/types.h>

namespace corvane {

class AccountStore;
class ApprovalsStore;
class AddressBook;
class CalendarSource;
class ContactsBridge;
class AudioPlayer;
class CallAudio;
class Desktop;
class GlobalShortcuts;
class DraftDelivery;
class EngineManager;
class MachineFacts;
class MediaDecoder;
class Microphone;
class NotificationService;
class Notifier;
class PortHolders;
class RecordedCalls;
class ProcessLauncher;
class QuickCapture;
class ResourceMonitor;
class SleepInhibitor;
class SessionStore;
class StoreRecovery;
class SpeechRecogniser;
class SystemLanguageModel;
class ToolRunner;
class TranslationService;
class Tray;
struct AIServices;
struct CalendarServices;
struct VoiceServices;
struct CallServices;

/// The services that the program finds on its machine.
struct Machine {
    Machine();
    ~Machine();
    Machine(Machine&&) noexcept;

    std::unique_ptr<ProcessLauncher> launcher;
    std::unique_ptr<PortHolders> ports;
    std::unique_ptr<Keyring> keyring;
    std::unique_ptr<NotificationService> notifications;
    std::unique_ptr<Desktop> desktop;
    std::unique_ptr<Microphone> microphone;
    std::unique_ptr<AddressBook> addressBook;
    std::unique_ptr<CalendarSource> calendars;
    std::unique_ptr<ToolRunner> tools;
    std::unique_ptr<SystemLanguageModel> languageModel;
    std::unique_ptr<MachineFacts> facts;
    std::unique_ptr<MediaDecoder> decoder; ///< the player reads through it
    std::unique_ptr<AudioPlayer> player;
    std::unique_ptr<AudioPlayer> reader; ///< of texts that are read aloud
    std::unique_ptr<SpeechRecogniser> modelRecogniser; ///< with a model of the person's
    std::unique_ptr<SpeechRecogniser> basicRecogniser;
    std::unique_ptr<GlobalShortcuts> shortcuts; ///< none in a headless run
    std::unique_ptr<CallAudio> callAudio;
    std::unique_ptr<SleepInhibitor> sleep;
    /// Both tracks of a call play at once, each through a decoder of its own.
    std::array<std::unique_ptr<MediaDecoder>, 2> callDecoders;
    std::array<std::unique_ptr<AudioPlayer>, 2> callPlayers;
    std::unique_ptr<Tray> tray; ///< none in a headless run
    std::optional<mode_t> userUmask; ///< of programs that the user starts; none: that of this process
};

/// The composition root: builds every long-lived object once and hands out references.
class CorvaneApp : public QObject {
    Q_OBJECT
public:
    /// `scheduler` outlives the application.
    CorvaneApp(const AppPaths& paths, Scheduler& scheduler, Machine machine, QObject* parent = nullptr);
    ~CorvaneApp() override;

    AccountStore& store() { return *m_store; }
    EngineManager& engine() { return *m_engine; }
    DraftDelivery& delivery() { return *m_delivery; }
    AppData& data() { return m_data; }
    CalendarServices& calendar() { return *m_calendar; }
    CallServices& calls() { return *m_calls; }
    RecordedCalls& recordedCalls() { return *m_recordedCalls; }
    ResourceMonitor& resources() { return *m_resources; }
    ApprovalsStore& approvals() { return *m_approvals; }
    AIServices& ai() { return *m_ai; }
    TranslationService& translations() { return *m_translations; }
    VoiceServices& voice() { return *m_voice; }
    QuickCapture& capture() { return *m_capture; }
    SessionStore& session() { return *m_session; }
    StoreRecovery& recovery() { return *m_recovery; }
    UserDefaults& defaults() { return m_defaults; }
    NotificationCentre& notifications() { return m_notifications; }
    Keychain& keychain() { return m_keychain; }
    Scheduler& scheduler() { return m_scheduler; }
    ProcessLauncher& launcher() { return *m_machine.launcher; }
    Desktop& desktop() { return *m_machine.desktop; }
    Microphone& microphone() { return *m_machine.microphone; }
    MediaDecoder& decoder() { return *m_machine.decoder; }
    AudioPlayer& player() { return *m_machine.player; }
    const Tray* tray() const { return m_machine.tray.get(); } ///< null in a headless run
    std::optional<mode_t> userUmask() const { return m_machine.userUmask; }
    const AppPaths& paths() const { return m_paths; }

    /// The start sequence, run each time the main window appears, and once in a headless run. It may run again.
    void onAppear();

    /// Starts the engine of every account that is not paused, whatever its channel.
    void startAllEngines();

    /// What is wrong with the database and what to do; empty where nothing is.
    QString storeTrouble() const;

    /// What a later start of the program was given: a sign-in's URL, "capture", or nothing but the wish to be shown.
    void open(const QStringList& arguments);

    /// Ends what runs, and says `ended` once engines have ended and what they printed is stored, after six seconds at
    /// most. A second call does nothing.
    void quit();
    bool isQuitting() const { return m_quitLimit != nullptr; }

    /// Ends what runs. The process is about to end, without a loop of events from here on.
    void willTerminate();

Q_SIGNALS:
    void windowRequested(); ///< show the main window and bring it to the front
    void panelRequested(const QPoint& at); ///< show or hide the small window, there on the screen
    void quitRequested();
    void quitting(); ///< no surface shows any more
    void ended(); ///< the process may end

private:
    QList<Command> trayCommands();
    void runTrayCommand(const QString& id);
    void setUpTray();
    void updateTrayMenu();
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
    std::unique_ptr<DraftDelivery> m_delivery;
    std::unique_ptr<TranslationService> m_translations;
    std::unique_ptr<CalendarServices> m_calendar;
    std::unique_ptr<VoiceServices> m_voice;
    std::unique_ptr<ResourceMonitor> m_resources;
    std::unique_ptr<RecordedCalls> m_recordedCalls;
    std::unique_ptr<CallServices> m_calls;
    std::unique_ptr<Timer> m_callHousekeeping;
    std::unique_ptr<ApprovalsStore> m_approvals;
    std::unique_ptr<QuickCapture> m_capture;
    std::unique_ptr<SessionStore> m_session;
    std::unique_ptr<StoreRecovery> m_recovery;
    const QList<Command> m_trayCommands;
    int m_toldMinutes = -1; ///< of the recording, at the tray; -1 without one
    QString m_told; ///< of what is wrong with the database
    std::unique_ptr<Timer> m_quitLimit; ///< while it quits
};

}
