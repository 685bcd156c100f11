#include "Platform/Linux/LinuxDesktop.h"

#include "Foundation/Log.h"
#include "Platform/Linux/BusObject.h"
#include "Platform/Linux/LinuxPlatform.h"

#include <QDBusServiceWatcher>
#include <QEvent>
#include <QGuiApplication>
#include <QPalette>
#include <QProcess>
#include <QStandardPaths>

namespace corvane {

namespace {

const BusObject portal { QStringLiteral("org.freedesktop.portal.Desktop"),
    QStringLiteral("/org/freedesktop/portal/desktop"), QStringLiteral("org.freedesktop.portal.Settings") };

/// Docks own this name while they listen for badges.
const QString dockService = QStringLiteral("com.canonical.Unity");

const QString appearanceGroup = QStringLiteral("org.freedesktop.appearance");
const QString colourSchemeKey = QStringLiteral("color-scheme");
const QString interfaceGroup = QStringLiteral("org.gnome.desktop.interface");
const QString animationsKey = QStringLiteral("enable-animations");
constexpr uint prefersDark = 1;
constexpr uint prefersLight = 2;

bool paletteIsDark()
{
    if (qobject_cast<QGuiApplication*>(QCoreApplication::instance()) == nullptr)
        return false;
    return QGuiApplication::palette().color(QPalette::Window).lightness() < 128;
}

bool startOpener(const QUrl& url)
{
    QProcess opener;
    opener.setProgram(QStandardPaths::findExecutable(QStringLiteral("xdg-open")));
    opener.setArguments({ url.toString(QUrl::FullyEncoded) });
    opener.setStandardOutputFile(QProcess::nullDevice());
    opener.setStandardErrorFile(QProcess::nullDevice());
    if (!opener.program().isEmpty() && opener.startDetached())
        return true;
    log(QStringLiteral("Desktop: xdg-open does not start"));
    return false;
}

}

LinuxDesktop::LinuxDesktop(const QDBusConnection& bus)
    : m_bus(bus)
{
    updateScheme();
    if (QCoreApplication::instance() != nullptr)
        QCoreApplication::instance()->installEventFilter(this);
    if (!m_bus.isConnected())
        return;
    m_bus.connect(portal.service, portal.path, portal.interface, QStringLiteral("SettingChanged"), this,
        SLOT(onSettingChanged(QDBusMessage)));
    const auto whenItComes = [this](const QString& service, void (LinuxDesktop::*action)()) {
        const auto* watcher = new QDBusServiceWatcher(service, m_bus, QDBusServiceWatcher::WatchForOwnerChange, this);
        connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this, action](const QString&, const QString&, const QString& owner) {
                if (!owner.isEmpty())
                    (this->*action)();
            });
    };
    whenItComes(portal.service, &LinuxDesktop::readSettings);
    whenItComes(dockService, &LinuxDesktop::sendBadge);
    readSettings();
}

void LinuxDesktop::openInBrowser(const QUrl& url)
{
    if (url.scheme() != QStringLiteral("https") && url.scheme() != QStringLiteral("http")) {
        log(QStringLiteral("Desktop.openInBrowser: not a web address: ") + url.toDisplayString());
        return;
    }
    startOpener(url);
}

bool LinuxDesktop::openFile(const QString& path)
{
    return startOpener(QUrl::fromLocalFile(path));
}

bool LinuxDesktop::openLink(const QUrl& link)
{
    return startOpener(link);
}

QString LinuxDesktop::hostName() const
{
    return QSysInfo::machineHostName();
}

void LinuxDesktop::setBadge(int count)
{
    if (count == m_badge)
        return;
    m_badge = count;
    sendBadge();
}

void LinuxDesktop::sendBadge()
{
    if (!m_bus.isConnected() || QGuiApplication::desktopFileName().isEmpty())
        return;
    auto update = QDBusMessage::createSignal(QStringLiteral("/com/canonical/unity/launcherentry/1"),
        QStringLiteral("com.canonical.Unity.LauncherEntry"), QStringLiteral("Update"));
    const QVariantMap properties { { QStringLiteral("count"), qlonglong(m_badge) },
        { QStringLiteral("count-visible"), m_badge > 0 } };
    update << QStringLiteral("application://%1.desktop").arg(QGuiApplication::desktopFileName()) << properties;
    m_bus.send(update);
}

void LinuxDesktop::readSettings()
{
    read(appearanceGroup, colourSchemeKey);
    read(interfaceGroup, animationsKey);
}

void LinuxDesktop::read(const QString& group, const QString& key)
{
    callAsync(m_bus, portal.method(QStringLiteral("Read"), { group, key }), this,
        [this, key](const QDBusMessage& reply) { apply(key, firstValue(reply)); });
}

void LinuxDesktop::onSettingChanged(const QDBusMessage& signal)
{
    if (signal.signature() != QStringLiteral("ssv"))
        return;
    const QString group = signal.arguments().at(0).toString();
    const QString key = signal.arguments().at(1).toString();
    if ((group == appearanceGroup && key == colourSchemeKey) || (group == interfaceGroup && key == animationsKey))
        apply(key, unwrapped(signal.arguments().at(2)));
}

void LinuxDesktop::apply(const QString& key, const QVariant& value)
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

void LinuxDesktop::updateScheme()
{
    const bool dark = m_preferredScheme == prefersDark || (m_preferredScheme != prefersLight && paletteIsDark());
    const ColourScheme scheme = dark ? ColourScheme::Dark : ColourScheme::Light;
    if (scheme == m_scheme)
        return;
    m_scheme = scheme;
    Q_EMIT appearanceChanged();
}

bool LinuxDesktop::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::ApplicationPaletteChange)
        updateScheme();
    return Desktop::eventFilter(watched, event);
}

std::unique_ptr<Desktop> makeDesktop()
{
    return std::make_unique<LinuxDesktop>(QDBusConnection::sessionBus());
}

}
