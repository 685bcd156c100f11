#include "Platform/Linux/Bus/DesktopAutostart.h"

#include "Foundation/Literals.h"
#include "Platform/AppPaths.h"
#include "Platform/ApplicationId.h"
#include "Platform/Linux/Bus/BusObject.h"
#include "Platform/Linux/Bus/PortalRequest.h"
#include "Platform/Linux/Services.h"
#include "Platform/PrivateFile.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>

namespace corvane {

namespace {

const QString background = u"--background"_s;

/// Values of an entry know two layers of escapes: those of quoted arguments, then those of texts.
QString commandOf(QString program)
{
    for (const QChar special : { u'\\', u'"', u'`', u'$' })
        program.replace(special, u'\\' + QString(special));
    program.replace(u'%', u"%%"_s);
    return u'"' + program.replace(u'\\', u"\\\\"_s) + u"\" "_s + background;
}

}

DesktopAutostart::DesktopAutostart(
    const QDBusConnection& bus, const QString& configuration, const QString& program, Sandbox sandbox)
    : m_bus(bus)
    , m_entry(configuration + u"/autostart/"_s + applicationId + u".desktop"_s)
    , m_program(program)
    , m_sandbox(sandbox)
{
}

// Desktops switch an entry off by one of these lines.
bool DesktopAutostart::isOn() const
{
    QFile entry(m_entry);
    if (!entry.open(QIODevice::ReadOnly))
        return false;
    const QList<QByteArray> lines = entry.readAll().split('\n');
    return !lines.contains("Hidden=true"_ba) && !lines.contains("X-GNOME-Autostart-enabled=false"_ba);
}

void DesktopAutostart::set(bool on, QObject* context, std::function<void(const Result<void>&)> done)
{
    if (m_sandbox == Sandbox::No) {
        done(write(on));
        return;
    }
    const QVariantMap options { { u"reason"_s, u"New messages arrive from the start."_s }, { u"autostart"_s, on },
        { u"commandline"_s, QStringList { u"corvane"_s, background } } };
    const QString noParent = u""_s;
    new PortalRequest(
        m_bus, { u"org.freedesktop.portal.Background"_s, u"RequestBackground"_s, { noParent }, options },
        [this, on, done = std::move(done)](const Result<QVariantMap>& results) {
            const bool isDone
                = results && unwrapped(results->value(u"autostart"_s)).toBool() == on && !results->isEmpty();
            done(isDone ? write(on) : failure(u"The desktop did not allow it."_s));
        },
        context);
}

Result<void> DesktopAutostart::write(bool on) const
{
    const QString content = u"[Desktop Entry]\nType=Application\nName=Corvane\nExec=%1\nIcon=%2\n"_s.arg(
        commandOf(m_program), applicationId);
    const bool written
        = on ? writePrivateFile(m_entry, content.toUtf8()) : !QFile::exists(m_entry) || QFile::remove(m_entry);
    return written ? Result<void>() : failure(u"%1 cannot be changed."_s.arg(m_entry));
}

std::unique_ptr<Autostart> makeAutostart(const AppPaths& paths)
{
    const QString configuration = QFileInfo(QFileInfo(paths.defaultsFile).path()).path();
    const bool isSandboxed = QFile::exists(u"/.flatpak-info"_s);
    return std::make_unique<DesktopAutostart>(QDBusConnection::sessionBus(), configuration,
        QCoreApplication::applicationFilePath(),
        isSandboxed ? DesktopAutostart::Sandbox::Yes : DesktopAutostart::Sandbox::No);
}

}
