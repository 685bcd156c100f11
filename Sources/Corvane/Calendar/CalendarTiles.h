#pragma once

#include "Calendar/CalendarLayout.h"
#include "Presentation/RowListModel.h"

namespace corvane {

/// A page of the calendar as the grid shows it: its columns, its hours and the tiles of the events.
class CalendarTiles : public QObject {
    Q_OBJECT
    Q_PROPERTY(QList<corvane::DayHead> days READ days NOTIFY changed)
    Q_PROPERTY(int firstHour READ firstHour NOTIFY changed)
    Q_PROPERTY(int lastHour READ lastHour NOTIFY changed)
    Q_PROPERTY(corvane::GadgetListModel* blocks READ blocks CONSTANT) ///< of EventBlock, by day and time
    Q_PROPERTY(int blockCount READ blockCount NOTIFY changed) ///< rows of `blocks` on the page; the others are spare
    Q_PROPERTY(corvane::GadgetListModel* allDay READ allDay CONSTANT)
    Q_PROPERTY(int allDayRows READ allDayRows NOTIFY changed)
    Q_PROPERTY(QList<corvane::FreeGap> gaps READ gaps NOTIFY changed)
    Q_PROPERTY(int nowDay READ nowDay NOTIFY changed) ///< today's column, or -1
    Q_PROPERTY(double nowHour READ nowHour NOTIFY changed) ///< hours after the start of the grid
public:
    using QObject::QObject;

    void show(const CalendarLayout& layout, const QDate& first, qint64 nowMs);
    const CalendarLayout& layout() const { return m_layout; }

    const QList<DayHead>& days() const { return m_layout.days; }
    int firstHour() const { return m_layout.firstHour; }
    int lastHour() const { return m_layout.lastHour; }
    GadgetListModel* blocks() { return &m_blocks; }
    int blockCount() const { return int(m_layout.blocks.size()); }
    GadgetListModel* allDay() { return &m_allDay; }
    int allDayRows() const { return m_layout.allDayRows; }
    const QList<FreeGap>& gaps() const { return m_layout.gaps; }
    int nowDay() const { return m_nowDay; }
    double nowHour() const { return m_nowHour; }

Q_SIGNALS:
    void changed();

private:
    CalendarLayout m_layout;
    RowListModel<EventBlock> m_blocks;
    RowListModel<EventBlock> m_allDay;
    int m_nowDay = -1;
    double m_nowHour = 0;
};

}
