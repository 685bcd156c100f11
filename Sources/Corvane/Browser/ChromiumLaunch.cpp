#include "Browser/ChromiumLaunch.h"

#include "Platform/LoginUsers.h"

#include <QFileInfo>
#include <QHostAddress>
#include <QStandardPaths>
#include <QUrl>

namespace corvane {

namespace {

/// Of this machine or its own network, where certificates are rare: a loopback or private address, or a bare name with
/// a port.
bool isLocal(const QString& address)
{
    const QUrl url(u"http://"_s + address);
    const QString host = url.host();
    const QHostAddress ip(host);
    if (ip.isNull())
        return host == "localhost"_L1 || host.endsWith(".localhost"_L1)
            || (!host.isEmpty() && !host.contains(u'.') && url.port() > 0);
    const auto isIn = [&ip](const char* network) {
        return ip.isInSubnet(QHostAddress::parseSubnet(QString::fromLatin1(network)));
    };
    return ip.isLoopback() || ip.isLinkLocal() || ip.isUniqueLocalUnicast() || ip == QHostAddress(QHostAddress::AnyIPv4)
        || isIn("10.0.0.0/8") || isIn("172.16.0.0/12") || isIn("192.168.0.0/16");
}

}

BrowserOptions browserOptions()
{
    BrowserOptions options;
    bool isNumber = false;
    if (const ushort port = qEnvironmentVariable("CORVANE_BROWSER_PORT").toUShort(&isNumber); isNumber && port > 0)
        options.port = port;
    else if (othersMayLogIn())
        options.line = BrowserOptions::Line::Pipe;
    return options;
}

QString chromiumPath()
{
    for (const QString& place : { u"/usr/bin/chromium"_s, u"/opt/google/chrome/chrome"_s }) {
        const QFileInfo file(place);
        if (file.isFile() && file.isExecutable())
            return place;
    }
    for (const QString& name :
        { u"chromium"_s, u"chromium-browser"_s, u"google-chrome"_s, u"google-chrome-stable"_s }) {
        if (const QString found = QStandardPaths::findExecutable(name); !found.isEmpty())
            return found;
    }
    return {};
}

QStringList chromiumArguments(const BrowserOptions& options, const QString& profile)
{
    const bool hasPipe = options.line == BrowserOptions::Line::Pipe;
    QStringList arguments { hasPipe ? u"--remote-debugging-pipe"_s : u"--remote-debugging-port=%1"_s.arg(options.port),
        u"--user-data-dir="_s + profile, u"--no-first-run"_s, u"--no-default-browser-check"_s,
        u"--window-size=1280,800"_s, u"--window-position=-32000,-32000"_s,
        u"--password-store=basic"_s }; // else a locked keyring asks for its password, and every page waits for that
    if (!options.hasWindow)
        arguments.append(u"--headless=new"_s);
    arguments.append(u"--allow-pre-commit-input"_s); // otherwise input before a page's first frame is lost
    if (!options.hasSandbox)
        arguments.append(u"--no-sandbox"_s);
    arguments.append(u"about:blank"_s);
    return arguments;
}

QString normalizedURL(const QString& text, const QString& homeURL)
{
    const QString trimmed = text.trimmed();
    if (trimmed.isEmpty())
        return homeURL;
    if (trimmed.contains("://"_L1) || trimmed == "about:blank"_L1)
        return trimmed;
    return (isLocal(trimmed) ? u"http://"_s : u"https://"_s) + trimmed;
}

namespace browserWords {

const QString notInstalled = u"Google Chrome or Chromium is not installed."_s;
const QString isRoot
    = u"The browser does not run as root: its sandbox would be off. Start Corvane as a user of your own."_s;
const QString noPage = u"Could not create Chromium page."_s;

QString notStarted(quint16 port)
{
    return u"Chromium debugging endpoint did not start on port %1."_s.arg(port);
}

QString portOfAnother(quint16 port)
{
    return u"Port %1 belongs to another user's program, which is left alone."_s.arg(port);
}

QString portOfNoBrowser(quint16 port)
{
    return u"Port %1 is in use by a program that does not answer as a browser."_s.arg(port);
}

QString ended(int code)
{
    return code < 0 ? u"The browser was ended by signal %1."_s.arg(-code)
                    : u"The browser ended with exit status %1."_s.arg(code);
}

}

}
