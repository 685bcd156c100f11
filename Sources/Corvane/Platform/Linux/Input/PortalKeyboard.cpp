#include "Platform/Linux/Input/PortalKeyboard.h"

#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Platform/Linux/Bus/BusObject.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QUuid>

namespace corvane {

namespace {

const BusObject portal { u"org.freedesktop.portal.Desktop"_s, u"/org/freedesktop/portal/desktop"_s,
    u"org.freedesktop.portal.RemoteDesktop"_s };
const QString requestInterface = u"org.freedesktop.portal.Request"_s;
const QString sessionInterface = u"org.freedesktop.portal.Session"_s;
constexpr uint keyboard = 1;
constexpr uint granted = 0;

QString freshToken()
{
    return u"corvane_"_s + QUuid::createUuid().toString(QUuid::Id128);
}

/// The X11 key symbol of a character.
int symbolOf(char32_t character)
{
    constexpr int tab = 0xff09;
    constexpr int returnKey = 0xff0d;
    constexpr int unicode = 0x01000000;
    if (character == U'\t')
        return tab;
    if (character == U'\n')
        return returnKey;
    const bool isLatin = (character >= 0x20 && character < 0x7f) || (character >= 0xa0 && character <= 0xff);
    return isLatin ? int(character) : unicode | int(character);
}

}

PortalKeyboard::PortalKeyboard(const QDBusConnection& bus)
    : m_bus(bus)
{
    const BusObject properties { portal.service, portal.path, u"org.freedesktop.DBus.Properties"_s };
    const QVariantList name { portal.interface, u"AvailableDeviceTypes"_s };
    callAsync(m_bus, properties.method(u"Get"_s, name), this, [this](const QDBusMessage& reply) {
        if (firstValue(reply).toUInt() & keyboard)
            enter(State::Idle);
    });
}

PortalKeyboard::~PortalKeyboard()
{
    closeSession();
}

void PortalKeyboard::ask()
{
    if (m_state != State::Idle)
        return;
    enter(State::Asking);
    request(u"CreateSession"_s, {}, { { u"session_handle_token"_s, freshToken() } }, &PortalKeyboard::chooseDevices);
}

void PortalKeyboard::chooseDevices(const QVariantMap& results)
{
    m_session = unwrapped(results.value(u"session_handle"_s)).toString();
    m_bus.connect(portal.service, m_session, sessionInterface, u"Closed"_s, this, SLOT(onClosed()));
    request(u"SelectDevices"_s, { QVariant::fromValue(QDBusObjectPath(m_session)) }, { { u"types"_s, keyboard } },
        &PortalKeyboard::start);
}

void PortalKeyboard::start(const QVariantMap&)
{
    const QString noParent = u""_s;
    request(u"Start"_s, { QVariant::fromValue(QDBusObjectPath(m_session)), noParent }, {}, &PortalKeyboard::started);
}

void PortalKeyboard::started(const QVariantMap& results)
{
    const bool hasKeyboard = unwrapped(results.value(u"devices"_s)).toUInt() & keyboard;
    enter(hasKeyboard ? State::Granted : State::Absent);
}

void PortalKeyboard::request(const QString& method, const QVariantList& arguments, QVariantMap options, Answer then)
{
    const QString token = freshToken();
    options[u"handle_token"_s] = token;
    const QString sender = m_bus.baseService().mid(1).replace(u'.', u'_');
    m_awaited = u"/org/freedesktop/portal/desktop/request/%1/%2"_s.arg(sender, token);
    m_then = then;
    // Before the call, since the answer may arrive before its reply.
    m_bus.connect(portal.service, m_awaited, requestInterface, u"Response"_s, this, SLOT(onResponse(QDBusMessage)));
    callAsync(
        m_bus, portal.method(method, arguments + QVariantList { options }), this, [this](const QDBusMessage& reply) {
            if (reply.type() != QDBusMessage::ErrorMessage)
                return;
            log(u"PortalKeyboard: "_s + reply.errorMessage());
            enter(State::Absent);
        });
}

void PortalKeyboard::onResponse(const QDBusMessage& response)
{
    m_bus.disconnect(
        portal.service, response.path(), requestInterface, u"Response"_s, this, SLOT(onResponse(QDBusMessage)));
    if (response.path() != m_awaited || response.signature() != u"ua{sv}")
        return;
    if (response.arguments().at(0).toUInt() != granted) {
        closeSession();
        return enter(State::Absent); // the user refused, and is not asked again in this run
    }
    (this->*m_then)(qdbus_cast<QVariantMap>(response.arguments().at(1)));
}

/// The user or the desktop revoked the access.
void PortalKeyboard::onClosed()
{
    m_session.clear();
    enter(State::Idle);
}

void PortalKeyboard::type(const QString& text, std::function<void(bool)> done)
{
    const QVariant session = QVariant::fromValue(QDBusObjectPath(m_session));
    QList<QDBusMessage> keys;
    for (const uint character : text.toUcs4()) {
        for (const uint isDown : { 1U, 0U })
            keys.append(
                portal.method(u"NotifyKeyboardKeysym"_s, { session, QVariantMap(), symbolOf(character), isDown }));
    }
    send(std::move(keys), std::move(done));
}

void PortalKeyboard::pressPaste(std::function<void(bool)> done)
{
    // From linux/input-event-codes.h.
    constexpr int shift = 42;
    constexpr int insert = 110;
    const QVariant session = QVariant::fromValue(QDBusObjectPath(m_session));
    QList<QDBusMessage> keys;
    for (const auto& [code, isDown] : { std::pair { shift, 1U }, { insert, 1U }, { insert, 0U }, { shift, 0U } })
        keys.append(portal.method(u"NotifyKeyboardKeycode"_s, { session, QVariantMap(), code, isDown }));
    send(std::move(keys), std::move(done));
}

/// One after the other: the portal handles several calls at once, and a key released before it is pressed stays
/// down.
void PortalKeyboard::send(QList<QDBusMessage> keys, std::function<void(bool)> done)
{
    if (keys.isEmpty())
        return done(true);
    const QDBusMessage first = keys.takeFirst();
    callAsync(m_bus, first, this, [this, keys, done = std::move(done)](const QDBusMessage& reply) {
        if (reply.type() == QDBusMessage::ReplyMessage)
            send(keys, done);
        else
            done(false);
    });
}

void PortalKeyboard::enter(State state)
{
    if (m_state == state)
        return;
    m_state = state;
    Q_EMIT changed();
}

void PortalKeyboard::closeSession()
{
    if (!m_session.isEmpty() && m_bus.isConnected())
        m_bus.send(BusObject { portal.service, m_session, sessionInterface }.method(u"Close"_s));
    m_session.clear();
}

}
