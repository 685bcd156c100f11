#include "Calendar/CalendarLayout.h"

#include "Calendar/MeetingRules.h"
#include "Foundation/Literals.h"
#include "Presentation/DateWords.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr qint64 minuteMs = 60'000;
constexpr qint64 joinAheadMs = 10 * minuteMs;
constexpr double shortest = 0.4; ///< the minimum height of a block in hours, so that its title is readable
constexpr qint64 shortestGapMinutes = 30;

qint64 startOf(const QDate& day)
{
    return day.startOfDay().toMSecsSinceEpoch();
}

/// By local clock time: a day of 23 or 25 hours has the same grid.
double hoursInto(const QDate& day, qint64 ms, const DateWords& dates)
{
    const QDateTime time = dates.localTime(ms);
    return time.date() > day ? 24.0 : time.date() < day ? 0.0 : double(time.time().msecsSinceStartOfDay()) / 3'600'000;
}

QString timeText(const CalEvent& event, const DateWords& dates)
{
    return event.endMs > event.startMs ? dates.clockTime(event.startMs) + u'–' + dates.clockTime(event.endMs)
                                       : dates.clockTime(event.startMs);
}

/// Blocks that overlap share the column's width.
void placeInLanes(QList<EventBlock>& blocks)
{
    for (qsizetype first = 0; first < blocks.size();) {
        QList<double> ends; // by lane
        double clusterEnd = 0;
        qsizetype last = first;
        for (; last < blocks.size() && (last == first || blocks[last].top < clusterEnd); ++last) {
            EventBlock& block = blocks[last];
            const auto lane = std::ranges::find_if(ends, [&](double end) { return end <= block.top; });
            block.lane = int(lane - ends.begin());
            if (lane == ends.end())
                ends.append(0);
            ends[block.lane] = block.top + block.height;
            clusterEnd = std::max(clusterEnd, block.top + block.height);
        }
        for (; first < last; ++first)
            blocks[first].lanes = int(ends.size());
    }
}

QString freeText(qint64 minutes)
{
    if (minutes < 60)
        return u"%1 min free"_s.arg(minutes);
    return minutes % 60 == 0 ? u"%1 h free"_s.arg(minutes / 60)
                             : u"%1 h %2 min free"_s.arg(minutes / 60).arg(minutes % 60);
}

}

bool isJoinable(const CalEvent& event, qint64 nowMs)
{
    return !event.allDay && nowMs >= event.startMs - joinAheadMs && nowMs < event.endMs && joinURL(event);
}

QString whenText(const CalEvent& event, qint64 nowMs)
{
    return whenText(event, DateWords(nowMs));
}

QString whenText(const CalEvent& event, const DateWords& dates)
{
    const QLocale locale;
    const auto dayText = [&](qint64 ms) {
        return locale.toString(dates.dayOf(ms), u"ddd d MMM"_s);
    };
    if (event.allDay) {
        const bool oneDay = dates.dayOf(event.startMs) >= dates.dayOf(event.endMs - 1);
        return oneDay ? dayText(event.startMs) + u", all day"_s
                      : dayText(event.startMs) + u" – "_s + dayText(event.endMs - 1);
    }
    if (dates.dayOf(event.startMs) == dates.dayOf(event.endMs))
        return dayText(event.startMs) + u", "_s + timeText(event, dates);
    return dayText(event.startMs) + u", "_s + dates.clockTime(event.startMs) + u" – "_s + dayText(event.endMs) + u", "_s
        + dates.clockTime(event.endMs);
}

CalendarLayout calendarLayout(
    const QList<CalEvent>& events, const QDate& first, int days, qint64 nowMs, const QHash<QString, QString>& colours)
{
    const DateWords dates(nowMs);
    const QLocale locale;
    CalendarLayout layout;
    double earliest = layout.firstHour;
    double latest = layout.lastHour;
    QList<QDate> rowEnds; // of all-day events, by row
    for (int index = 0; index < days; ++index) {
        const QDate day = first.addDays(index);
        const qint64 beginMs = startOf(day);
        const qint64 endMs = startOf(day.addDays(1));
        layout.days.append({ locale.dayName(day.dayOfWeek(), QLocale::ShortFormat), QString::number(day.day()),
            day == dates.today() });
        QList<EventBlock> blocks;
        for (const CalEvent& event : events) {
            if (event.startMs >= endMs || std::max(event.endMs, event.startMs + 1) <= beginMs)
                continue;
            EventBlock block { .id = event.id,
                .title = event.title,
                .timeText = event.allDay ? QString() : timeText(event, dates),
                .spoken = event.title + u", "_s + whenText(event, dates) + u", "_s + event.calendar,
                .colour = colours.value(event.calendar),
                .day = index,
                .past = event.endMs < nowMs,
                .declined = std::ranges::any_of(
                    event.attendeeDetails, [](const CalAttendee& who) { return who.currentUser && who.declined; }),
                .joinable = isJoinable(event, nowMs) };
            if (event.allDay) {
                if (index > 0 && event.startMs < beginMs)
                    continue; // it extends from its first column
                const QDate end = std::min(dates.dayOf(event.endMs - 1), first.addDays(days - 1));
                block.days = int(day.daysTo(end)) + 1;
                const auto row = std::ranges::find_if(rowEnds, [&](const QDate& taken) { return taken < day; });
                block.lane = int(row - rowEnds.begin());
                if (row == rowEnds.end())
                    rowEnds.append(end);
                else
                    *row = end;
                layout.allDay.append(block);
                continue;
            }
            block.top = hoursInto(day, event.startMs, dates);
            block.end = hoursInto(day, event.endMs, dates);
            block.height = std::max(shortest, block.end - block.top);
            block.top = std::min(block.top, 24 - block.height);
            blocks.append(block);
        }
        std::ranges::sort(
            blocks, {}, [](const EventBlock& block) { return std::tuple(block.top, -block.height, block.id); });
        placeInLanes(blocks);
        double busyUntil = -1;
        for (const EventBlock& block : std::as_const(blocks)) {
            earliest = std::min(earliest, block.top);
            latest = std::max(latest, block.top + block.height);
            const auto minutes = qint64((block.top - busyUntil) * 60 + 0.5);
            if (busyUntil >= 0 && minutes >= shortestGapMinutes && day >= dates.today())
                layout.gaps.append({ freeText(minutes), index, busyUntil, block.top - busyUntil });
            busyUntil = std::max(busyUntil, block.end);
        }
        layout.blocks += blocks;
    }
    layout.allDayRows = int(rowEnds.size());
    layout.firstHour = int(earliest);
    layout.lastHour = std::min(24, int(latest + 0.999));
    for (qsizetype i = 0; i < layout.blocks.size(); ++i) {
        layout.blocks[i].top -= layout.firstHour;
        layout.blocks[i].place = QString::number(i);
    }
    for (qsizetype i = 0; i < layout.allDay.size(); ++i)
        layout.allDay[i].place = QString::number(i);
    for (FreeGap& gap : layout.gaps)
        gap.top -= layout.firstHour;
    return layout;
}

}
