#include "Platform/Linux/Input/PortalGlobalShortcuts.h"

#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Platform/Linux/Bus/BusObject.h"
#include "Platform/Linux/Input/X11GlobalShortcuts.h"
#include "Platform/Linux/Services.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QKeySequence>

namespace corvane {

static QDBusArgument& operator<<(QDBusArgument& argument, const PortalShortcut& shortcut)
{
    argument.beginStructure();
    argument << shortcut.id << shortcut.properties;
    argument.endStructure();
    return argument;
}

static const QDBusArgument& operator>>(const QDBusArgument& argument, PortalShortcut& shortcut)
{
    argument.beginStructure();
    argument >> shortcut.id >> shortcut.properties;
    argument.endStructure();
    return argument;
}

namespace {

using Kind = GlobalShortcutState::Kind;

const BusObject portal { u"org.freedesktop.portal.Desktop"_s, u"/org/freedesktop/portal/desktop"_s,
    u"org.freedesktop.portal.GlobalShortcuts"_s };
const QString requestInterface = u"org.freedesktop.portal.Request"_s;
const QString sessionInterface = u"org.freedesktop.portal.Session"_s;

const QString handleToken = u"handle_token"_s;
const QString shortcutsKey = u"shortcuts"_s;
const QString triggerDescription = u"trigger_description"_s;

QList<PortalShortcut> shortcutsIn(const QVariant& value)
{
    const QVariant plain = unwrapped(value);
    if (plain.metaType() != QMetaType::fromType<QDBusArgument>())
        return {};
    const auto argument = plain.value<QDBusArgument>();
    return argument.currentSignature() == u"a(sa{sv})" ? qdbus_cast<QList<PortalShortcut>>(argument)
                                                       : QList<PortalShortcut>();
}

}

QString portalTrigger(const QString& keys)
{
    const QKeySequence sequence(keys, QKeySequence::PortableText);
    if (sequence.count() != 1)
        return {};
    const Qt::KeyboardModifiers held = sequence[0].keyboardModifiers();
    QString trigger;
    for (const auto& [modifier, name] : { std::pair { Qt::ControlModifier, "CTRL+" }, { Qt::AltModifier, "ALT+" },
             { Qt::ShiftModifier, "SHIFT+" }, { Qt::MetaModifier, "LOGO+" } })
        if (held & modifier)
            trigger += QLatin1StringView(name);
    const QString key = QKeySequence(sequence[0].key()).toString(QKeySequence::PortableText);
    return trigger + (key.size() == 1 ? key.toLower() : key);
}

PortalGlobalShortcuts::PortalGlobalShortcuts(const QDBusConnection& bus)
    : m_bus(bus)
{
    qDBusRegisterMetaType<PortalShortcut>();
    qDBusRegisterMetaType<QList<PortalShortcut>>();
    const auto on = [&](const char* signal, const char* slot) {
        m_bus.connect(portal.service, portal.path, portal.interface, QLatin1StringView(signal), this, slot);
    };
    on("Activated", SLOT(onActivated(QDBusMessage)));
    on("Deactivated", SLOT(onDeactivated(QDBusMessage)));
    on("ShortcutsChanged", SLOT(onShortcutsChanged(QDBusMessage)));
}

PortalGlobalShortcuts::~PortalGlobalShortcuts()
{
    if (!m_session.isEmpty() && m_bus.isConnected())
        m_bus.send(closing());
}

void PortalGlobalShortcuts::bind(const GlobalShortcut& shortcut)
{
    m_shortcuts.removeIf([&](const GlobalShortcut& each) { return each.id == shortcut.id; });
    m_shortcuts.append(shortcut);
    setState(shortcut.id, { m_bus.isConnected() ? Kind::Waiting : Kind::Unavailable });
    bindSoon();
}

void PortalGlobalShortcuts::release(const QString& id)
{
    if (m_shortcuts.removeIf([&](const GlobalShortcut& each) { return each.id == id; }) == 0)
        return;
    setState(id, {});
    m_states.remove(id);
    bindSoon();
}

/// One session for everything bound and released in a turn of the event loop.
void PortalGlobalShortcuts::bindSoon()
{
    if (!m_bus.isConnected() || std::exchange(m_isQueued, true))
        return;
    QMetaObject::invokeMethod(this, &PortalGlobalShortcuts::openSession, Qt::QueuedConnection);
}

void PortalGlobalShortcuts::openSession()
{
    m_isQueued = false;
    if (m_isBusy) {
        m_isStale = true;
        return;
    }
    if (m_session.isEmpty())
        return createSession();
    m_isBusy = true;
    callAsync(m_bus, closing(), this, [this](const QDBusMessage&) { createSession(); });
    m_session.clear();
}

QDBusMessage PortalGlobalShortcuts::closing() const
{
    return BusObject { portal.service, m_session, sessionInterface }.method(u"Close"_s);
}

QList<PortalShortcut> PortalGlobalShortcuts::wanted() const
{
    QList<PortalShortcut> shortcuts;
    for (const GlobalShortcut& shortcut : m_shortcuts) {
        QVariantMap properties { { u"description"_s, shortcut.description } };
        if (const QString trigger = portalTrigger(shortcut.keys.value(0)); !trigger.isEmpty())
            properties[u"preferred_trigger"_s] = trigger;
        shortcuts.append({ shortcut.id, properties });
    }
    return shortcuts;
}

void PortalGlobalShortcuts::createSession()
{
    if (m_shortcuts.isEmpty())
        return settle();
    m_isBusy = true;
    m_isStale = false;
    ask(u"CreateSession"_s, {},
        { { u"session_handle_token"_s, u"corvane"_s }, { shortcutsKey, QVariant::fromValue(wanted()) } },
        &PortalGlobalShortcuts::bindAll);
}

void PortalGlobalShortcuts::bindAll(const QVariantMap& results)
{
    m_session = unwrapped(results.value(u"session_handle"_s)).toString();
    // KDE 5.27 binds what the session is created with; asked to bind, it does nothing but open its settings.
    if (!shortcutsIn(results.value(shortcutsKey)).isEmpty())
        return finish(results);
    const QString noParent;
    ask(u"BindShortcuts"_s,
        { QVariant::fromValue(QDBusObjectPath(m_session)), QVariant::fromValue(wanted()), noParent }, {},
        &PortalGlobalShortcuts::finish);
}

void PortalGlobalShortcuts::finish(const QVariantMap& results)
{
    takeShortcuts(results);
    settle();
}

void PortalGlobalShortcuts::settle()
{
    m_isBusy = false;
    if (std::exchange(m_isStale, false))
        bindSoon();
}

void PortalGlobalShortcuts::takeShortcuts(const QVariantMap& results)
{
    QHash<QString, GlobalShortcutState> bound;
    for (const PortalShortcut& shortcut : shortcutsIn(results.value(shortcutsKey))) {
        const QString keys = unwrapped(shortcut.properties.value(triggerDescription)).toString();
        bound.insert(shortcut.id, { keys.isEmpty() ? Kind::Waiting : Kind::Bound, keys }); // it may have no key yet
    }
    const QStringList ids = m_states.keys();
    for (const QString& id : ids)
        setState(id, bound.value(id, { Kind::Unavailable }));
}

void PortalGlobalShortcuts::ask(const QString& method, const QVariantList& arguments, QVariantMap options, Answer then)
{
    const QString token = u"corvane%1"_s.arg(++m_requests);
    options[handleToken] = token;
    const QString sender = m_bus.baseService().mid(1).replace(u'.', u'_');
    const QString path = u"/org/freedesktop/portal/desktop/request/%1/%2"_s.arg(sender, token);
    m_awaited[path] = then;
    // Before the call, since the answer may arrive before its reply.
    m_bus.connect(portal.service, path, requestInterface, u"Response"_s, this, SLOT(onResponse(QDBusMessage)));
    callAsync(m_bus, portal.method(method, arguments + QVariantList { options }), this,
        [this, path](const QDBusMessage& reply) {
            if (reply.type() != QDBusMessage::ErrorMessage || m_awaited.remove(path) == 0)
                return;
            log(u"GlobalShortcuts: "_s + reply.errorMessage());
            setAll({ Kind::Unavailable });
            settle();
        });
}

void PortalGlobalShortcuts::onResponse(const QDBusMessage& response)
{
    m_bus.disconnect(
        portal.service, response.path(), requestInterface, u"Response"_s, this, SLOT(onResponse(QDBusMessage)));
    const Answer then = m_awaited.take(response.path());
    if (!then || response.signature() != u"ua{sv}")
        return;
    constexpr uint granted = 0;
    if (response.arguments().at(0).toUInt() != granted) {
        setAll({ Kind::Unavailable });
        return settle();
    }
    (this->*then)(qdbus_cast<QVariantMap>(response.arguments().at(1)));
}

bool PortalGlobalShortcuts::isOurs(const QDBusMessage& signal) const
{
    return !m_session.isEmpty() && signal.arguments().value(0).value<QDBusObjectPath>().path() == m_session;
}

void PortalGlobalShortcuts::onActivated(const QDBusMessage& signal)
{
    const QString id = signal.arguments().value(1).toString();
    if (isOurs(signal) && m_states.contains(id))
        Q_EMIT pressed(id);
}

void PortalGlobalShortcuts::onDeactivated(const QDBusMessage& signal)
{
    const QString id = signal.arguments().value(1).toString();
    if (isOurs(signal) && m_states.contains(id))
        Q_EMIT released(id);
}

void PortalGlobalShortcuts::onShortcutsChanged(const QDBusMessage& signal)
{
    if (isOurs(signal))
        takeShortcuts({ { shortcutsKey, signal.arguments().value(1) } });
}

void PortalGlobalShortcuts::setAll(const GlobalShortcutState& state)
{
    const QStringList ids = m_states.keys();
    for (const QString& id : ids)
        setState(id, state);
}

void PortalGlobalShortcuts::setState(const QString& id, const GlobalShortcutState& state)
{
    if (m_states.value(id) == state)
        return;
    m_states[id] = state;
    Q_EMIT stateChanged(id);
}

std::unique_ptr<GlobalShortcuts> makeGlobalShortcuts()
{
    // On Wayland an X11 grab only works while an X11 program has the focus.
    if (!qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        return std::make_unique<PortalGlobalShortcuts>(QDBusConnection::sessionBus());
    return std::make_unique<X11GlobalShortcuts>();
}

}
