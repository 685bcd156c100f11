#include "Foundation/Literals.h"
#include "Platform/Linux/Input/OwnWindow.h"
#include "Platform/Linux/Input/WaylandTextInsertion.h"
#include "Platform/Linux/Input/X11TextInsertion.h"

#include "PortalResponse.h"
#include "Support/Await.h"
#include "Support/Environment.h"
#include "Support/Places.h"
#include "Support/PrivateBus.h"
#include "Support/VirtualScheduler.h"
#include "XServer.h"

#include <QClipboard>
#include <QDBusConnectionInterface>
#include <QDBusContext>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QGuiApplication>
#include <QInputMethodEvent>
#include <QTemporaryDir>
#include <QWindow>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <unistd.h>

using namespace corvane;
using Outcome = InsertionOutcome;

namespace {

/// Another program, with a focused text field.
class Target {
public:
    explicit Target(const XServer& server, const QStringList& arguments = {}, const QString& busAddress = {})
        : Target("xcb", server.display, arguments, busAddress)
    {
    }
    Target(const QString& platform, const QString& display, const QStringList& arguments, const QString& busAddress)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("QT_QPA_PLATFORM", platform);
        environment.insert("DISPLAY", display);
        environment.insert("DBUS_SESSION_BUS_ADDRESS", busAddress.isEmpty() ? "disabled:" : busAddress);
        environment.insert("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
        m_process.setProcessEnvironment(environment);
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
        m_process.start(CORVANE_TEST_PROGRAMS "/TypingTargetProgram", arguments);
        EXPECT_TRUE(says("ready"));
    }
    ~Target() { quit(); }

    bool says(const QByteArray& line)
    {
        return await([&] { return lines().contains(line); });
    }
    bool saysAtTheEnd(const QByteArray& line)
    {
        return await([&] { return lines().endsWith(line); });
    }

    void quit()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

private:
    const QByteArrayList& lines()
    {
        while (m_process.canReadLine())
            m_lines << m_process.readLine().trimmed();
        return m_lines;
    }

    QProcess m_process;
    QByteArrayList m_lines;
};

/// A headless Wayland compositor with a virtual keyboard. While it exists, it is this process's Wayland display.
class Sway {
public:
    Sway()
    {
        if (::getuid() == 0)
            EXPECT_EQ(::chown(QFile::encodeName(m_folder.path()).constData(), nobody, nobody), 0);
        m_sway.setChildProcessModifier([] {
            if (::getuid() == 0) // sway refuses to run as root
                (void)(::setgid(nobody) == 0 && ::setuid(nobody) == 0);
            ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        });
        m_keyboard.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
        start(m_sway, "sway", { "--config", "/dev/null" });
        const auto isUp = [this] {
            return QFile::exists(m_folder.filePath("wayland-1"));
        };
        await([&] { return isUp() || m_sway.state() == QProcess::NotRunning; });
        if (!isUp()) {
            m_problem = "sway did not come up: " + m_sway.errorString();
            return;
        }
        m_environment.set("WAYLAND_DISPLAY", "wayland-1");
        start(m_keyboard, "wtype", { "-s", "600000" });
        // Without shared memory, sway crashes on the first key event from any client.
        const bool takesKeys = QProcess::execute("wtype", { "-M", "shift", "-k", "Insert", "-m", "shift" }) == 0;
        if (!takesKeys || QProcess::execute("wtype", { "-s", "1" }) != 0)
            m_problem = "sway did not survive a key of wtype; it needs a /dev/shm that it may write to";
    }
    ~Sway()
    {
        for (QProcess* const program : { &m_keyboard, &m_sway }) {
            program->kill();
            program->waitForFinished();
        }
    }

    const QString& problem() const { return m_problem; } ///< why tests cannot use it; empty if they can

private:
    static void start(QProcess& program, const QString& name, const QStringList& arguments)
    {
        program.setStandardErrorFile(QProcess::nullDevice());
        program.start(name, arguments);
    }

    static constexpr uid_t nobody = 65534;
    QTemporaryDir m_folder;
    Environment m_environment { { "XDG_RUNTIME_DIR", QFile::encodeName(m_folder.path()) },
        { "WLR_BACKENDS", "headless" }, { "WLR_RENDERER", "pixman" } };
    QProcess m_sway;
    QProcess m_keyboard;
    QString m_problem;
};

/// The accessibility bus of a desktop.
class AccessibilityBus {
public:
    explicit AccessibilityBus(PrivateBus& bus)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("DBUS_SESSION_BUS_ADDRESS", bus.address());
        environment.insert("XDG_RUNTIME_DIR", m_folder.path());
        environment.insert("GSETTINGS_BACKEND", "memory");
        environment.remove("DISPLAY");
        m_launcher.setProcessEnvironment(environment);
        m_launcher.setStandardErrorFile(QProcess::nullDevice());
        m_launcher.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGTERM); });
        m_launcher.start("/usr/libexec/at-spi-bus-launcher", { "--launch-immediately" });
        const QDBusConnection client = bus.connect();
        EXPECT_TRUE(await([&] { return client.interface()->isServiceRegistered("org.a11y.Bus").value(); }));
    }
    ~AccessibilityBus()
    {
        m_launcher.terminate();
        m_launcher.waitForFinished();
    }

private:
    QTemporaryDir m_folder;
    QProcess m_launcher;
};

/// A fake remote desktop portal whose user lets programs type or refuses, as `answer` says.
class RemotePortal final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.RemoteDesktop")
    Q_PROPERTY(uint AvailableDeviceTypes MEMBER devices)
public:
    explicit RemotePortal(const QDBusConnection& client)
        : bus(client)
    {
        bus.registerObject("/org/freedesktop/portal/desktop", this,
            QDBusConnection::ExportScriptableSlots | QDBusConnection::ExportAllProperties);
        bus.registerService("org.freedesktop.portal.Desktop");
    }

    void close() { bus.send(QDBusMessage::createSignal("/session", "org.freedesktop.portal.Session", "Closed")); }

    QDBusConnection bus;
    uint devices = 3;
    uint answer = 0;
    QList<int> keys;
    QList<std::pair<int, uint>> codes; ///< each with whether it goes down
    bool isBusy = false;
    bool fails = false;
    bool takesKeys = true;

public Q_SLOTS:
    Q_SCRIPTABLE QDBusObjectPath CreateSession(const QVariantMap& options)
    {
        if (fails)
            sendErrorReply(QDBusError::Failed, "no session");
        return respond(options, { { "session_handle", "/session" } });
    }
    Q_SCRIPTABLE QDBusObjectPath SelectDevices(const QDBusObjectPath& /*session*/, const QVariantMap& options)
    {
        EXPECT_EQ(options["types"].toUInt(), 1U);
        return respond(options, {});
    }
    Q_SCRIPTABLE QDBusObjectPath Start(
        const QDBusObjectPath& session, const QString& /*parent*/, const QVariantMap& options)
    {
        EXPECT_EQ(session.path(), "/session");
        return respond(options, { { "devices", 1U } });
    }
    Q_SCRIPTABLE void NotifyKeyboardKeysym(
        const QDBusObjectPath& /*session*/, const QVariantMap& /*options*/, int symbol, uint isDown)
    {
        if (!takesKeys)
            return sendErrorReply(QDBusError::AccessDenied, "no keys");
        EXPECT_FALSE(std::exchange(isBusy, true)) << "a key may overtake the one before";
        setDelayedReply(true);
        const auto reply = [this, call = message()] {
            isBusy = false;
            bus.send(call.createReply());
        };
        QMetaObject::invokeMethod(this, reply, Qt::QueuedConnection);
        if (isDown)
            keys << symbol;
    }
    Q_SCRIPTABLE void NotifyKeyboardKeycode(
        const QDBusObjectPath& /*session*/, const QVariantMap& /*options*/, int code, uint isDown)
    {
        codes.append({ code, isDown });
    }

private:
    QDBusObjectPath respond(const QVariantMap& options, const QVariantMap& results)
    {
        return corvane::respond(bus, message(), options, answer, results);
    }
};

class TextInsertionTest : public testing::Test {
protected:
    /// Inserts a text and waits for the outcome. The clock stops after 200 ms, so a slow target does not cause a
    /// timeout.
    std::optional<Outcome> insert(TextInsertion& insertion, const QString& text)
    {
        std::optional<Outcome> outcome;
        insertion.insert(text, [&](Outcome given) { outcome = given; });
        EXPECT_FALSE(outcome) << "the answer comes later";
        scheduler.advance(Milliseconds(200));
        EXPECT_TRUE(await([&] { return outcome.has_value(); }));
        return outcome;
    }

    void paste()
    {
        server.send({ { XCB_KEY_PRESS, control }, { XCB_KEY_PRESS, letterV }, { XCB_KEY_RELEASE, letterV },
            { XCB_KEY_RELEASE, control } });
    }

    XServer server;
    VirtualScheduler scheduler;
};

}

TEST_F(TextInsertionTest, theProgramInFrontPastesAndTheClipboardKeepsWhatItHeld)
{
    X11TextInsertion insertion(scheduler, noBus(), server.display);
    EXPECT_EQ(insertion.way(), InsertionWay::PasteKeys);
    Target target(server, { "--copies", "700000" }); // too large to transfer in one piece
    insertion.aim();
    EXPECT_EQ(insert(insertion, "Grüße, привет ☕"), Outcome::Inserted);
    EXPECT_TRUE(target.says("15 Grüße, привет ☕"));
    EXPECT_EQ(insert(insertion, "!"), Outcome::Inserted) << "before the clipboard was given back";
    EXPECT_TRUE(target.says("16 Grüße, привет ☕!"));
    scheduler.advance(seconds(1));
    EXPECT_TRUE(target.saysAtTheEnd("clipboard 700000"));
}

TEST_F(TextInsertionTest, aTargetThatQuitLeavesTheTextOnTheClipboard)
{
    X11TextInsertion insertion(scheduler, noBus(), server.display);
    Target first(server);
    insertion.aim();
    first.quit();
    EXPECT_EQ(insert(insertion, "kept"), Outcome::Copied);
    Target second(server);
    paste();
    EXPECT_TRUE(second.says("4 kept"));
    EXPECT_EQ(insert(insertion, "in front"), Outcome::Inserted) << "what is in front gets it";
    EXPECT_TRUE(second.says("12 keptin front"));

    server.hold(control);
    std::optional<Outcome> late;
    insertion.insert("later", [&](Outcome given) { late = given; });
    EXPECT_EQ(insert(insertion, "twice"), Outcome::Missed) << "one at a time";
    ASSERT_TRUE(await([&] { return scheduler.pendingTimers() == 1; })) << "it waits for the held key";
    EXPECT_FALSE(late);
    server.letGo(control);
    scheduler.advance(Milliseconds(20));
    EXPECT_TRUE(second.says("17 keptin frontlater"));
    second.quit();
    server.stop();
    EXPECT_EQ(insert(insertion, "nowhere"), Outcome::Missed);
}

TEST_F(TextInsertionTest, aProgramThatHoldsTheClipboardAndNeverAnswersIsNotWaitedFor)
{
    const XcbConnection silent = connectToX(server.display);
    const xcb_window_t window = xcb_generate_id(silent.get());
    xcb_create_window(silent.get(), XCB_COPY_FROM_PARENT, window, firstScreen(silent.get())->root, 0, 0, 1, 1, 0,
        XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_set_selection_owner(silent.get(), window, atomNamed(silent.get(), "CLIPBOARD"), XCB_CURRENT_TIME);
    xcb_flush(silent.get());
    Target target(server);
    X11TextInsertion insertion(scheduler, noBus(), server.display);
    insertion.aim();
    EXPECT_EQ(insert(insertion, "anyway"), Outcome::Inserted);
    EXPECT_TRUE(target.says("6 anyway"));
}

TEST_F(TextInsertionTest, theAccessibilityBusNamesPasswordFieldsAndTakesText)
{
    PrivateBus bus;
    const QDBusConnection session = bus.connect();
    EXPECT_FALSE(findFocusedField(session)) << "no accessibility";
    const AccessibilityBus accessibility(bus);
    {
        Target target(server, {}, bus.address());
        std::optional<FocusedField> field;
        ASSERT_TRUE(await([&] { return (field = findFocusedField(session)).has_value(); }));
        EXPECT_TRUE(field->isEditable && !field->isPassword);
        EXPECT_TRUE(insertInto(session, *field, "Grüße 👍"));
        EXPECT_TRUE(insertInto(session, *field, "!"));
        EXPECT_TRUE(target.says("9 Grüße 👍!"));
        WaylandTextInsertion wayland(scheduler, session);
        EXPECT_EQ(insert(wayland, "?"), Outcome::Inserted);
        EXPECT_TRUE(target.says("10 Grüße 👍!?"));
        target.quit();
        EXPECT_FALSE(insertInto(session, *field, "nowhere"));
    }
    Target secret(server, { "--password" }, bus.address());
    ASSERT_TRUE(await([&] { return findFocusedField(session).has_value(); }));
    X11TextInsertion insertion(scheduler, session, server.display);
    insertion.aim();
    EXPECT_EQ(insert(insertion, "open sesame"), Outcome::Password);
    WaylandTextInsertion other(scheduler, session);
    EXPECT_EQ(insert(other, "open sesame"), Outcome::Password);
}

TEST_F(TextInsertionTest, withoutKeysToPressTheFieldItselfTakesTheTextAndElseTheClipboard)
{
    const XServer without({ "-extension", "XTEST" });
    PrivateBus bus;
    const QDBusConnection session = bus.connect();
    X11TextInsertion insertion(scheduler, session, without.display);
    EXPECT_EQ(insertion.way(), InsertionWay::None);
    Target target(without);
    insertion.aim();
    EXPECT_EQ(insert(insertion, "copied"), Outcome::Copied);
    EXPECT_TRUE(target.says("clipboard 6"));
    target.quit();

    const AccessibilityBus accessibility(bus);
    Target accessible(without, {}, bus.address());
    ASSERT_TRUE(await([&] { return findFocusedField(session).has_value(); }));
    insertion.aim();
    EXPECT_EQ(insert(insertion, "written"), Outcome::Inserted);
    EXPECT_TRUE(accessible.says("7 written"));
}

TEST_F(TextInsertionTest, theRemoteDesktopPortalTypesOnceTheUserAgreed)
{
    PrivateBus bus;
    WaylandTextInsertion without(scheduler, bus.connect());
    EXPECT_EQ(insert(without, "text"), Outcome::Missed);
    EXPECT_NE(without.way(), InsertionWay::Typing);

    RemotePortal portal(bus.connect());
    WaylandTextInsertion insertion(scheduler, bus.connect());
    ASSERT_TRUE(await([&] { return insertion.way() == InsertionWay::Typing; }));
    EXPECT_EQ(insert(insertion, "text"), Outcome::Missed) << "nobody was asked";
    insertion.aim();
    ASSERT_TRUE(await([&] { return insert(insertion, "é☕") == Outcome::Inserted; }));
    EXPECT_EQ(std::exchange(portal.keys, {}), (QList<int> { 0xe9, 0x01002615 }));
    std::optional<Outcome> typed;
    insertion.insert(u"\t\n A~\u007f\u009f\u00a0\u00ff\u0100"_s, [&](Outcome given) { typed = given; });
    EXPECT_EQ(insert(insertion, "twice"), Outcome::Missed) << "one at a time";
    ASSERT_TRUE(await([&] { return typed == Outcome::Inserted; }));
    EXPECT_EQ(
        portal.keys, (QList<int> { 0xff09, 0xff0d, ' ', 'A', '~', 0x0100007f, 0x0100009f, 0xa0, 0xff, 0x01000100 }));
    portal.takesKeys = false;
    EXPECT_EQ(insert(insertion, "x"), Outcome::Missed);
    portal.takesKeys = true;
    portal.close();
    ASSERT_TRUE(await([&] { return insert(insertion, "x") == Outcome::Missed; }));
    portal.answer = 1; // the user refused
    insertion.aim();
    ASSERT_TRUE(await([&] { return insertion.way() != InsertionWay::Typing; }));

    WaylandTextInsertion failed(scheduler, bus.connect());
    ASSERT_TRUE(await([&] { return failed.way() == InsertionWay::Typing; }));
    portal.fails = true;
    failed.aim();
    ASSERT_TRUE(await([&] { return failed.way() != InsertionWay::Typing; }));
    portal.devices = 2; // a pointer only
    WaylandTextInsertion keyless(scheduler, bus.connect());
    bus.settle();
    EXPECT_NE(keyless.way(), InsertionWay::Typing);
}

TEST_F(TextInsertionTest, aCompositorThatTakesKeysPastesAndTheClipboardKeepsWhatItHeld)
{
    const Sway sway;
    if (!sway.problem().isEmpty())
        GTEST_SKIP() << sway.problem().toStdString();
    QProcess::execute("wl-copy", { "old" });
    WaylandTextInsertion insertion(scheduler, noBus());
    EXPECT_EQ(insertion.way(), InsertionWay::PasteKeys);
    Target target("wayland", {}, {}, {});
    EXPECT_EQ(insert(insertion, "Grüße ☕"), Outcome::Inserted);
    EXPECT_TRUE(target.says("7 Grüße ☕"));
    EXPECT_EQ(insert(insertion, "!"), Outcome::Inserted) << "before the clipboard was given back";
    EXPECT_TRUE(target.says("8 Grüße ☕!"));
    scheduler.advance(seconds(1));
    EXPECT_TRUE(target.saysAtTheEnd("clipboard 3"));

    // KDE's portal leaves out characters that are not on the keyboard, so it presses the keys for pasting only.
    const Environment kde { { "XDG_CURRENT_DESKTOP", "KDE" } };
    PrivateBus bus;
    RemotePortal portal(bus.connect());
    WaylandTextInsertion typing(scheduler, bus.connect());
    ASSERT_TRUE(await([&] { return typing.way() == InsertionWay::Typing; }));
    typing.aim();
    ASSERT_TRUE(await([&] { return insert(typing, "pasted") == Outcome::Inserted; }));
    EXPECT_EQ(portal.codes, (QList<std::pair<int, uint>> { { 42, 1 }, { 110, 1 }, { 110, 0 }, { 42, 0 } }));
    EXPECT_EQ(portal.keys, QList<int>());
    EXPECT_TRUE(target.saysAtTheEnd("clipboard 6"));
    scheduler.advance(seconds(1));
    EXPECT_TRUE(target.saysAtTheEnd("clipboard 3"));
}

namespace {

/// A window of this program, with a field that takes text, is for passwords, or is none.
class OwnField final : public QWindow {
public:
    bool isEnabled = true;
    Qt::InputMethodHints hints = Qt::ImhNone;
    QString text;

protected:
    bool event(QEvent* event) override
    {
        if (event->type() == QEvent::InputMethodQuery) {
            auto* const query = static_cast<QInputMethodQueryEvent*>(event);
            query->setValue(Qt::ImEnabled, isEnabled);
            query->setValue(Qt::ImHints, int(hints));
            return true;
        }
        if (event->type() == QEvent::InputMethod)
            text += static_cast<QInputMethodEvent*>(event)->commitString();
        return QWindow::event(event);
    }
};

}

TEST(OwnWindowTest, aFieldOfThisProgramTakesTheTextItself)
{
    EXPECT_FALSE(insertIntoOwnWindow("elsewhere"));
    OwnField field;
    field.show();
    field.requestActivate();
    ASSERT_TRUE(await([&] { return QGuiApplication::focusWindow() == &field; }));
    EXPECT_EQ(insertIntoOwnWindow("Grüße"), Outcome::Inserted);
    EXPECT_EQ(field.text, "Grüße");
    field.hints = Qt::ImhHiddenText | Qt::ImhSensitiveData;
    EXPECT_EQ(insertIntoOwnWindow("open sesame"), Outcome::Password);
    field.hints = Qt::ImhSensitiveData;
    field.isEnabled = false;
    EXPECT_EQ(insertIntoOwnWindow("copied"), Outcome::Copied);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "copied");
    EXPECT_EQ(field.text, "Grüße");
}

#include "TextInsertionTests.moc"
