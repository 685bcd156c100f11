#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Platform/Linux/Bus/BusObject.h"
#include "Platform/Linux/Services.h"

#include <QCoreApplication>
#include <QProcess>
#include <QProcessEnvironment>

namespace corvane {

namespace {

constexpr int answerMs = 1000;

/// A service that began before the desktop lacks what the desktop told the service manager later.
QStringList variablesOfSession()
{
    const auto bus = QDBusConnection::sessionBus();
    const BusObject properties { u"org.freedesktop.systemd1"_s, u"/org/freedesktop/systemd1"_s,
        u"org.freedesktop.DBus.Properties"_s };
    QDBusMessage call = properties.method(u"Get"_s, { u"org.freedesktop.systemd1.Manager"_s, u"Environment"_s });
    call.setAutoStartService(false);
    return bus.isConnected() ? firstValue(bus.call(call, QDBus::Block, answerMs)).toStringList() : QStringList();
}

}

bool startWithWindow()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(u"QT_QPA_PLATFORM"_s); // that of a program without a window
    const auto hasDisplay = [&environment] {
        return environment.contains(u"DISPLAY"_s) || environment.contains(u"WAYLAND_DISPLAY"_s);
    };
    if (!hasDisplay()) {
        for (const QString& variable : variablesOfSession())
            environment.insert(variable.section(u'=', 0, 0), variable.section(u'=', 1));
    }
    QProcess program;
    program.setProgram(QCoreApplication::applicationFilePath());
    program.setProcessEnvironment(environment);
    const bool started = hasDisplay() && program.startDetached();
    if (!started)
        log(u"SingleInstance: a window was asked for, and there is no display"_s);
    return started;
}

}
