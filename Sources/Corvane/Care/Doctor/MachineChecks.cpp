#include "Care/Doctor/Checks.h"

#include "Engines/EngineSpec.h"
#include "Engines/MailSettings.h"
#include "Engines/ToolServer.h"
#include "Platform/Probes.h"
#include "Store/Core/Upkeep.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QLocale>
#include <QUrl>
#include <QVersionNumber>

namespace corvane {

namespace {

const QVersionNumber oldestNode { 22, 6 };
constexpr qint64 dayMs = 24LL * 3600 * 1000;

/// Something optional that is missing.
CheckResult addition(bool isThere, const QString& words, const QString& without, const QString& advice)
{
    return isThere ? good(words) : CheckResult { Health::Good, without, advice };
}

CheckResult expected(bool isThere, const QString& words, const QString& without, const QString& advice)
{
    return isThere ? good(words) : CheckResult { Health::Warning, without, advice };
}

bool hasDisplay()
{
    return qEnvironmentVariableIsSet("DISPLAY") || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
}

/// Checks of the desktop are skipped if there is none.
CheckResult ofDesktop(bool isThere, const QString& words, const QString& without, const QString& advice)
{
    return hasDisplay() ? expected(isThere, words, without, advice) : addition(isThere, words, without, advice);
}

}

CheckResult checks::node(const CheckedProfile& profile)
{
    const QString node = nodePath(engineDir(profile.paths));
    const QString advice = u"Install Node 22.6 or newer, or name one in CORVANE_NODE. Engines run on it."_s;
    const auto printed = node.endsWith("/env"_L1) ? programOutput(node, { u"node"_s, u"--version"_s })
                                                  : programOutput(node, { u"--version"_s });
    if (!printed)
        return { Health::Failure, u"No working one was found."_s, advice };
    const QString version = QString::fromLatin1(printed->trimmed());
    if (QVersionNumber::fromString(version.mid(1)) < oldestNode)
        return { Health::Failure, u"%1 is %2, which is too old."_s.arg(node, version), advice };
    return good(u"%1 (%2)."_s.arg(version, node));
}

CheckResult checks::engines(const CheckedProfile& profile)
{
    const QString folder = engineDir(profile.paths);
    const QString advice = u"Install Corvane again, or run tools/setup in its source folder."_s;
    if (!QFileInfo::exists(folder + u"/src/main.ts"_s))
        return { Health::Failure, u"Their programs are not in %1."_s.arg(folder), advice };
    if (!QFileInfo(folder + u"/node_modules"_s).isDir())
        return { Health::Failure, u"Their libraries are not in %1/node_modules."_s.arg(folder), advice };
    return good(u"They are in %1."_s.arg(folder));
}

CheckResult checks::toolServer(const CheckedProfile& profile)
{
    const QString port = QString::number(toolServerPort());
    if (!answersAt(u"127.0.0.1"_s, toolServerPort()))
        return { Health::Good, u"It is not running; port %1 is free."_s.arg(port),
            u"Corvane starts it. Agents reach this profile only while it runs."_s };
    if (!accessFacts(profile.paths.applicationSupport + u"/mcp-token"_s).exists)
        return { Health::Warning, u"Another program listens on port %1."_s.arg(port),
            u"It may be another profile of Corvane. Quit it, then start Corvane again."_s };
    return good(u"It answers on port %1."_s.arg(port));
}

CheckResult checks::keyring(const CheckedProfile&)
{
    return ofDesktop(desktopServices().keyring, u"The desktop's keyring answers."_s,
        u"There is none: passwords are kept in a private file."_s,
        u"Install a keyring such as gnome-keyring or KeePassXC. The content of the file moves there."_s);
}

CheckResult checks::notifications(const CheckedProfile&)
{
    return ofDesktop(desktopServices().notifications, u"The desktop shows banners."_s,
        u"Nothing shows banners on this desktop."_s, u"Install a notification daemon, such as dunst or mako."_s);
}

CheckResult checks::tray(const CheckedProfile&)
{
    return ofDesktop(desktopServices().trayHost, u"The desktop has a tray."_s, u"This desktop has no tray."_s,
        u"On GNOME, install the extension AppIndicator. Without a tray, the program keeps running when its window is closed."_s);
}

CheckResult checks::portals(const CheckedProfile&)
{
    return ofDesktop(desktopServices().portal, u"The desktop's portal answers."_s,
        u"There is no portal: the desktop's own file dialog is not available."_s,
        u"Install xdg-desktop-portal and the one of your desktop, such as xdg-desktop-portal-gtk."_s);
}

CheckResult checks::sound(const CheckedProfile&)
{
    return ofDesktop(soundServerAnswers(), u"The sound server answers."_s,
        u"No sound server answers: nothing is played or recorded."_s, u"Start PipeWire or PulseAudio."_s);
}

CheckResult checks::speech(const CheckedProfile& profile)
{
    const QDir models(profile.paths.applicationSupport + u"/Models/Speech"_s);
    const bool hasModel = !models.entryList({ u"*.bin"_s }, QDir::Files).isEmpty();
    const bool hasWhisper = QFileInfo(QCoreApplication::applicationDirPath() + u"/corvane-whisper"_s).isExecutable();
    if (hasModel && !hasWhisper)
        return { Health::Warning, u"There is a model, but nothing to run it with."_s,
            u"Install Corvane again: corvane-whisper is missing."_s };
    if (hasModel)
        return good(u"A speech model is installed."_s);
    return expected(!firstInstalled({ u"pocketsphinx_continuous"_s, u"pocketsphinx"_s }).isEmpty(),
        u"The basic recogniser is installed; a model in Settings > Voice understands more."_s,
        u"No speech recogniser is installed."_s, u"Install pocketsphinx, or a model in Settings > Voice."_s);
}

CheckResult checks::modelServer(const CheckedProfile& profile)
{
    QStringList servers { u"http://127.0.0.1:11434"_s, u"http://127.0.0.1:8080"_s };
    if (!profile.modelServer.isEmpty())
        servers = { profile.modelServer };
    for (const QString& server : servers) {
        const QUrl url(server);
        if (answersAt(url.host(), url.port(80)))
            return good(u"A model server answers at %1."_s.arg(server));
    }
    return expected(profile.modelServer.isEmpty(), u"None is running; drafts and summaries are off."_s,
        u"The one in the settings does not answer: %1."_s.arg(profile.modelServer),
        u"Start it, or choose another in Settings > Assistant."_s);
}

CheckResult checks::codex(const CheckedProfile& profile)
{
    for (const QString& place : profile.codexPlaces) {
        if (QFileInfo(place).isExecutable())
            return good(place + u'.');
    }
    return good(u"It is not installed; you need it only if you choose it as the assistant."_s);
}

CheckResult checks::browser(const CheckedProfile&)
{
    const QString path = firstInstalled({ u"chromium"_s, u"chromium-browser"_s, u"google-chrome"_s });
    return addition(!path.isEmpty(), path + u'.', u"Chromium is not installed."_s,
        u"Install chromium to preview pages in the developer workspace."_s);
}

CheckResult checks::calendars(const CheckedProfile& profile)
{
    return addition(profile.hasCalendars, u"There is a calendar to read."_s, u"There is no calendar to read."_s,
        u"Keep calendars in ~/.local/share/calendars, as vdirsyncer does, or choose a folder in Settings > Calendar."_s);
}

CheckResult checks::contacts(const CheckedProfile& profile)
{
    return addition(profile.hasContacts, u"There is an address book to read."_s, u"There is no address book to read."_s,
        u"Keep contacts in ~/.local/share/contacts, as vdirsyncer does."_s);
}

CheckResult checks::mailServers(const CheckedProfile& profile)
{
    QStringList silent;
    int answered = 0;
    for (const Account& account : profile.accounts.value_or(QList<Account>())) {
        if (account.channel() != Channel::Email || !profile.secrets.contains(account.slug))
            continue;
        const MailSettings settings = mailSettings(profile.secrets.value(account.slug));
        for (const auto& server : { settings.imap, settings.smtp }) {
            if (!server)
                continue;
            if (answersAt(server->host, server->port))
                ++answered;
            else
                silent.append(u"%1:%2 of %3"_s.arg(server->host).arg(server->port).arg(account.name));
        }
    }
    if (!silent.isEmpty())
        return { Health::Failure, u"No answer from %1."_s.arg(silent.join(u", "_s)),
            u"Is this computer online? If so, check the account's servers in Settings > Accounts."_s };
    return good(answered == 0 ? u"No account has a mail server of its own."_s : u"All of them answer."_s);
}

CheckResult checks::clock(const CheckedProfile& profile)
{
    const QString now = QLocale().toString(QDateTime::fromMSecsSinceEpoch(profile.nowMs), QLocale::ShortFormat);
    const auto db = SqlConnection::reader(profile.paths.database(), std::make_shared<std::atomic<bool>>(false));
    if (newestMessageMs(*db) > profile.nowMs + dayMs)
        return { Health::Warning, u"It says %1, and there are messages from later."_s.arg(now),
            u"Set the clock, or let the network set it: timedatectl set-ntp true."_s };
    if (clockIsSynchronised() == false)
        return { Health::Warning, u"It says %1, but nothing keeps it right."_s.arg(now),
            u"Let the network set it: timedatectl set-ntp true."_s };
    return good(u"It says %1."_s.arg(now));
}

}
