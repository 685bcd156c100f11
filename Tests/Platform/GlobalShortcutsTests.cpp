#include "Foundation/Literals.h"
#include "Platform/Linux/Input/PortalGlobalShortcuts.h"
#include "Platform/Linux/Input/X11GlobalShortcuts.h"

#include "PortalResponse.h"
#include "Support/Await.h"
#include "Support/PrivateBus.h"
#include "XServer.h"

#include <QDBusContext>
#include <QDBusError>
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
    bool fails = false;

public Q_SLOTS:
    Q_SCRIPTABLE QDBusObjectPath CreateSession(const QVariantMap& options)
    {
        if (fails) {
            sendErrorReply(QDBusError::Failed, "no session");
            return {};
        }
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
    Q_SCRIPTABLE void Deactivated(
        const QDBusObjectPath& session, const QString& id, qulonglong time, const QVariantMap& options);
    Q_SCRIPTABLE void ShortcutsChanged(const QDBusObjectPath& session, const QList<corvane::PortalShortcut>& shortcuts);

private:
    QList<PortalShortcut> grant(const QDBusObjectPath& session, const QList<PortalShortcut>& shortcuts)
    {
        QList<PortalShortcut> granted;
        for (PortalShortcut shortcut : shortcuts) {
            const QString trigger = shortcut.properties.value("preferred_trigger").toString();
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

TEST(X11GlobalShortcutsTest, everyKeyHasItsSymbol)
{
    const auto symbol = [](const char* keys) {
        const auto key = xKeyOf(keys);
        return key ? key->symbol : 0;
    };
    for (const auto& [keys, wanted] : { std::pair<const char*, uint32_t> { "A", 'a' }, { "Z", 'z' }, { "Space", ' ' },
             { "~", '~' }, { "5", '5' }, { "[", '[' }, { "F1", 0xffbe }, { "F35", 0xffe0 }, { "Esc", 0xff1b },
             { "Del", 0xffff }, { "Up", 0xff52 }, { "é", 0 }, { "Ctrl+A, Ctrl+B", 0 }, { "", 0 } })
        EXPECT_EQ(symbol(keys), wanted) << keys;
    for (const auto& [keys, wanted] : { std::pair<const char*, uint16_t> { "A", 0 }, { "Shift+A", XCB_MOD_MASK_SHIFT },
             { "Ctrl+A", XCB_MOD_MASK_CONTROL }, { "Alt+A", XCB_MOD_MASK_1 }, { "Meta+A", XCB_MOD_MASK_4 },
             { "Ctrl+Alt+A", XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_1 } })
        EXPECT_EQ(xKeyOf(keys).value().modifiers, wanted) << keys;
    for (const auto& [keys, wanted] : { std::pair { "Ctrl+Alt+Shift+Meta+N", "CTRL+ALT+SHIFT+LOGO+n" }, { "F5", "F5" },
             { "Ctrl+A, Ctrl+B", "" }, { "", "" } })
        EXPECT_EQ(portalTrigger(keys), wanted);
}

TEST(X11GlobalShortcutsTest, aChangeOfTheKeyboardMovesTheKeysAlong)
{
    XServer server;
    X11GlobalShortcuts shortcuts(server.display);
    QStringList heard;
    heardFrom(shortcuts, heard);
    shortcuts.bind({ "capture", "", { "Ctrl+Alt+N" } });
    shortcuts.bind({ "stays", "", { "Ctrl+Alt+V" } });
    shortcuts.bind({ "missing", "", { "Ctrl+Alt+F35" } });
    EXPECT_EQ(shortcuts.state("missing").kind, Kind::Unavailable);
    QStringList changed;
    QObject::connect(&shortcuts, &GlobalShortcuts::stateChanged, &shortcuts, [&](const QString& id) { changed << id; });

    const XcbConnection other = connectToX(server.display);
    const auto put = [&](xcb_keycode_t code, xcb_keysym_t symbol) {
        xcb_change_keyboard_mapping(other.get(), 1, code, 1, &symbol);
        xcb_flush(other.get());
    };
    constexpr xcb_keycode_t letterM = 58;
    constexpr xcb_keysym_t f35 = 0xffe0;
    put(letterN, f35);
    ASSERT_TRUE(await([&] { return shortcuts.state("missing").kind == Kind::Bound; }));
    EXPECT_EQ(shortcuts.state("capture").kind, Kind::Unavailable) << "there is no such key";
    changed.sort();
    EXPECT_EQ(changed, QStringList({ "capture", "missing" }));
    put(letterM, 'n');
    ASSERT_TRUE(await([&] { return shortcuts.state("capture").kind == Kind::Bound; }));
    for (const xcb_keycode_t code : { letterM, letterN, letterV }) {
        server.send({ { XCB_KEY_PRESS, control }, { XCB_KEY_PRESS, alt }, { XCB_KEY_PRESS, code },
            { XCB_KEY_RELEASE, code }, { XCB_KEY_RELEASE, alt }, { XCB_KEY_RELEASE, control } });
    }
    ASSERT_TRUE(await([&] { return heard.size() == 6; })) << heard.join(' ').toStdString();
    EXPECT_EQ(heard, QStringList({ "capture", "capture up", "missing", "missing up", "stays", "stays up" }));
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

/// Answers the closing of a session, which a real portal does on the session itself.
class PortalSession final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Session")
public:
    explicit PortalSession(QDBusConnection bus)
    {
        bus.registerObject("/session/corvane", this, QDBusConnection::ExportScriptableSlots);
    }

    int closed = 0;

public Q_SLOTS:
    Q_SCRIPTABLE void Close() { ++closed; }
};

TEST(PortalGlobalShortcutsTest, whatTheDesktopChangesAndRefusesIsTold)
{
    PrivateBus bus;
    ShortcutsPortal portal(bus.connect());
    PortalSession open(portal.bus);
    auto shortcuts = std::make_unique<PortalGlobalShortcuts>(bus.connect());
    QStringList heard;
    heardFrom(*shortcuts, heard);
    QStringList changed;
    QObject::connect(
        shortcuts.get(), &GlobalShortcuts::stateChanged, shortcuts.get(), [&](const QString& id) { changed << id; });
    shortcuts->bind({ "capture", "Capture a task", { "Ctrl+Alt+N" } });
    shortcuts->bind({ "keyless", "", {} });
    const auto kind = [&](const QString& id) {
        return shortcuts->state(id).kind;
    };
    ASSERT_TRUE(await([&] { return kind("keyless") == Kind::Bound && kind("capture") == Kind::Bound; }));
    EXPECT_EQ(portal.bound, QStringList({ "/session/corvane capture CTRL+ALT+n", "/session/corvane keyless " }));
    changed.sort();
    EXPECT_EQ(changed, QStringList({ "capture", "capture", "keyless", "keyless" })) << "waiting, then bound";

    const QDBusObjectPath session("/session/corvane");
    const QDBusObjectPath another("/session/of_another");
    const auto now = [](const QString& id, const QVariantMap& properties) {
        return QList<PortalShortcut> { { id, properties } };
    };
    Q_EMIT portal.Deactivated(another, "capture", 0, {});
    Q_EMIT portal.Activated(session, "unknown", 0, {});
    Q_EMIT portal.Deactivated(session, "unknown", 0, {});
    Q_EMIT portal.Deactivated(session, "capture", 0, {});
    Q_EMIT portal.ShortcutsChanged(another, now("keyless", { { "trigger_description", "F1" } }));
    changed.clear();
    Q_EMIT portal.ShortcutsChanged(session, now("capture", { { "trigger_description", "F2" } }));
    ASSERT_TRUE(await([&] { return kind("keyless") == Kind::Unavailable; }));
    EXPECT_EQ(shortcuts->state("capture"), (GlobalShortcutState { Kind::Bound, "F2" }));
    EXPECT_EQ(heard, QStringList { "capture up" });
    EXPECT_EQ(changed.size(), 2);
    Q_EMIT portal.ShortcutsChanged(session, now("capture", {}));
    ASSERT_TRUE(await([&] { return kind("capture") == Kind::Waiting; })) << "it has no key yet";

    // Releasing the last one closes the session and opens none.
    const qsizetype bound = portal.bound.size();
    shortcuts->release("unknown");
    shortcuts->release("keyless");
    shortcuts->release("capture");
    EXPECT_EQ(kind("capture"), Kind::Unbound);
    ASSERT_TRUE(await([&] { return open.closed == 1; }));
    bus.settle();
    EXPECT_EQ(portal.bound.size(), bound);
    shortcuts->bind({ "capture", "", { "F2" } });
    ASSERT_TRUE(await([&] { return kind("capture") == Kind::Bound; })) << "it can be bound again";

    portal.fails = true;
    shortcuts->bind({ "late", "", { "F3" } });
    ASSERT_TRUE(await([&] { return kind("late") == Kind::Unavailable; }));
    EXPECT_EQ(kind("capture"), Kind::Unavailable);
    portal.fails = false;
    shortcuts->bind({ "late", "", { "F3" } });
    ASSERT_TRUE(await([&] { return kind("late") == Kind::Bound && kind("capture") == Kind::Bound; }));
    const int closed = open.closed;
    shortcuts.reset();
    EXPECT_TRUE(await([&] { return open.closed == closed + 1; }));
}

#include "GlobalShortcutsTests.moc"
