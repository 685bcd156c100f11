#include "Foundation/Literals.h"
#include "Platform/Linux/Input/PortalGlobalShortcuts.h"
#include "Platform/Linux/Input/X11GlobalShortcuts.h"

#include "PortalResponse.h"
#include "Support/Await.h"
#include "Support/PrivateBus.h"
#include "XServer.h"

#include <QDBusContext>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <gtest/gtest.h>

using namespace corvane;
using Kind = GlobalShortcutState::Kind;

namespace {

QStringList& heardFrom(GlobalShortcuts& shortcuts, QStringList& heard)
{
    QObject::connect(&shortcuts, &GlobalShortcuts::pressed, &shortcuts, [&](const QString& id) { heard << id; });
    QObject::connect(
        &shortcuts, &GlobalShortcuts::released, &shortcuts, [&](const QString& id) { heard << id + " up"; });
    return heard;
}

/// A fake portal that binds every shortcut it is asked for, except "taken". With `bindsAtOnce` it binds them when the
/// session is created, as KDE 5.27 does.
class ShortcutsPortal final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.GlobalShortcuts")
public:
    explicit ShortcutsPortal(const QDBusConnection& client)
        : bus(client)
    {
        bus.registerObject("/org/freedesktop/portal/desktop", this,
            QDBusConnection::ExportScriptableSlots | QDBusConnection::ExportScriptableSignals);
        bus.registerService("org.freedesktop.portal.Desktop");
    }

    QDBusConnection bus;
    QStringList bound;
    uint answer = 0;
    bool bindsAtOnce = false;

public Q_SLOTS:
    Q_SCRIPTABLE QDBusObjectPath CreateSession(const QVariantMap& options)
    {
        const QDBusObjectPath session("/session/" + options["session_handle_token"].toString());
        QList<PortalShortcut> wanted;
        QDBusMetaType::demarshall(
            options["shortcuts"].value<QDBusArgument>(), QMetaType::fromType<QList<PortalShortcut>>(), &wanted);
        QVariantMap results { { "session_handle", session.path() } };
        if (bindsAtOnce)
            results["shortcuts"] = QVariant::fromValue(grant(session, wanted));
        return respond(options, results);
    }
    Q_SCRIPTABLE QDBusObjectPath BindShortcuts(const QDBusObjectPath& session,
        const QList<corvane::PortalShortcut>& shortcuts, const QString& /*parent*/, const QVariantMap& options)
    {
        EXPECT_FALSE(bindsAtOnce) << "it would open its settings";
        return respond(options, { { "shortcuts", QVariant::fromValue(grant(session, shortcuts)) } });
    }

Q_SIGNALS:
    Q_SCRIPTABLE void Activated(
        const QDBusObjectPath& session, const QString& id, qulonglong time, const QVariantMap& options);

private:
    QList<PortalShortcut> grant(const QDBusObjectPath& session, const QList<PortalShortcut>& shortcuts)
    {
        QList<PortalShortcut> granted;
        for (PortalShortcut shortcut : shortcuts) {
            const QString trigger = shortcut.properties["preferred_trigger"].toString();
            bound << session.path() + ' ' + shortcut.id + ' ' + trigger;
            shortcut.properties["trigger_description"] = "Press " + trigger;
            if (shortcut.id != "taken")
                granted << shortcut;
        }
        return granted;
    }
    QDBusObjectPath respond(const QVariantMap& options, const QVariantMap& results)
    {
        return corvane::respond(bus, message(), options, answer, results);
    }
};

}

TEST(X11GlobalShortcutsTest, aKeyWorksFromTheBackgroundOnceForEachPress)
{
    XServer server;
    X11GlobalShortcuts shortcuts(server.display);
    QStringList heard;
    heardFrom(shortcuts, heard);
    shortcuts.bind({ "capture", "", { "Ctrl+Alt+N" } });
    EXPECT_EQ(shortcuts.state("capture"), (GlobalShortcutState { Kind::Bound, "Ctrl+Alt+N" }));

    server.send({ { XCB_KEY_PRESS, numLock }, { XCB_KEY_RELEASE, numLock } });
    server.hold(control);
    server.hold(alt);
    server.hold(letterN);
    ASSERT_TRUE(await([&] { return heard == QStringList { "capture" }; }));
    server.hold(letterN); // auto-repeat
    server.letGo(letterN);
    ASSERT_TRUE(await([&] { return heard == QStringList({ "capture", "capture up" }); }));
    server.hold(shift); // Ctrl+Alt+Shift+N is a different shortcut
    server.hold(letterN);
    server.letGo(letterN);
    server.letGo(shift);
    shortcuts.bind({ "capture", "", { "Ctrl+Alt+M", "Ctrl+Alt+N" } });
    server.hold(letterN);
    server.letGo(letterN);
    shortcuts.bind({ "dictate", "", { "Ctrl+Alt+N" } });
    server.hold(letterN);
    ASSERT_TRUE(await([&] { return heard.size() == 3; }));
    EXPECT_EQ(heard.last(), "dictate");
}

TEST(X11GlobalShortcutsTest, aKeyOfAnotherProgramIsNamedAndTheNextOneServes)
{
    XServer server;
    X11GlobalShortcuts other(server.display);
    other.bind({ "theirs", "", { "Ctrl+Alt+N" } });
    X11GlobalShortcuts shortcuts(server.display);
    shortcuts.bind({ "capture", "", { "Ctrl+Alt+N" } });
    EXPECT_EQ(shortcuts.state("capture"), (GlobalShortcutState { Kind::Taken, "Ctrl+Alt+N" }));
    shortcuts.bind({ "capture", "", { "Ctrl+Alt+N", "no key", "Ctrl+Alt+Shift+N" } });
    EXPECT_EQ(shortcuts.state("capture"), (GlobalShortcutState { Kind::Bound, "Ctrl+Alt+Shift+N" }));
    other.release("theirs");
    EXPECT_TRUE(await([&] { // the server may process our request before the release
        shortcuts.bind({ "capture", "", { "Ctrl+Alt+N" } });
        return shortcuts.state("capture").kind == Kind::Bound;
    }));

    server.stop();
    ASSERT_TRUE(await([&] { return shortcuts.state("capture").kind == Kind::Unavailable; }));
    shortcuts.bind({ "late", "", { "F9" } });
    EXPECT_EQ(shortcuts.state("late").kind, Kind::Unavailable);
    EXPECT_EQ(X11GlobalShortcuts(":no display").state("capture").kind, Kind::Unbound);
}

TEST(PortalGlobalShortcutsTest, theDesktopBindsThemInOneSession)
{
    PrivateBus bus;
    PortalGlobalShortcuts shortcuts(bus.connect());
    QStringList heard;
    heardFrom(shortcuts, heard);
    shortcuts.bind({ "early", "", { "F9" } });
    bus.settle();
    EXPECT_EQ(shortcuts.state("early").kind, Kind::Unavailable) << "no portal";

    ShortcutsPortal portal(bus.connect());
    shortcuts.release("early");
    shortcuts.bind({ "capture", "Capture a task", { "Ctrl+Alt+N" } });
    shortcuts.bind({ "taken", "", { "Meta+Shift+F5" } });
    EXPECT_EQ(shortcuts.state("capture").kind, Kind::Waiting);
    ASSERT_TRUE(await([&] { return shortcuts.state("taken").kind == Kind::Unavailable; }));
    EXPECT_EQ(shortcuts.state("capture"), (GlobalShortcutState { Kind::Bound, "Press CTRL+ALT+n" }));
    ASSERT_EQ(portal.bound.size(), 2);
    EXPECT_TRUE(portal.bound[1].endsWith("taken SHIFT+LOGO+F5")) << portal.bound[1].toStdString();

    const QDBusObjectPath session(portal.bound[0].section(' ', 0, 0));
    Q_EMIT portal.Activated(QDBusObjectPath("/session/of_another"), "capture", 0, {});
    Q_EMIT portal.Activated(session, "capture", 1, {});
    EXPECT_TRUE(await([&] { return !heard.isEmpty(); }));
    EXPECT_EQ(heard, QStringList("capture"));

    portal.bindsAtOnce = true;
    shortcuts.bind({ "record", "", { "F7" } });
    ASSERT_TRUE(await([&] { return shortcuts.state("record").kind == Kind::Bound; }));
    shortcuts.bind({ "mark", "", { "F6" } });
    bus.settle(); // by now a session is being created
    shortcuts.bind({ "late", "", { "F5" } });
    ASSERT_TRUE(await([&] { return shortcuts.state("late").kind == Kind::Bound; }));
    EXPECT_TRUE(portal.bound.last().startsWith(session.path())) << "the user's keys are kept under its name";

    portal.answer = 1; // the user refused
    shortcuts.bind({ "dictate", "", { "F8" } });
    ASSERT_TRUE(await([&] { return shortcuts.state("dictate").kind == Kind::Unavailable; }));
    EXPECT_EQ(shortcuts.state("capture").kind, Kind::Unavailable);
}

#include "GlobalShortcutsTests.moc"
