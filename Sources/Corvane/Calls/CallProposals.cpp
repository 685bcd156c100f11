#include "Calls/CallProposals.h"

#include "Calls/ContactMatch.h"
#include "Foundation/Json.h"
#include "Foundation/Text.h"
#include "Store/Work/CallWrites.h"

#include <algorithm>
#include <array>

namespace corvane {

namespace {

constexpr int noteLength = 1200;
constexpr int taskTitleLength = 140;
constexpr double linkedConfidence = 0.98;
const QString source = QStringLiteral("call_intelligence");

QString callNoteBody(const QString& title, const QString& summary, const QString& transcript)
{
    QString text = summary.trimmed().isEmpty() ? QString(transcript).replace(u'\n', u' ').trimmed() : summary;
    if (summary.trimmed().isEmpty()) {
        const QString start = firstCharacters(text, noteLength);
        text = start.size() < text.size() ? start + QStringLiteral("...") : text;
    }
    return QStringLiteral("Call note: %1\n\n%2\n\nSource: Corvane local call recording. Mic-only until system audio "
                          "capture ships.")
        .arg(title, text);
}

/// The first line of the summary that says what comes next.
QString followUpTitle(const QString& summary, const QString& fallback)
{
    static constexpr std::array signs { QLatin1StringView("follow"), QLatin1StringView("action"),
        QLatin1StringView("send"), QLatin1StringView("next") };
    for (const QString& line : summary.split(u'\n')) {
        const QString lower = line.trimmed().toLower();
        const auto stands = [&lower](QLatin1StringView sign) {
            return lower.contains(sign);
        };
        if (std::ranges::any_of(signs, stands))
            return firstCharacters(line.trimmed(), taskTitleLength).remove(QStringLiteral("- ")).trimmed();
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
            { QStringLiteral("proposal:%1:%2").arg(callId, kind), callId, match.contactId, kind, what,
                QString::fromUtf8(compactJson(payload)), match.score });
    };
    propose(QStringLiteral("note"),
        match.contactId.isEmpty() ? QStringLiteral("Link contact, then add call note")
                                  : QStringLiteral("Add call note"),
        { { QStringLiteral("body"), callNoteBody(title, summary, transcript) }, { QStringLiteral("source"), source },
            { QStringLiteral("call_id"), callId }, { QStringLiteral("call_title"), title } });
    propose(QStringLiteral("task"), QStringLiteral("Create follow-up task"),
        { { QStringLiteral("title"), followUpTitle(summary, QStringLiteral("Review follow-up for ") + title) },
            { QStringLiteral("due"), QString() }, { QStringLiteral("priority"), QStringLiteral("Normal") },
            { QStringLiteral("status"), QStringLiteral("To do") }, { QStringLiteral("source"), source },
            { QStringLiteral("call_id"), callId } });
}

}
