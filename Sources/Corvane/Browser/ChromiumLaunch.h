#pragma once

#include "Foundation/Scheduler.h"
#include "Platform/AppPaths.h"

#include <QStringList>

namespace corvane {

class PortHolders;
class ProcessLauncher;

/// How the browser is started and reached.
struct BrowserOptions {
    enum class Line {
        Port, ///< a port of the loopback interface; a browser that listens there already is used
        Pipe, ///< a pipe that nobody else can reach
    };

    Line line = Line::Port;
    quint16 port = 9335;
    bool hasWindow = false; ///< moved off the screen, which window managers may undo
    QString homeURL = {}; ///< opened if no address is given
    QString executable = {}; ///< empty: searched for
    bool hasSandbox = true; ///< false only in tests, which may run as root
    Milliseconds startLimit { 6000 };
};

/// The options for this machine: the port from CORVANE_BROWSER_PORT, or a pipe if other users can log in.
BrowserOptions browserOptions();

/// What the browser uses; all references outlive it.
struct BrowserSurroundings {
    Scheduler& scheduler;
    ProcessLauncher& launcher;
    PortHolders& portHolders;
    AppPaths paths;
    BrowserOptions options;
};

/// Chromium, else Google Chrome: first where Debian installs them, then in PATH. Empty if there is none.
QString chromiumPath();

QStringList chromiumArguments(const BrowserOptions& options, const QString& profile);

/// Adds "https://" to an address without a scheme, or "http://" for this machine and private networks. An empty address
/// becomes `homeURL`.
QString normalizedURL(const QString& text, const QString& homeURL);

namespace browserWords {
extern const QString notInstalled;
extern const QString isRoot;
extern const QString noPage;
QString notStarted(quint16 port);
QString portOfAnother(quint16 port);
QString portOfNoBrowser(quint16 port);
QString ended(int code);
}

}
