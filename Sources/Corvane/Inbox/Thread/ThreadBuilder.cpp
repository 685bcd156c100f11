#include "Inbox/Thread/ThreadBuilder.h"

#include "Presentation/DateWords.h"

namespace corvane::ThreadBuilder {

namespace {

constexpr qint64 runStepMs = 180'000;

bool runsOn(const UnifiedMsgRow& earlier, const UnifiedMsgRow& later)
{
    return earlier.direction == later.direction && earlier.sender == later.sender && later.ts - earlier.ts < runStepMs;
}

/// The label of a message's day; neighbours usually share theirs, so few are actually formatted.
class DayLabels {
public:
    explicit DayLabels(qint64 nowMs)
        : m_words(nowMs)
    {
    }

    const QString& of(qint64 ms)
    {
        const QDate day = m_words.dayOf(ms);
        if (day != m_day) {
            m_day = day;
            m_label = m_words.group(ms);
        }
        return m_label;
    }

private:
    DateWords m_words;
    QDate m_day;
    QString m_label;
};

}

QList<ThreadItem> build(const QList<UnifiedMsgRow>& rows, qint64 nowMs)
{
    QList<ThreadItem> items;
    items.reserve(rows.size() * 2); // each message may be on a day of its own
    DayLabels days(nowMs);
    QString previousLabel;
    for (qsizetype i = 0; i < rows.size(); ++i) {
        const UnifiedMsgRow& row = rows.at(i);
        const QString& label = days.of(row.ts);
        const bool newDay = label != previousLabel;
        if (newDay)
            items.append(label);
        previousLabel = label;
        const bool grouped = !newDay && i > 0 && runsOn(rows.at(i - 1), row);
        const bool showTime = i + 1 == rows.size() || !runsOn(row, rows.at(i + 1));
        items.append(ThreadMsg { row, grouped, showTime });
    }
    return items;
}

}
