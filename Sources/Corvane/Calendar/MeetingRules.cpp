#include "Calendar/MeetingRules.h"

#include "Foundation/Literals.h"
#include "Foundation/Text.h"

#include <QDateTime>
#include <QLocale>
#include <QRegularExpression>
#include <algorithm>
#include <array>

namespace corvane {

namespace {

constexpr qint64 minute = 60;
constexpr qint64 hour = 60 * minute;
constexpr qint64 day = 24 * hour;
constexpr qint64 daysAsNumber = 145 * hour; ///< up to six days, rounded up

constexpr std::array keptFree { "out of office"_L1, "focus time"_L1, "focus block"_L1, "no meeting"_L1 };
constexpr std::array noMeeting { "ooo"_L1, "birthday"_L1, "holiday"_L1, "blocked"_L1, "lunch"_L1, "break"_L1,
    "prayer"_L1, "jummah"_L1 };
constexpr std::array meetingWords { "meet.google"_L1, "zoom"_L1, "teams"_L1, "webex"_L1, "facetime"_L1, "whatsapp"_L1,
    "meeting"_L1, "call"_L1, "demo"_L1, "sync"_L1, "interview"_L1, "standup"_L1, "discovery"_L1 };
constexpr std::array meetingHosts { "meet.google.com"_L1, "zoom.us"_L1, "teams.microsoft.com"_L1, "teams.live.com"_L1,
    "webex.com"_L1, "whereby.com"_L1, "around.co"_L1, "meet.jit.si"_L1 };

bool containsAny(const QString& text, const auto& words)
{
    return std::ranges::any_of(words, [&](QLatin1StringView word) { return text.contains(word); });
}

QList<QUrl> linksIn(const QString& text)
{
    static const QRegularExpression pattern(
        uR"(\b(?:[a-z][a-z0-9+.-]{0,20}://|www\.)[^\s<>"'\\]+)"_s, QRegularExpression::CaseInsensitiveOption);
    QList<QUrl> links;
    for (auto matches = pattern.globalMatch(text); matches.hasNext();) {
        QString link = matches.next().captured();
        link.replace("&amp;"_L1, "&"_L1);
        while (!link.isEmpty() && u".,;:!?)]}>*_"_s.contains(link.back()))
            link.chop(1);
        const QUrl url(link.startsWith("www."_L1, Qt::CaseInsensitive) ? u"https://"_s + link : link);
        if (url.isValid() && !url.host().isEmpty())
            links.append(url);
    }
    return links;
}

qint64 secondsUntil(qint64 ms, qint64 fromMs)
{
    const qint64 difference = ms - fromMs;
    return difference > 0 ? (difference + 999) / 1000 : difference / 1000;
}

/// Starts in more than a minute.
QString units(qint64 seconds, qint64 ms)
{
    if (seconds < hour)
        return u"%1m"_s.arg(seconds / minute);
    if (seconds < day) {
        const qint64 minutes = seconds % hour / minute;
        return minutes == 0 ? u"%1h"_s.arg(seconds / hour) : u"%1h %2m"_s.arg(seconds / hour).arg(minutes);
    }
    if (seconds < daysAsNumber)
        return u"%1d"_s.arg((seconds / hour + 23) / 24);
    return QLocale().toString(QDateTime::fromMSecsSinceEpoch(ms).date(), u"MMM d"_s);
}

}

bool isPlaceholderBlock(const CalEvent& event)
{
    return containsAny(event.title.toLower(), keptFree);
}

bool isMeetingCandidate(const CalEvent& event)
{
    if (event.allDay)
        return false;
    if (std::ranges::any_of(event.attendeeDetails, [](const auto& who) { return who.currentUser && who.declined; }))
        return false;
    const QString text = QStringList { event.title, event.location, event.notes }.join(u' ').toLower();
    if (containsAny(text, keptFree))
        return false;
    const QString padded = u' ' + QString(text).replace(u'\n', u' ') + u' ';
    if (std::ranges::any_of(noMeeting, [&](auto word) { return padded.contains(u' ' + word + u' '); }))
        return false;
    if (std::ranges::any_of(event.attendeeDetails, [](const auto& who) { return !who.currentUser; }))
        return true;
    return event.attendees >= 2 || containsAny(text, meetingWords);
}

std::optional<QUrl> meetingURL(const CalEvent& event)
{
    const QList<QUrl> links = linksIn(event.location + u'\n' + event.notes);
    const auto ofMeeting = std::ranges::find_if(
        links, [](const QUrl& link) { return containsAny(link.host().toLower(), meetingHosts); });
    if (ofMeeting != links.end())
        return *ofMeeting;
    const auto web = std::ranges::find_if(links, [](const QUrl& link) { return link.scheme().startsWith("http"_L1); });
    return web == links.end() ? std::nullopt : std::optional(*web);
}

std::optional<QUrl> joinURL(const CalEvent& event)
{
    const std::optional<QUrl> url = meetingURL(event);
    return url && (url->scheme() == "https"_L1 || url->scheme() == "http"_L1) ? url : std::nullopt;
}

QString compactTitle(const CalEvent& event)
{
    constexpr int most = 32;
    const QString title = event.title.trimmed();
    return firstCharacters(title, most) == title ? title : firstCharacters(title, most - 1) + u'…';
}

std::optional<CalEvent> nextMeetingCandidate(const QList<CalEvent>& events, qint64 nowMs)
{
    const CalEvent* next = nullptr;
    for (const CalEvent& event : events) {
        if (event.endMs >= nowMs && (!next || event.startMs < next->startMs) && isMeetingCandidate(event))
            next = &event;
    }
    return next ? std::optional(*next) : std::nullopt;
}

QString nextMeetingHeadline(const CalEvent& event, qint64 nowMs)
{
    const QString relative = relativeStart(event.startMs, nowMs);
    if (relative == "now"_L1)
        return u"Meeting starts now"_s;
    return relative == "started"_L1 ? u"Meeting already started"_s : u"Next meeting "_s + relative;
}

QString relativeStart(qint64 ms, qint64 fromMs)
{
    const qint64 seconds = secondsUntil(ms, fromMs);
    if (seconds < -minute)
        return u"started"_s;
    if (seconds <= minute)
        return u"now"_s;
    return seconds < daysAsNumber ? u"in "_s + units(seconds, ms) : units(seconds, ms);
}

QString compactCountdown(qint64 toMs, qint64 fromMs)
{
    const qint64 seconds = secondsUntil(toMs, fromMs);
    return seconds <= minute ? u"Now"_s : units(seconds, toMs);
}

}
