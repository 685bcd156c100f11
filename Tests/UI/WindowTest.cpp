#include "UI/WindowTest.h"

#include "Approvals/ApprovalsStore.h"
#include "Engines/AccountStore.h"
#include "Engines/DraftDelivery.h"
#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"
#include "Inbox/InboxView.h"
#include "Shell/ContentView.h"
#include "Support/Await.h"

#include <QQmlComponent>
#include <QTest>

namespace corvane {

namespace {

QStringList& warningLines()
{
    static QStringList lines;
    return lines;
}

void collect(QtMsgType type, const QMessageLogContext&, const QString& message)
{
    // The offscreen platform cannot raise windows or propagate size hints, and grabbing a window between two animation
    // frames stops the animation driver twice.
    const bool ofThePlatform = message == u"This plugin does not support raise()"
        || message == u"This plugin does not support propagateSizeHints()"
        || message == u"QUnifiedTimer::stopAnimationDriver: driver is not running";
    const bool told = (type != QtDebugMsg && type != QtInfoMsg) || message.startsWith(u"MainWindow: ");
    if (told && !ofThePlatform)
        warningLines().append(message);
}

Machine windowMachine(const AppPaths& paths, Scheduler& clock, std::unique_ptr<SystemLanguageModel> model)
{
    Machine machine = fakeMachine(paths, std::make_unique<FakeLauncher>(clock));
    if (model)
        machine.languageModel = std::move(model);
    machine.basicRecogniser = std::make_unique<PlayedRecogniser>();
    machine.tools = makeToolRunner();
    return machine;
}

void gather(QQuickItem* item, QList<QQuickItem*>& found)
{
    if (!item->isVisible())
        return;
    found.append(item);
    for (QQuickItem* child : item->childItems())
        gather(child, found);
}

}

Warnings::Warnings()
{
    warningLines().clear();
    qInstallMessageHandler(collect);
}

Warnings::~Warnings()
{
    qInstallMessageHandler(nullptr);
}

QStringList Warnings::seen()
{
    return warningLines();
}

WindowTest::WindowTest(std::unique_ptr<SystemLanguageModel> other)
    : machine(windowMachine(home.paths(), clock, std::move(other)))
    , contacts(*inbox.list())
    , person(*inbox.person())
    , palette(*inbox.palette())
{
    desktop.setAppearance(ColourScheme::Light, true);
    approvals.attach(delivery, app.recordedCalls());
    EXPECT_TRUE(window.window()) << qPrintable(Warnings::seen().join(u'\n'));
    window.window()->resize(1320, 820); // the offscreen screen is small
    window.show();
    rest();
}

void WindowTest::TearDown()
{
    rest();
    EXPECT_EQ(Warnings::seen(), QStringList());
}

void WindowTest::showEmptyInbox()
{
    content.continueWithoutSigningIn();
    rest();
}

void WindowTest::showInbox()
{
    FakeChild& whatsApp = startEngine(u"Studio"_s);
    FakeChild& email = startEngine(u"ana@studio.example"_s, Channel::Email);
    FakeChild& telegram = startEngine(u"Telegram"_s, Channel::Telegram);
    receive(telegram, u"701"_s, u"Omar Haddad"_s, u"شكرا جزيلا! سأرسل العنوان غدا"_s);
    receive(whatsApp, u"4917@g.us"_s, u"Workshop Kreuzberg"_s, u"Who has the key?"_s, { { "sender", "Maria" } });
    receive(telegram, u"702"_s, u"王小明"_s, u"明天下午三点可以吗？"_s);
    receive(email, u"bakery@example.com"_s, u"Bäckerei Sonnenschein"_s, u"Invoice 2024-118 attached"_s);
    receive(whatsApp, u"49172@s.whatsapp.net"_s, u"Ben"_s, u"On it 👍"_s);
    for (int i = 0; i < 40; ++i)
        receive(whatsApp, u"49171@s.whatsapp.net"_s, u"Ana Ruiz"_s, u"Message %1 of a long morning"_s.arg(i));
    showEmptyInbox();
}

FakeChild& WindowTest::startEngine(const QString& name, Channel channel)
{
    const Account account = accounts.add(name, channel);
    launcher.expect(FakeLauncher::stays());
    engines.start(account);
    FakeChild& child = launcher.last();
    child.printEvent({ { "type", "status" }, { "state", "open" } });
    settle();
    return child;
}

void WindowTest::receive(
    FakeChild& engine, const QString& from, const QString& title, const QString& body, const QJsonObject& more)
{
    QJsonObject event { { "type", "message" }, { "convExternalId", from }, { "convTitle", title }, { "body", body },
        { "providerMsgId", u"m%1"_s.arg(++m_messages) }, { "ts", clock.nowMs() } };
    for (auto it = more.begin(); it != more.end(); ++it)
        event.insert(it.key(), it.value());
    engine.printEvent(event);
    clock.advance(seconds(1));
}

void WindowTest::rest()
{
    EXPECT_TRUE(await([this] { return !contacts.results()->pending(); }));
    for (int turn = 0; turn < 4; ++turn) {
        clock.advance(Milliseconds(120));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
        if (front()->isVisible())
            front()->grabWindow();
    }
}

QImage WindowTest::picture()
{
    rest();
    return front()->grabWindow();
}

void WindowTest::press(int key, Qt::KeyboardModifiers modifiers)
{
    QTest::keyClick(front(), Qt::Key(key), modifiers);
    rest();
}

void WindowTest::type(const QString& text)
{
    for (const QChar character : text)
        QTest::keyClick(front(), character.toLatin1());
    rest();
}

void WindowTest::click(const QString& objectName)
{
    if (QQuickItem* target = item(objectName)) {
        const QPointF middle = target->mapToScene(QPointF(target->width() / 2, target->height() / 2));
        QTest::mouseClick(front(), Qt::LeftButton, Qt::NoModifier, middle.toPoint());
        rest();
    }
}

QList<QQuickItem*> WindowTest::visibleItems()
{
    QList<QQuickItem*> found;
    gather(front()->contentItem(), found);
    return found;
}

QQuickItem* WindowTest::findItem(const QString& objectName)
{
    for (QQuickItem* candidate : visibleItems()) {
        if (candidate->objectName() == objectName)
            return candidate;
    }
    return nullptr;
}

QQuickItem* WindowTest::item(const QString& objectName)
{
    QQuickItem* found = findItem(objectName);
    EXPECT_NE(found, nullptr) << qPrintable(objectName);
    return found;
}

bool WindowTest::focusWithin(const QString& objectName)
{
    QQuickItem* found = findItem(objectName);
    return found && focused() && (found == focused() || found->isAncestorOf(focused()));
}

QObject* themeObject(MainWindow& window)
{
    QQmlComponent component(qmlEngine(window.window()));
    component.setData("import QtQml; import Corvane.Controls; QtObject { property QtObject theme: Theme }", QUrl());
    const std::unique_ptr<QObject> holder(component.create());
    return holder->property("theme").value<QObject*>();
}

QColor themeColour(MainWindow& window, const char* name)
{
    return themeObject(window)->property(name).value<QColor>();
}

}
