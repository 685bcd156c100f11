#include "Platform/Linux/Bus/BusNotificationService.h"

#include "Foundation/Literals.h"
#include "Platform/ApplicationId.h"
#include "Platform/Linux/Bus/BusObject.h"
#include "Platform/Linux/Services.h"

#include <QDBusServiceWatcher>
#include <QGuiApplication>
#include <algorithm>

namespace corvane {

namespace {

const BusObject daemon { u"org.freedesktop.Notifications"_s, u"/org/freedesktop/Notifications"_s,
    u"org.freedesktop.Notifications"_s };
const QString clickOnBanner = u"default"_s;
constexpr uchar normalUrgency = 1;
constexpr int daemonDecidesHowLong = -1;

/// On the bus, a text ends at its first NUL.
QString withoutNul(QString text)
{
    return text.remove(QChar::Null);
}

/// Freedesktop banners have no subtitle: it becomes the first line.
QString bodyText(const Banner& banner)
{
    if (banner.subtitle.isEmpty() || banner.body.isEmpty())
        return banner.subtitle + banner.body;
    return banner.subtitle + u'\n' + banner.body;
}

}

BusNotificationService::BusNotificationService(const QDBusConnection& bus)
    : m_bus(bus)
{
    if (!m_bus.isConnected())
        return;
    const auto listen = [this](const char* signal, const char* slot) {
        m_bus.connect(daemon.service, daemon.path, daemon.interface, QString::fromLatin1(signal), this, slot);
    };
    listen("ActionInvoked", SLOT(onActionInvoked(uint, QString)));
    listen("ActivationToken", SLOT(onActivationToken(uint, QString)));
    listen("NotificationClosed", SLOT(onClosed(uint, uint)));
    const auto* watcher
        = new QDBusServiceWatcher(daemon.service, m_bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this, &BusNotificationService::forgetDaemon);
}

bool BusNotificationService::isAvailable() const
{
    return m_bus.isConnected() && !QGuiApplication::desktopFileName().isEmpty();
}

void BusNotificationService::setResponseHandler(ResponseHandler handler)
{
    m_handler = std::move(handler);
}

void BusNotificationService::show(const Banner& banner)
{
    if (!isAvailable())
        return;
    if (m_daemon == Daemon::Known) {
        send(banner);
        return;
    }
    m_waiting.append(banner);
    if (m_daemon == Daemon::Unknown)
        askDaemon();
}

void BusNotificationService::withdraw(const QVariantMap& userInfo)
{
    m_waiting.removeIf([&](const Banner& banner) { return banner.userInfo == userInfo; });
    m_shown.removeIf([&](std::pair<const QString&, Shown&> entry) {
        Shown& shown = entry.second;
        if (shown.userInfo != userInfo)
            return false;
        if (shown.sending) {
            shown.withdrawn = true;
            shown.next.reset();
            return false;
        }
        close(shown.id);
        return true;
    });
}

void BusNotificationService::close(uint id)
{
    callAsync(m_bus, daemon.method(u"CloseNotification"_s, { id }), this, [](const QDBusMessage&) { });
}

void BusNotificationService::askDaemon()
{
    m_daemon = Daemon::Asked;
    callAsync(m_bus, daemon.method(u"GetCapabilities"_s), this, [this](const QDBusMessage& reply) {
        const QList<Banner> waiting = std::exchange(m_waiting, {});
        if (reply.type() != QDBusMessage::ReplyMessage) {
            m_daemon = Daemon::Unknown;
            return;
        }
        m_daemon = Daemon::Known;
        m_capabilities = firstValue(reply).toStringList();
        for (const Banner& banner : waiting)
            send(banner);
    });
}

void BusNotificationService::send(const Banner& banner)
{
    Shown& shown = m_shown[banner.identifier];
    if (shown.sending) {
        shown.next = banner;
        shown.withdrawn = false;
        return;
    }
    shown.sending = true;
    shown.userInfo = banner.userInfo;
    callAsync(m_bus, daemon.method(u"Notify"_s, arguments(banner, shown.id)), this,
        [this, identifier = banner.identifier, generation = m_generation](const QDBusMessage& reply) {
            if (generation == m_generation)
                onSent(identifier, reply);
        });
}

void BusNotificationService::onSent(const QString& identifier, const QDBusMessage& reply)
{
    const uint id = firstValue(reply).toUInt();
    if (id == 0) {
        m_shown.remove(identifier);
        return;
    }
    if (m_shown.value(identifier).withdrawn) {
        close(id);
        m_shown.remove(identifier);
        return;
    }
    Shown& shown = m_shown[identifier];
    shown.id = id;
    shown.sending = false;
    if (const std::optional<Banner> next = std::exchange(shown.next, std::nullopt))
        send(*next);
}

QVariantList BusNotificationService::arguments(const Banner& banner, uint replacedId) const
{
    QStringList actions;
    if (m_capabilities.contains(u"actions"_s)) {
        actions << clickOnBanner << u"Open"_s;
        for (const Banner::Action& action : banner.actions)
            actions << action.id << action.label;
    }
    const QString text = withoutNul(bodyText(banner));
    const QString body = m_capabilities.contains(u"body-markup"_s) ? text.toHtmlEscaped() : text;
    const QVariantMap hints {
        { u"urgency"_s, QVariant::fromValue(normalUrgency) },
        { u"category"_s, banner.category.isEmpty() ? u"im.received"_s : u"x-corvane."_s + banner.category },
        { u"desktop-entry"_s, QGuiApplication::desktopFileName() },
        { u"sound-name"_s, u"message-new-instant"_s },
        { u"x-corvane-thread"_s, banner.thread },
    };
    return { u"Corvane"_s, replacedId, applicationId, withoutNul(banner.title), body, actions, hints,
        daemonDecidesHowLong };
}

void BusNotificationService::forgetDaemon()
{
    ++m_generation;
    m_shown.clear();
    // A pending query is answered by the daemon that it started, or by an error.
    if (m_daemon == Daemon::Known)
        m_daemon = Daemon::Unknown;
}

QHash<QString, BusNotificationService::Shown>::iterator BusNotificationService::findShown(uint id)
{
    return std::find_if(m_shown.begin(), m_shown.end(), [id](const Shown& shown) { return shown.id == id; });
}

void BusNotificationService::onActionInvoked(uint id, const QString& action)
{
    // Signals about all banners reach every program on the bus.
    const auto shown = findShown(id);
    if (shown == m_shown.end() || !m_handler)
        return;
    const QVariantMap userInfo = shown->userInfo;
    m_handler(userInfo, action == clickOnBanner ? QString() : action);
}

void BusNotificationService::onActivationToken(uint id, const QString& token)
{
    if (findShown(id) != m_shown.end())
        qputenv("XDG_ACTIVATION_TOKEN", token.toUtf8());
}

void BusNotificationService::onClosed(uint id, uint)
{
    const auto shown = findShown(id);
    if (shown == m_shown.end())
        return;
    if (shown->sending)
        shown->id = 0;
    else
        m_shown.erase(shown);
}

std::unique_ptr<NotificationService> makeNotificationService()
{
    return std::make_unique<BusNotificationService>(QDBusConnection::sessionBus());
}

}
