#pragma once

#include "Foundation/Channel.h"
#include "Foundation/Literals.h"
#include "Shell/CorvaneApp.h"
#include "Shell/Screens.h"
#include "Store/Core/LocalDB.h"
#include "Support/FakeMachine.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"
#include "UI/MainWindow.h"

#include <QImage>
#include <QQuickItem>
#include <gtest/gtest.h>

namespace corvane {

class AccountStore;
class AppShell;
class Appearance;
class ApprovalsStore;
class CommandPalette;
class ContactListView;
class ContentView;
class DraftDelivery;
class EngineManager;
class InboxView;
class IntegrationsView;
class OpenPerson;
class ProfileMenu;
class Reply;
class SessionStore;
class StoreRecovery;

/// Collects warnings of Qt and QML instead of printing them to standard error. The window must not cause any.
class Warnings {
public:
    Warnings();
    ~Warnings();
    Warnings(const Warnings&) = delete;
    Warnings& operator=(const Warnings&) = delete;

    static QStringList seen();
};

/// The real basic recogniser, for English, unless the test sets what is heard.
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

/// The window and the whole program on a fake machine whose engines are played by the test. Any warning fails the test.
class WindowTest : public testing::Test {
protected:
    /// `other` replaces the fake language model.
    explicit WindowTest(std::unique_ptr<SystemLanguageModel> other = nullptr);
    void TearDown() override;

    /// Sets the window that the calls below act on; null for the main window.
    void turnTo(QQuickWindow* other) { m_front = other; }
    QQuickWindow* front() const { return m_front ? m_front : window.window(); }

    // Both skip the login wall.
    void showEmptyInbox();
    void showInbox(); ///< six conversations on three channels, one of them a group

    FakeChild& startEngine(const QString& name, Channel channel = Channel::WhatsApp);
    void receive(FakeChild& engine, const QString& from, const QString& title, const QString& body,
        const QJsonObject& more = {});

    /// Waits until timers, bindings and animations have settled and the window is drawn.
    void rest();
    QImage picture(); ///< of the whole window, after `rest`

    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier);
    void type(const QString& text);
    void click(const QString& objectName);

    QList<QQuickItem*> visibleItems(); ///< including popups
    QQuickItem* findItem(const QString& objectName); ///< a visible item; null if there is none
    QQuickItem* item(const QString& objectName); ///< the same, but fails the test if there is none
    QQuickItem* focused() { return front()->activeFocusItem(); }
    bool focusWithin(const QString& objectName);

    /// Handles all pending events, which advances the clock by a millisecond.
    void settle() { clock.advance(Milliseconds(1)); }

    /// The value of a query as text; "-" for NULL or no row.
    QString cell(const QString& sql, const QList<SqlValue>& parameters = {})
    {
        return app.db().scalar(sql, parameters).value_or(u"-"_s);
    }

    Warnings warnings;
    TemporaryHome home;
    VirtualScheduler clock;
    Machine machine; ///< without its services, which are moved into `app`
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
    Appearance& appearance = *screens.appearance;
    ContentView& content = *screens.content;
    AppShell& shell = *screens.shell;
    ProfileMenu& profile = *screens.profile;
    InboxView& inbox = *screens.inbox;
    ContactListView& contacts; ///< of the inbox, as are the next three
    OpenPerson& person;
    Reply& reply = *screens.reply;
    CommandPalette& palette;
    IntegrationsView& settings = *screens.settings;
    MainWindow window { screens, defaults, app.decoder() };

private:
    QQuickWindow* m_front = nullptr;
    int m_messages = 0;
};

QObject* themeObject(MainWindow& window);

/// The current value of a theme colour.
QColor themeColour(MainWindow& window, const char* name);

}
