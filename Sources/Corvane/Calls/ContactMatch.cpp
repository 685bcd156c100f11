#include "Calls/ContactMatch.h"

#include "Foundation/Literals.h"
#include "Store/Work/CalendarQueries.h"
#include "Store/Work/CallQueries.h"

#include <QRegularExpression>
#include <algorithm>

namespace corvane {

namespace {

constexpr int contactsLookedAt = 300;
constexpr qsizetype shortestWord = 3;
constexpr double wholeNameScore = 0.95;
constexpr double leastScore = 0.6;
constexpr double leastCalendarScore = 0.75;
constexpr double emailScore = 0.99;

double scoreOf(const QString& name, const QString& text)
{
    static const QRegularExpression space(u"\\s+"_s);
    QStringList words = name.split(space, Qt::SkipEmptyParts);
    words.removeIf([](const QString& word) { return word.size() < shortestWord; });
    const auto occurring = std::ranges::count_if(words, [&](const QString& word) { return text.contains(word); });
    const double ratio = words.isEmpty() ? 0 : double(occurring) / double(words.size());
    return text.contains(name) ? std::max(ratio, wholeNameScore) : ratio;
}

}

ContactMatch bestContactMatch(LocalDB& db, const QString& title, const QString& text)
{
    const QString searched = (title + u'\n' + text).toLower();
    ContactMatch best;
    for (const NamedContact& contact : namedContacts(db, contactsLookedAt)) {
        const QString name = contact.name.toLower().trimmed();
        if (name.size() < shortestWord)
            continue;
        if (const double score = scoreOf(name, searched); score > best.score)
            best = { contact.id, score };
    }
    if (best.score < leastScore)
        best.contactId.clear();
    return best;
}

std::optional<CalendarContactMatch> calendarContactMatch(LocalDB& db, const CalEvent& event)
{
    QStringList names;
    for (const CalAttendee& attendee : event.attendeeDetails) {
        if (attendee.currentUser)
            continue;
        names.append(attendee.name);
        if (attendee.email.isEmpty())
            continue;
        if (const QString contact = contactWithEmail(db, attendee.email); !contact.isEmpty())
            return CalendarContactMatch { contact, emailScore, u"attendee email"_s };
    }
    const ContactMatch match = bestContactMatch(db, event.title, names.join(u' '));
    if (match.contactId.isEmpty() || match.score < leastCalendarScore)
        return std::nullopt;
    return CalendarContactMatch { match.contactId, match.score, u"attendee/title name match"_s };
}

}
