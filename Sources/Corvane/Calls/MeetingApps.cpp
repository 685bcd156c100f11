#include "Calls/MeetingApps.h"

#include "Foundation/BackgroundQueue.h"
#include "Foundation/Literals.h"

#include <QStringList>
#include <algorithm>

namespace corvane {

namespace {

enum class Kind { Meetings, Browser };

struct MeetingApp {
    QString name;
    QStringList desktopIds; ///< as Debian, Flathub and the vendors name them; the first represents all
    QStringList binaries;
    Kind kind = Kind::Meetings;
};

const QList<MeetingApp>& knownApps()
{
    static const QList<MeetingApp> apps {
        { u"Discord"_s, { u"com.discordapp.Discord"_s, u"discord"_s }, { u"discord"_s } },
        { u"Element"_s, { u"im.riot.Riot"_s, u"element-desktop"_s }, { u"element-desktop"_s } },
        { u"Jitsi Meet"_s, { u"org.jitsi.jitsi-meet"_s, u"jitsi-meet"_s }, { u"jitsi-meet"_s } },
        { u"Microsoft Teams"_s,
            { u"com.github.IsmaelMartinez.teams_for_linux"_s, u"teams-for-linux"_s, u"teams"_s, u"teams-insiders"_s },
            { u"teams-for-linux"_s, u"teams"_s, u"teams-insiders"_s } },
        { u"Signal"_s, { u"org.signal.Signal"_s, u"signal-desktop"_s }, { u"signal-desktop"_s } },
        { u"Skype"_s, { u"com.skype.Client"_s, u"skypeforlinux"_s }, { u"skypeforlinux"_s } },
        { u"Slack"_s, { u"com.slack.Slack"_s, u"slack"_s }, { u"slack"_s } },
        { u"Telegram"_s, { u"org.telegram.desktop"_s, u"telegramdesktop"_s },
            { u"telegram-desktop"_s, u"telegram"_s } },
        { u"Webex"_s, { u"com.webex.Webex"_s, u"webex"_s }, { u"ciscocollabhost"_s, u"webex"_s } },
        { u"Zoom"_s, { u"us.zoom.Zoom"_s, u"zoom"_s }, { u"zoom"_s } },
        { u"Brave"_s, { u"com.brave.Browser"_s, u"brave-browser"_s }, { u"brave"_s, u"brave-browser"_s },
            Kind::Browser },
        { u"Chromium"_s, { u"org.chromium.Chromium"_s, u"chromium"_s, u"chromium-browser"_s },
            { u"chromium"_s, u"chromium-browser"_s }, Kind::Browser },
        { u"Firefox"_s, { u"org.mozilla.firefox"_s, u"firefox"_s, u"firefox-esr"_s },
            { u"firefox"_s, u"firefox-esr"_s, u"firefox-bin"_s }, Kind::Browser },
        { u"Google Chrome"_s, { u"com.google.Chrome"_s, u"google-chrome"_s }, { u"chrome"_s, u"google-chrome"_s },
            Kind::Browser },
        { u"Microsoft Edge"_s, { u"com.microsoft.Edge"_s, u"microsoft-edge"_s }, { u"msedge"_s, u"microsoft-edge"_s },
            Kind::Browser },
        { u"Opera"_s, { u"com.opera.Opera"_s, u"opera"_s }, { u"opera"_s }, Kind::Browser },
        { u"Vivaldi"_s, { u"com.vivaldi.Vivaldi"_s, u"vivaldi-stable"_s }, { u"vivaldi-bin"_s, u"vivaldi"_s },
            Kind::Browser },
    };
    return apps;
}

bool contains(const QStringList& names, const QString& name)
{
    return names.contains(name, Qt::CaseInsensitive);
}

}

LookForPrograms lookForPrograms(CallAudio& audio, BackgroundQueue& background)
{
    return [&audio, &background](const std::function<void(const ProgramsSeen&)>& answer) {
        background.run<QList<RunningProgram>>([] { return runningPrograms(); },
            [&audio, answer](const QList<RunningProgram>& running) {
                audio.findApplications(
                    [answer, running](const QList<SoundApplication>& sound) { answer({ running, sound }); });
            });
    };
}

QList<MeetingAppCandidate> meetingApps(const ProgramsSeen& seen, bool browsersMustRecord)
{
    QList<MeetingAppCandidate> recording;
    QList<MeetingAppCandidate> others;
    for (const MeetingApp& app : knownApps()) {
        const MeetingAppCandidate candidate { app.desktopIds.first(), app.name };
        const bool records = std::ranges::any_of(seen.sound,
            [&](const SoundApplication& program) { return program.records && contains(app.binaries, program.binary); });
        const bool runs = std::ranges::any_of(seen.running, [&](const RunningProgram& program) {
            return contains(app.binaries, program.binary) || contains(app.desktopIds, program.desktopId);
        });
        if (records)
            recording.append(candidate);
        else if (runs && !(browsersMustRecord && app.kind == Kind::Browser))
            others.append(candidate);
    }
    const auto byName = [](const MeetingAppCandidate& left, const MeetingAppCandidate& right) {
        return left.name.localeAwareCompare(right.name) < 0;
    };
    std::ranges::sort(recording, byName);
    std::ranges::sort(others, byName);
    return recording + others;
}

}
