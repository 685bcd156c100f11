#include "Platform/Linux/Calendar/ExpandedIcs.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr qint64 dayMs = 86'400'000;
constexpr qint64 aheadMs = 2 * dayMs; ///< expanded beyond the request, for the next ones
constexpr qint64 aroundMs = 28 * dayMs; ///< around a page, for its neighbours

}

void ExpandedIcs::addTo(QList<CalendarEntry>& entries, const QString& calendarId, qint64 fromMs, qint64 toMs)
{
    if (!m_file)
        return;
    if (!m_ahead.holds(fromMs, toMs))
        m_ahead = follow(calendarId, fromMs, toMs + aheadMs);
    m_ahead.addTo(entries, fromMs, toMs);
}

void ExpandedIcs::addPageTo(QList<CalendarEntry>& entries, const QString& calendarId, qint64 fromMs, qint64 toMs)
{
    if (!m_file)
        return;
    if (!m_around.holds(fromMs, toMs))
        m_around = follow(calendarId, fromMs - aroundMs, toMs + aroundMs);
    m_around.addTo(entries, fromMs, toMs);
}

ExpandedIcs::Stretch ExpandedIcs::follow(const QString& calendarId, qint64 fromMs, qint64 toMs) const
{
    Stretch stretch { fromMs, toMs, m_file->entries(fromMs, toMs) };
    for (CalendarEntry& entry : stretch.entries)
        entry.calendarId = calendarId;
    return stretch;
}

void ExpandedIcs::Stretch::addTo(QList<CalendarEntry>& found, qint64 from, qint64 to) const
{
    std::ranges::copy_if(entries, std::back_inserter(found), [&](const CalendarEntry& entry) {
        return entry.startMs < to && std::max(entry.endMs, entry.startMs + 1) > from;
    });
}

}
