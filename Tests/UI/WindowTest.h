#pragma once

#include "Approvals/ApprovalsStore.h"
#include "Calls/CallServices.h"
#include "Engines/AccountStore.h"
#include "Engines/DraftDelivery.h"
#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"
#include "Shell/CorvaneApp.h"
#include "Shell/Screens.h"
#include "Store/Core/LocalDB.h"
#include "Support/FakeMachine.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"
#include "UI/MainWindow.h"
#include "Web/SessionStore.h"

#include <QImage>
#include <QQuickItem>
#include <gtest/gtest.h>

namespace corvane {

/// Collects what Qt and QML warn of in place of standard error. Nothing in the window may warn.
class Warnings {
public:
    Warnings();
    ~Warnings();
    Warnings(const Warnings&) = delete;
    Warnings& operator=(const Warnings&) = delete;

    static QStringList seen();
};

/// The recogniser of English, unless a test says what is heard.
class PlayedRecogniser final : public SpeechRecogniser {
public:
    bool isAvailable() const override { return real->isAvailable(); }
    QCoro::Task<Result<QList<HeardSpeech>>> recognise(SpeechJob job) override
    {
        if (says.isEmpty())
            return real->recognise(std::move(job));
        return [](QList<HeardSpeech> heard) -> QCoro::Task<Result<QList<HeardSpeech>>> {
            co_return heard;
        }(says);
    }

    SystemScheduler scheduler;
    const std::unique_ptr<ProcessLauncher> launcher = makeProcessLauncher(scheduler);
    const std::unique_ptr<SpeechRecogniser> real = makeBasicRecogniser(*launcher);
    QList<HeardSpeech> says;
};

/// The window over the whole program on a machine that the test plays, engines among it. Each test fails where anything
/// warned.
class WindowTest : public testing::Test {
protected:
    /// Another model than `model` may answer.
    explicit WindowTest(std::unique_ptr<SystemLanguageModel> other = nullptr);
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

    /// Lets every event that waits be handled, at a cost of a millisecond.
    void settle() { clock.advance(Milliseconds(1)); }

    /// A row value as text; "-" for NULL or no row.
    QString cell(const QString& sql, const QList<SqlValue>& parameters = {})
    {
        return app.db().scalar(sql, parameters).value_or(u"-"_s);
    }

    Warnings warnings;
    TemporaryHome home;
    VirtualScheduler clock;
    Machine machine; ///< without its services, which the program has
    FakeLauncher& launcher = played<FakeLauncher>(machine.launcher);
    FakeDesktop& desktop = played<FakeDesktop>(machine.desktop);
    FakeMicrophone& microphone = played<FakeMicrophone>(machine.microphone);
    FakeTextInsertion& insertion = played<FakeTextInsertion>(machine.insertion);
    FakeMachineFacts& facts = played<FakeMachineFacts>(machine.facts);
    FakeLanguageModel* const model = dynamic_cast<FakeLanguageModel*>(machine.languageModel.get());
    FakeAudioPlayer& player = played<FakeAudioPlayer>(machine.player);
    PlayedRecogniser& recogniser = played<PlayedRecogniser>(machine.basicRecogniser);
    FakeCallAudio& callAudio = played<FakeCallAudio>(machine.callAudio);
    FakeAudioPlayer& callMicrophone = played<FakeAudioPlayer>(machine.callPlayers[0]);
    CorvaneApp app { home.paths(), clock, std::move(machine) };
    EngineManager& engines = app.engine();
    AccountStore& accounts = app.store();
    DraftDelivery& delivery = app.delivery();
    ApprovalsStore& approvals = app.approvals();
    SessionStore& session = app.session();
    Keychain& keychain = app.keychain();
    UserDefaults& defaults = app.defaults();
    NotificationCentre& centre = app.notifications();
    StoreRecovery& recovery = app.recovery();
    CallServices& calls = app.calls();
    Screens screens { app };
    Appearance& appearance = screens.appearance;
    ContentView& content = screens.content;
    AppShell& shell = screens.shell;
    ProfileMenu& profile = screens.profile;
    InboxView& inbox = screens.inbox;
    IntegrationsView& settings = screens.settings;
    MainWindow window { screens, defaults, app.decoder() };

private:
    QQuickWindow* m_front = nullptr;
    int m_messages = 0;
};

QObject* themeObject(MainWindow& window);

/// A colour of the theme by its name, as it stands now.
QColor themeColour(MainWindow& window, const char* name);

}
