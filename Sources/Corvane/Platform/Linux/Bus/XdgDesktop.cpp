#include "Platform/Linux/Bus/XdgDesktop.h"

#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Platform/Linux/Bus/BusObject.h"
#include "Platform/Linux/Bus/PortalRequest.h"
#include "Platform/Linux/Services.h"

#include <QDBusServiceWatcher>
#include <QEvent>
#include <QGuiApplication>
#include <QPalette>
#include <QProcess>
#include <QStandardPaths>
#include <sys/stat.h>

namespace corvane {

namespace {

const BusObject portal { u"org.freedesktop.portal.Desktop"_s, u"/org/freedesktop/portal/desktop"_s,
    u"org.freedesktop.portal.Settings"_s };

/// Docks own this name while they support badges.
const QString dockService = u"com.canonical.Unity"_s;

const QString appearanceGroup = u"org.freedesktop.appearance"_s;
const QString colourSchemeKey = u"color-scheme"_s;
const QString interfaceGroup = u"org.gnome.desktop.interface"_s;
const QString animationsKey = u"enable-animations"_s;
constexpr uint prefersDark = 1;
constexpr uint prefersLight = 2;

bool paletteIsDark()
{
    if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()) == nullptr)
        return false;
    return QGuiApplication::palette().color(QPalette::Window).lightness() < 128;
}

bool startOpener(const QUrl& url, mode_t umaskOfOpened)
{
    QProcess opener;
    opener.setProgram(QStandardPaths::findExecutable(u"xdg-open"_s));
    opener.setArguments({ url.toString(QUrl::FullyEncoded) });
    opener.setStandardOutputFile(QProcess::nullDevice());
    opener.setStandardErrorFile(QProcess::nullDevice());
    // Files that other threads create in this moment are in a private folder.
    const mode_t own = ::umask(umaskOfOpened);
    const bool started = !opener.program().isEmpty() && opener.startDetached();
    ::umask(own);
    if (started)
        return true;
    log(u"Desktop: xdg-open does not start"_s);
    return false;
}

}

XdgDesktop::XdgDesktop(const QDBusConnection& bus, mode_t umaskOfOpened)
    : m_bus(bus)
    , m_umaskOfOpened(umaskOfOpened)
{
    updateScheme();
    if (QCoreApplication::instance() != nullptr)
        QCoreApplication::instance()->installEventFilter(this);
    if (!m_bus.isConnected())
        return;
    m_bus.connect(
        portal.service, portal.path, portal.interface, u"SettingChanged"_s, this, SLOT(onSettingChanged(QDBusMessage)));
    const auto whenItComes = [this](const QString& service, void (XdgDesktop::*action)()) {
        const auto* watcher = new QDBusServiceWatcher(service, m_bus, QDBusServiceWatcher::WatchForOwnerChange, this);
        connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this, action](const QString&, const QString&, const QString& owner) {
                if (!owner.isEmpty())
                    (this->*action)();
            });
    };
    whenItComes(portal.service, &XdgDesktop::readSettings);
    whenItComes(dockService, &XdgDesktop::sendBadge);
    readSettings();
}

void XdgDesktop::openInBrowser(const QUrl& url)
{
    if (url.scheme() != u"https"_s && url.scheme() != u"http"_s) {
        log(u"Desktop.openInBrowser: not a web address: "_s + url.toDisplayString());
        return;
    }
    startOpener(url, m_umaskOfOpened);
}

bool XdgDesktop::openFile(const QString& path)
{
    return startOpener(QUrl::fromLocalFile(path), m_umaskOfOpened);
}

bool XdgDesktop::openLink(const QUrl& link)
{
    return startOpener(link, m_umaskOfOpened);
}

void XdgDesktop::chooseFiles(
    const QString& title, QObject* context, std::function<void(const Result<QList<QUrl>>& files)> done)
{
    choose({ { u"multiple"_s, true }, { u"directory"_s, false } }, title, context,
        u"This desktop has no window to choose files in. Drag them here, or paste them."_s, std::move(done));
}

void XdgDesktop::chooseFolder(
    const QString& title, QObject* context, std::function<void(const Result<QList<QUrl>>& folder)> done)
{
    choose({ { u"multiple"_s, false }, { u"directory"_s, true } }, title, context,
        u"This desktop has no window to choose a folder in. Type its path."_s, std::move(done));
}

void XdgDesktop::choose(const QVariantMap& options, const QString& title, QObject* context, const QString& missing,
    std::function<void(const Result<QList<QUrl>>& chosen)> done)
{
    const QString noParent = u""_s;
    new PortalRequest(
        m_bus, { u"org.freedesktop.portal.FileChooser"_s, u"OpenFile"_s, { noParent, title }, options },
        [missing, done = std::move(done)](const Result<QVariantMap>& results) {
            if (!results)
                return done(failure(missing));
            QList<QUrl> chosen;
            for (const QString& uri : unwrapped(results->value(u"uris"_s)).toStringList())
                chosen.append(QUrl(uri, QUrl::StrictMode));
            done(chosen);
        },
        context);
}

QString XdgDesktop::hostName() const
{
    return QSysInfo::machineHostName();
}

void XdgDesktop::setBadge(int count)
{
    if (count == m_badge)
        return;
    m_badge = count;
    sendBadge();
}

void XdgDesktop::sendBadge()
{
    if (!m_bus.isConnected() || QGuiApplication::desktopFileName().isEmpty())
        return;
    auto update = QDBusMessage::createSignal(
        u"/com/canonical/unity/launcherentry/1"_s, u"com.canonical.Unity.LauncherEntry"_s, u"Update"_s);
    const QVariantMap properties { { u"count"_s, qlonglong(m_badge) }, { u"count-visible"_s, m_badge > 0 } };
    update << u"application://%1.desktop"_s.arg(QGuiApplication::desktopFileName()) << properties;
    m_bus.send(update);
}

void XdgDesktop::readSettings()
{
    read(appearanceGroup, colourSchemeKey);
    read(interfaceGroup, animationsKey);
}

void XdgDesktop::read(const QString& group, const QString& key)
{
    callAsync(m_bus, portal.method(u"Read"_s, { group, key }), this,
        [this, key](const QDBusMessage& reply) { apply(key, firstValue(reply)); });
}

void XdgDesktop::onSettingChanged(const QDBusMessage& signal)
{
    if (signal.signature() != u"ssv"_s)
        return;
    const QString group = signal.arguments().at(0).toString();
    const QString key = signal.arguments().at(1).toString();
    if ((group == appearanceGroup && key == colourSchemeKey) || (group == interfaceGroup && key == animationsKey))
        apply(key, unwrapped(signal.arguments().at(2)));
}

void XdgDesktop::apply(const QString& key, const QVariant& value)
{
    if (!value.isValid())
        return;
    if (key == colourSchemeKey) {
        m_preferredScheme = value.toUInt();
        updateScheme();
    } else if (value.toBool() != m_animations) {
        m_animations = value.toBool();
        Q_EMIT appearanceChanged();
    }
}

void XdgDesktop::updateScheme()
{
    const bool dark = m_preferredScheme == prefersDark || (m_preferredScheme != prefersLight && paletteIsDark());
    const ColourScheme scheme = dark ? ColourScheme::Dark : ColourScheme::Light;
    if (scheme == m_scheme)
        return;
    m_scheme = scheme;
    Q_EMIT appearanceChanged();
}

bool XdgDesktop::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::ApplicationPaletteChange)
        updateScheme();
    return Desktop::eventFilter(watched, event);
}

std::unique_ptr<Desktop> makeDesktop(mode_t umaskOfOpened)
{
    return std::make_unique<XdgDesktop>(QDBusConnection::sessionBus(), umaskOfOpened);
}

}
