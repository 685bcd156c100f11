#pragma once

#include "Approvals/ApprovalsStore.h"
#include "Calendar/CalendarServices.h"
#include "Calls/CallServices.h"
#include "Engines/AccountStore.h"
#include "Foundation/SystemScheduler.h"
#include "Platform/Linux/Services.h"
#include "Shell/Screens.h"
#include "Support/EngineWorld.h"
#include "Support/FakeCallAudio.h"
#include "Support/FakeLanguageModel.h"
#include "Support/Print.h"
#include "Support/RealDecoder.h"
#include "Support/RealVoice.h"
#include "UI/MainWindow.h"
#include "Voice/TranslationService.h"
#include "Web/SessionStore.h"

#include <QImage>
#include <QQuickItem>
#include <gtest/gtest.h>

namespace corvane {

using namespace Qt::StringLiterals;

/// Collects what Qt and QML warn of in place of standard error. Nothing in the window may warn.
class Warnings {
public:
    Warnings();
    ~Warnings();
    Warnings(const Warnings&) = delete;
    Warnings& operator=(const Warnings&) = delete;

    static QStringList seen();
};

/// The whole window over the real view models, a real database, and engines that the test plays. Each test
/// fails where anything warned.
class WindowTest : public testing::Test, protected EngineWorld {
protected:
    /// Another assistant than `lumo` may answer; it outlives the test.
    explicit WindowTest(AIServices* assistant = nullptr);
    void TearDown() override;

    /// Which window the calls below are about; null for the main window.
    void turnTo(QQuickWindow* other) { m_front = other; }
    QQuickWindow* front() const { return m_front ? m_front : window.window(); }

    // Past the wall
    void showEmptyInbox();
    void showInbox(); ///< six people on three channels, one of them a group, with what they wrote

    FakeChild& startEngine(const QString& name, Channel channel = Channel::WhatsApp);
    void receive(FakeChild& engine, const QString& from, const QString& title, const QString& body,
        const QJsonObject& more = {});

    /// Lets timers, bindings and animations come to rest, and the window be drawn.
    void rest();
    QImage picture(); ///< of the whole window, at rest

    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void type(const QString& text);
    void click(const QString& objectName);

    QList<QQuickItem*> visibleItems(); ///< everything that is drawn, popups included
    QQuickItem* findItem(const QString& objectName); ///< among the visible; null where there is none
    QQuickItem* item(const QString& objectName); ///< the same, and the test fails where there is none
    QQuickItem* focused() { return front()->activeFocusItem(); }
    bool focusWithin(const QString& objectName);

    Warnings warnings;
    AccountStore accounts { home.paths().applicationSupport };
    SessionStore session { home.paths(), keychain, defaults, desktop, clock };
    FakeLumo lumo { clock };
    AIServices& services;
    TranslationService translations { lumo.machine };
    RealVoice voice { lumo.machine, defaults, clock, home.paths().applicationSupport };
    RecordedCalls recordedCalls { engines.db() };
    FakeCallAudio callAudio;
    FakeSleepInhibitor sleep;
    FakeAudioPlayer callMicrophone;
    FakeAudioPlayer callSystem;
    TranscriptionOutcome callTranscript = std::unexpected(SpeechTranscriberError::unavailable(u"no recogniser"_s));
    ApprovalsStore approvals { centre, notifier, clock };
    SystemScheduler realClock;
    const std::unique_ptr<ProcessLauncher> realChildren = makeProcessLauncher(realClock); ///< but for engines
    StoreRecovery recovery { { engines, accounts, background, clock, home.paths() } };
    const std::unique_ptr<CalendarSource> calendars = makeCalendarSource(home.paths());
    BackgroundQueue calendarWork; // goes before what it reads
    CalendarServices calendar { { engines.db(), *calendars, calendarWork, clock, defaults, centre, {} }, services };
    CallServices calls { recordedCalls, calendar.store, services.ai,
        [this](TranscriptionRequest) -> QCoro::Task<TranscriptionOutcome> { co_return callTranscript; },
        CallServices::Machine { microphone, callAudio, sleep, lumo.machine, callMicrophone, callSystem, calendarWork },
        defaults, clock, home.paths() };
    Screens screens { Screens::Surroundings { engines, approvals, accounts, session, keychain, defaults, centre, clock,
        desktop, microphone, player, home.paths(), services, translations, voice.services, recovery, calendar, calls,
        *realChildren } };
    Appearance& appearance = screens.appearance;
    ContentView& content = screens.content;
    AppShell& shell = screens.shell;
    ProfileMenu& profile = screens.profile;
    InboxView& inbox = screens.inbox;
    IntegrationsView& settings = screens.settings;
    RealDecoder media;
    MainWindow window { screens, defaults, media.decoder };

private:
    QQuickWindow* m_front = nullptr;
    int m_messages = 0;
};

QObject* themeObject(MainWindow& window);

/// A colour of the theme by its name, as it stands now.
QColor themeColour(MainWindow& window, const char* name);

}
