#include "Browser/BrowserRows.h"

#include "Foundation/Literals.h"
#include "Foundation/Text.h"
#include "Presentation/BodyText.h"
#include "Presentation/CountWords.h"
#include "Presentation/DateWords.h"

#include <QDateTime>
#include <QMultiMap>

namespace corvane {

namespace {

QString levelWords(const QString& level)
{
    return level == "warning"_L1 ? u"Console warning"_s
        : level == "assert"_L1   ? u"Failed assertion"_s
                                 : u"Console error"_s;
}

QString clock(qint64 ms)
{
    return QDateTime::fromMSecsSinceEpoch(ms).toString(u"HH:mm:ss"_s);
}

}

QList<BrowserIssue> browserIssues(const QList<BrowserConsoleEvent>& console, const QList<BrowserNetworkEvent>& network)
{
    QMultiMap<qint64, BrowserIssue> timed; // of two at the same time, the later one first
    const auto add = [&timed](qint64 at, const QString& id, const QString& kind, bool isError, const QString& text,
                         const QString& place) {
        BrowserIssue issue;
        issue.id = id;
        issue.kind = kind;
        issue.isError = isError;
        issue.text = BodyText::printable(text);
        issue.place = BodyText::printable(place);
        issue.time = clock(at);
        timed.insert(-at, issue);
    };
    for (const BrowserConsoleEvent& event : console)
        add(event.capturedAt, event.id, levelWords(event.level), event.level != "warning"_L1, event.text,
            placeOfEvent(event));
    for (const BrowserNetworkEvent& event : network)
        add(event.capturedAt, event.id, event.statusCode ? u"HTTP %1"_s.arg(*event.statusCode) : u"Failed request"_s,
            true, event.detail, event.url);
    return timed.values();
}

QList<BrowserSession> browserSessions(const QList<DevBrowserSessionRow>& rows, qint64 nowMs)
{
    static const QHash<QString, QString> words { { u"live"_s, u"looked at"_s }, { u"captured"_s, u"evidence saved"_s },
        { u"reported"_s, u"bug filed"_s } };
    const DateWords dates(nowMs);
    QList<BrowserSession> sessions;
    for (const DevBrowserSessionRow& row : rows) {
        const qint64 at = QDateTime::fromString(row.updatedAt, Qt::ISODateWithMs).toMSecsSinceEpoch();
        BrowserSession session;
        session.id = row.id;
        session.title = BodyText::printable(row.url.isEmpty() ? row.title : row.url);
        session.facts = words.value(row.status, row.status) + u", "_s + dates.listTime(at);
        session.problem = BodyText::printable(row.lastError);
        session.hasEvidence = !row.lastCapturePath.isEmpty();
        sessions.append(session);
    }
    return sessions;
}

QString browserEvidencePreview(
    const QList<BrowserConsoleEvent>& console, const QList<BrowserNetworkEvent>& network, qsizetype newest)
{
    if (console.isEmpty() && network.isEmpty())
        return u"No browser warnings, console errors, failed requests, or HTTP errors captured yet."_s;
    QStringList lines { countWords(console.size(), u"console problem"_s, u"console problems"_s) + u", "_s
        + countWords(network.size(), u"failed request"_s, u"failed requests"_s) };
    for (const BrowserIssue& issue :
        browserIssues(console, network).first(std::min(newest, console.size() + network.size())))
        lines.append(issue.kind + u": "_s + singleLine(issue.text)
            + (issue.place.isEmpty() ? QString() : u" ("_s + issue.place + u')'));
    return lines.join(u'\n');
}

}
