#pragma once

#include "Foundation/Scheduler.h"
#include "Platform/AppPaths.h"

#include <QStringList>

namespace corvane {

class PortHolders;
class ProcessLauncher;

/// How the browser is started and spoken to.
struct BrowserOptions {
    enum class Line {
        Port, ///< a port of the loopback interface; a browser that listens there already is used
        Pipe, ///< a pipe that nobody else can reach
    };

    Line line = Line::Port;
    quint16 port = 9335;
    bool hasWindow = false; ///< moved off the screen, which window managers may undo
    QString homeURL = {}; ///< opened where no address is given
    QString executable = {}; ///< empty: looked for
    bool hasSandbox = true; ///< false in tests alone, which may run as root
    Milliseconds startLimit { 6000 };
};

/// Of this machine: the port that CORVANE_BROWSER_PORT names, and the pipe where other users can log in.
BrowserOptions browserOptions();

/// What the browser stands on; all of it outlives it.
struct BrowserSurroundings {
    Scheduler& scheduler;
    ProcessLauncher& launcher;
    PortHolders& portHolders;
    AppPaths paths;
    BrowserOptions options;
};

/// Chromium, else Google Chrome: where Debian puts them, then in PATH. Empty where there is none.
QString chromiumPath();

QStringList chromiumArguments(const BrowserOptions& options, const QString& profile);

/// "https://" in front of what names no scheme, or "http://" for this machine and private networks; `homeURL` for
/// nothing.
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
