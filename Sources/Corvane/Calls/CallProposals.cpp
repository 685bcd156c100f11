#include "Calls/CallProposals.h"

#include "Calls/ContactMatch.h"
#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Foundation/Text.h"
#include "Store/Work/CallWrites.h"

#include <algorithm>
#include <array>

namespace corvane {

namespace {

constexpr int noteLength = 1200;
constexpr int taskTitleLength = 140;
constexpr double linkedConfidence = 0.98;
const QString source = u"call_intelligence"_s;

QString callNoteBody(const QString& title, const QString& summary, const QString& transcript)
{
    QString text = summary.trimmed().isEmpty() ? QString(transcript).replace(u'\n', u' ').trimmed() : summary;
    if (summary.trimmed().isEmpty()) {
        const QString start = firstCharacters(text, noteLength);
        text = start.size() < text.size() ? start + u"..."_s : text;
    }
    return u"Call note: %1\n\n%2\n\nSource: Corvane local call recording. Mic-only until system audio "
           "capture ships."_s.arg(title, text);
}

/// The first line of the summary that names a next step.
QString followUpTitle(const QString& summary, const QString& fallback)
{
    static constexpr std::array signs { "follow"_L1, "action"_L1, "send"_L1, "next"_L1 };
    for (const QString& line : summary.split(u'\n')) {
        const QString lower = line.trimmed().toLower();
        const auto stands = [&lower](QLatin1StringView sign) {
            return lower.contains(sign);
        };
        if (std::ranges::any_of(signs, stands))
            return firstCharacters(line.trimmed(), taskTitleLength).remove(u"- "_s).trimmed();
    }
    return fallback;
}

}

void createCRMProposalsForCall(
    LocalDB& db, const QString& callId, const QString& title, const QString& summary, const QString& transcript)
{
    ContactMatch match { callContact(db, callId), linkedConfidence };
    if (match.contactId.isEmpty())
        match = bestContactMatch(db, title, summary + u'\n' + transcript);
    const auto propose = [&](const QString& kind, const QString& what, const QJsonObject& payload) {
        upsertCallProposal(db,
            { u"proposal:%1:%2"_s.arg(callId, kind), callId, match.contactId, kind, what,
                QString::fromUtf8(compactJson(payload)), match.score });
    };
    propose(u"note"_s, match.contactId.isEmpty() ? u"Link contact, then add call note"_s : u"Add call note"_s,
        { { u"body"_s, callNoteBody(title, summary, transcript) }, { u"source"_s, source }, { u"call_id"_s, callId },
            { u"call_title"_s, title } });
    propose(u"task"_s, u"Create follow-up task"_s,
        { { u"title"_s, followUpTitle(summary, u"Review follow-up for "_s + title) }, { u"due"_s, QString() },
            { u"priority"_s, u"Normal"_s }, { u"status"_s, u"To do"_s }, { u"source"_s, source },
            { u"call_id"_s, callId } });
}

}
