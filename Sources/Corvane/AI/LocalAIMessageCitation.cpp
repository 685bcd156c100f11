#include "AI/LocalAIMessageCitation.h"

#include "Foundation/Literals.h"
#include "Foundation/Text.h"

#include <QDateTime>
#include <algorithm>

namespace corvane {

namespace {

constexpr qsizetype messageLimit = 80;
constexpr int excerptLength = 700;

}

QList<LocalAIMessageCitation> citationMessages(const QList<UnifiedMsgRow>& messages)
{
    QList<const UnifiedMsgRow*> newestFirst;
    for (auto row = messages.crbegin(); row != messages.crend() && newestFirst.size() < messageLimit; ++row) {
        if (!QStringView(row->body).trimmed().isEmpty())
            newestFirst.append(&*row);
    }
    QList<LocalAIMessageCitation> citations;
    citations.reserve(newestFirst.size());
    for (auto row = newestFirst.crbegin(); row != newestFirst.crend(); ++row) {
        const UnifiedMsgRow& message = **row;
        citations.append({ message.id, u'M' + QString::number(citations.size() + 1), message.platform,
            message.direction, message.ts, promptLine(message.body, excerptLength) });
    }
    return citations;
}

QString renderThread(const QList<LocalAIMessageCitation>& citations)
{
    if (citations.isEmpty())
        return u"No local text messages available."_s;
    QStringList lines;
    lines.reserve(citations.size());
    for (const LocalAIMessageCitation& citation : citations) {
        lines.append(u"[%1] %2 %3 %4: %5"_s.arg(citation.label, promptLine(citation.direction),
            promptLine(citation.platform), promptTime(citation.timestamp), citation.excerpt));
    }
    return lines.join(u'\n');
}

QStringList labels(const QList<LocalAIMessageCitation>& citations)
{
    QStringList result;
    std::ranges::transform(citations, std::back_inserter(result), &LocalAIMessageCitation::label);
    return result;
}

QString promptTime(qint64 timestampMs)
{
    return QDateTime::fromMSecsSinceEpoch(timestampMs, Qt::UTC).toString(Qt::ISODate);
}

}
