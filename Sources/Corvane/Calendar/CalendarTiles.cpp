#include "Calendar/CalendarTiles.h"

#include "Presentation/DateWords.h"

#include <QDateTime>

namespace corvane {

void CalendarTiles::show(const CalendarLayout& layout, const QDate& first, qint64 nowMs)
{
    constexpr double hourMs = 3'600'000;
    m_layout = layout;
    const qint64 day = first.daysTo(DateWords(nowMs).today());
    m_nowDay = day >= 0 && day < layout.days.size() ? int(day) : -1;
    m_nowHour = QDateTime::fromMSecsSinceEpoch(nowMs).time().msecsSinceStartOfDay() / hourMs - double(layout.firstHour);
    // Rows of a fuller page are kept at the end: recreating their tiles would be the greatest cost of a page.
    m_blocks.assign(layout.blocks + m_blocks.rows().mid(layout.blocks.size()));
    m_allDay.assign(layout.allDay);
    Q_EMIT changed();
}

}
