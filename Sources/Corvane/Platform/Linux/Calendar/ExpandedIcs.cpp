#include "Platform/Linux/Calendar/ExpandedIcs.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr qint64 dayMs = 86'400'000;
constexpr qint64 aheadMs = 2 * dayMs; ///< what is followed beyond the question, so that the next one moves within it

}

void ExpandedIcs::addTo(QList<CalendarEntry>& entries, const QString& calendarId, qint64 fromMs, qint64 toMs)
{
    if (!m_file)
        return;
    if (fromMs < m_fromMs || toMs > m_toMs) {
        m_fromMs = fromMs;
        m_toMs = toMs + aheadMs;
        m_entries = m_file->entries(m_fromMs, m_toMs);
        for (CalendarEntry& entry : m_entries)
            entry.calendarId = calendarId;
    }
    std::ranges::copy_if(m_entries, std::back_inserter(entries), [&](const CalendarEntry& entry) {
        return entry.startMs < toMs && std::max(entry.endMs, entry.startMs + 1) > fromMs;
    });
}

}
