#include "Platform/Linux/Calendar/IcsFile.h"

#include "Platform/Linux/Calendar/IcsText.h"
#include "Platform/Linux/Calendar/IcsValues.h"

#include <QDate>
#include <QHash>
#include <QSet>
#include <algorithm>
#include <vector>

namespace corvane {

using namespace ics;

namespace {

constexpr int mostEvents = 50'000;
constexpr int mostInstances = 2000;
constexpr qint64 mostSteps = 200'000; ///< for all rules of a file together, about a second
constexpr qint64 second = 1000;
constexpr qint64 daySeconds = 86'400;
constexpr qint64 longest = 370 * daySeconds; ///< the maximum duration of an event in seconds

bool isCancelled(icalcomponent* event)
{
    return icalcomponent_get_status(event) == ICAL_STATUS_CANCELLED;
}

/// The number of steps that a rule may take to its last relevant instance.
qint64 stepsOf(const icalrecurrencetype& rule, qint64 days)
{
    const qint64 interval = std::max<qint64>(1, rule.interval);
    switch (rule.freq) {
    case ICAL_HOURLY_RECURRENCE:
        return days * 24 / interval;
    case ICAL_DAILY_RECURRENCE:
        return days / interval;
    case ICAL_WEEKLY_RECURRENCE:
        return days / 7 / interval;
    default:
        return days / 28 / interval;
    }
}

struct Series {
    icalcomponent* event;
    CalendarEntry entry {}; ///< the first instance
    icaltimetype start {};
    qint64 days = 0; ///< of an all-day event
    QSet<qint64> excluded {}; ///< starts of instances that are cancelled or replaced
    std::vector<icaltimetype> further {};
};

}

struct IcsFile::State {
    Component calendar; ///< only for a series
    icaltimezone* local = nullptr;
    QList<CalendarEntry> singles; ///< and exceptions of series
    std::vector<Series> all;
    QStringList uids;

    bool read(icalcomponent* root);
    std::optional<Series> seriesOf(icalcomponent* event);
    qint64 endOf(const icaltimetype& start, qint64 startMs, const Series& series) const;
    void follow(const Series& series, qint64 fromMs, qint64 toMs, qint64& steps, QList<CalendarEntry>& entries) const;
    void expand(const Series& series, icalrecurrencetype rule, qint64 fromMs, qint64 toMs, qint64& steps,
        QHash<qint64, icaltimetype>& starts) const;
};

std::optional<Series> IcsFile::State::seriesOf(icalcomponent* event)
{
    icalcomponent* const root = calendar.get();
    Series series { event, {}, timeOf(event, ICAL_DTSTART_PROPERTY, root) };
    if (!isUsable(series.start))
        return std::nullopt;
    CalendarEntry& entry = series.entry;
    entry.uid = textOf(icalcomponent_get_uid(event), longestTitle);
    entry.title = textOf(icalcomponent_get_summary(event), longestTitle).simplified();
    entry.location = textOf(icalcomponent_get_location(event), longestTitle).trimmed();
    entry.notes = notesOf(event);
    entry.people = peopleOf(event);
    entry.allDay = series.start.is_date;
    entry.startMs = msOf(series.start, local);
    icaltimetype end = timeOf(event, ICAL_DTEND_PROPERTY, root);
    if (icalproperty* const duration = icalcomponent_get_first_property(event, ICAL_DURATION_PROPERTY);
        duration && !isUsable(end))
        end = icaltime_add(series.start, icalproperty_get_duration(duration));
    if (entry.allDay) {
        if (isUsable(end)) {
            const icaltimetype first = series.start;
            const QDate firstDay(first.year, first.month, first.day);
            series.days = firstDay.daysTo(QDate(end.year, end.month, end.day));
        }
        series.days = std::clamp<qint64>(series.days, 1, longest / daySeconds);
        entry.endMs = endOf(series.start, entry.startMs, series);
    } else {
        const qint64 endMs = isUsable(end) ? msOf(end, local) : entry.startMs;
        entry.endMs = std::clamp(endMs, entry.startMs, entry.startMs + longest * second);
    }
    return series;
}

qint64 IcsFile::State::endOf(const icaltimetype& start, qint64 startMs, const Series& series) const
{
    if (!series.entry.allDay)
        return startMs + (series.entry.endMs - series.entry.startMs);
    icaltimetype end = start;
    icaltime_adjust(&end, int(series.days), 0, 0, 0);
    return msOf(end, local);
}

bool IcsFile::State::read(icalcomponent* root)
{
    settleZones(root);
    QHash<QString, QSet<qint64>> replaced;
    QSet<QString> known;
    int events = 0;
    forEachComponent(root, ICAL_VEVENT_COMPONENT, [&](icalcomponent* event) {
        if (++events > mostEvents)
            return;
        auto one = seriesOf(event);
        if (!one)
            return;
        if (!known.contains(one->entry.uid)) {
            known.insert(one->entry.uid);
            uids.append(one->entry.uid);
        }
        const icaltimetype instance = timeOf(event, ICAL_RECURRENCEID_PROPERTY, root);
        if (isUsable(instance)) {
            one->entry.instanceMs = msOf(instance, local);
            replaced[one->entry.uid].insert(*one->entry.instanceMs);
        } else if (icalcomponent_get_first_property(event, ICAL_RRULE_PROPERTY)
            || icalcomponent_get_first_property(event, ICAL_RDATE_PROPERTY)) {
            if (!isCancelled(event))
                all.push_back(std::move(*one));
            return;
        }
        if (!isCancelled(event))
            singles.append(one->entry);
    });
    for (Series& one : all) {
        one.excluded = replaced.value(one.entry.uid);
        forEachProperty(one.event, ICAL_EXDATE_PROPERTY, [&](icalproperty* property) {
            icaltimetype time = timeOf(property, root);
            if (time.is_date && !one.start.is_date) {
                const icaltimetype date = time;
                time = one.start;
                time.year = date.year;
                time.month = date.month;
                time.day = date.day;
            }
            // Evolution omits the zone, which is that of the series.
            if (!time.is_date && !time.zone && !icaltime_is_utc(time))
                time.zone = one.start.zone;
            if (isUsable(time))
                one.excluded.insert(msOf(time, local));
        });
        forEachProperty(one.event, ICAL_RDATE_PROPERTY, [&](icalproperty* property) {
            if (const icaltimetype time = timeOf(property, root); isUsable(time))
                one.further.push_back(time);
        });
    }
    return events > 0 || icalcomponent_isa(root) == ICAL_VCALENDAR_COMPONENT;
}

void IcsFile::State::expand(const Series& series, icalrecurrencetype rule, qint64 fromMs, qint64 toMs, qint64& steps,
    QHash<qint64, icaltimetype>& starts) const
{
    if (rule.freq <= ICAL_MINUTELY_RECURRENCE || rule.freq > ICAL_YEARLY_RECURRENCE)
        return;
    const qint64 length = series.entry.endMs - series.entry.startMs;
    const icaltimezone* const zone = series.start.zone ? series.start.zone : local;
    const auto civil = [&](qint64 ms) {
        icaltimetype time
            = icaltime_from_timet_with_zone(ms / second, series.start.is_date, const_cast<icaltimezone*>(zone));
        time.zone = series.start.zone;
        return time;
    };
    // Limits the search: a rule that never matches would be followed for centuries.
    const icaltimetype last = civil(toMs + daySeconds * second);
    if (icaltime_is_null_time(rule.until) || icaltime_compare(rule.until, last) > 0)
        rule.until = last;
    // A rule with a count must be expanded from its start.
    const qint64 early = fromMs - length - 2 * daySeconds * second;
    const bool skips = rule.count == 0 && early > series.entry.startMs;
    steps -= stepsOf(rule, (toMs - (skips ? early : series.entry.startMs)) / second / daySeconds) + 1;
    if (steps < 0)
        return;
    icalrecur_iterator* const iterator = icalrecur_iterator_new(rule, series.start);
    if (!iterator)
        return;
    if (skips)
        icalrecur_iterator_set_start(iterator, civil(early));
    for (icaltimetype next = icalrecur_iterator_next(iterator); !icaltime_is_null_time(next);
        next = icalrecur_iterator_next(iterator)) {
        next.zone = series.start.zone;
        const qint64 startMs = msOf(next, local);
        if (startMs >= toMs || starts.size() >= mostInstances || --steps < 0)
            break;
        if (startMs + length + 2 * daySeconds * second > fromMs)
            starts.insert(startMs, next);
    }
    icalrecur_iterator_free(iterator);
}

void IcsFile::State::follow(
    const Series& series, qint64 fromMs, qint64 toMs, qint64& steps, QList<CalendarEntry>& entries) const
{
    QHash<qint64, icaltimetype> starts { { series.entry.startMs, series.start } };
    forEachProperty(series.event, ICAL_RRULE_PROPERTY,
        [&](icalproperty* property) { expand(series, icalproperty_get_rrule(property), fromMs, toMs, steps, starts); });
    for (const icaltimetype& time : series.further)
        starts.insert(msOf(time, local), time);
    for (auto start = starts.cbegin(); start != starts.cend(); ++start) {
        const qint64 endMs = endOf(*start, start.key(), series);
        if (start.key() >= toMs || std::max(endMs, start.key() + 1) <= fromMs || series.excluded.contains(start.key()))
            continue;
        CalendarEntry entry = series.entry;
        entry.instanceMs = start.key();
        entry.startMs = start.key();
        entry.endMs = endMs;
        entries.append(std::move(entry));
    }
}

IcsFile::IcsFile()
    : m_state(std::make_unique<State>())
{
}

IcsFile::~IcsFile()
{
    const std::lock_guard lock(library());
    m_state.reset();
}

std::shared_ptr<const IcsFile> IcsFile::read(const QByteArray& text, const QByteArray& zone)
{
    const std::optional<QByteArray> bounded = boundedIcs(text);
    if (!bounded || !bounded->contains("BEGIN:"))
        return nullptr;
    std::shared_ptr<IcsFile> file(new IcsFile);
    const std::lock_guard lock(library());
    icalerror_set_errors_are_fatal(0);
    file->m_state->local = knownZone(zone.constData());
    if (!file->m_state->local)
        file->m_state->local = icaltimezone_get_utc_timezone();
    file->m_state->calendar.reset(icalparser_parse_string(bounded->constData()));
    icalcomponent* const root = file->m_state->calendar.get();
    if (!root || !file->m_state->read(root))
        return nullptr;
    if (file->m_state->all.empty())
        file->m_state->calendar.reset();
    return file;
}

QList<CalendarEntry> IcsFile::entries(qint64 fromMs, qint64 toMs) const
{
    QList<CalendarEntry> entries;
    for (const CalendarEntry& single : std::as_const(m_state->singles)) {
        if (single.startMs < toMs && std::max(single.endMs, single.startMs + 1) > fromMs)
            entries.append(single);
    }
    if (m_state->all.empty())
        return entries;
    const std::lock_guard lock(library());
    qint64 steps = mostSteps;
    for (const Series& series : m_state->all)
        m_state->follow(series, fromMs, toMs, steps, entries);
    return entries;
}

const QStringList& IcsFile::uids() const
{
    return m_state->uids;
}

}
