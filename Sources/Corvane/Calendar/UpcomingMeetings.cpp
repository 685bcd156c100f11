#include "Calendar/UpcomingMeetings.h"

#include "Calendar/CalendarLayout.h"
#include "Calendar/CalendarStore.h"
#include "Calendar/MeetingRules.h"
#include "Foundation/Literals.h"
#include "Platform/Desktop.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr qsizetype mostLines = 8;
constexpr Milliseconds minute { 60'000 };

}

UpcomingMeetings::UpcomingMeetings(const Surroundings& surroundings, QObject* parent)
    : QObject(parent)
    , m_at(surroundings)
{
    connect(&m_at.store, &CalendarStore::changed, this, &UpcomingMeetings::refresh);
    m_minute = m_at.store.surroundings().scheduler.every(minute, [this] { refresh(); });
    refresh();
}

UpcomingMeetings::~UpcomingMeetings() = default;

void UpcomingMeetings::refresh()
{
    const qint64 now = m_at.store.surroundings().scheduler.nowMs();
    m_lines.clear();
    for (const CalEvent& event : m_at.store.visible(m_at.store.events())) {
        if (event.endMs < now || isPlaceholderBlock(event))
            continue;
        m_lines.append(
            { event.id, event.title, whenText(event, now), event.allDay ? QString() : relativeStart(event.startMs, now),
                isJoinable(event, now), isMeetingCandidate(event) });
        if (m_lines.size() == mostLines)
            break;
    }
    Q_EMIT changed();
}

QString UpcomingMeetings::headline() const
{
    const qint64 now = m_at.store.surroundings().scheduler.nowMs();
    const auto next = nextMeetingCandidate(m_at.store.visible(m_at.store.events()), now);
    return next ? nextMeetingHeadline(*next, now) : QString();
}

QString UpcomingMeetings::emptyTitle() const
{
    switch (m_at.store.access()) {
    case CalendarStore::Access::Unknown:
        return u"Calendar not connected"_s;
    case CalendarStore::Access::Denied:
        return u"Calendar access denied"_s;
    case CalendarStore::Access::Granted:
        return u"No upcoming mirrored events."_s;
    }
    return {};
}

QString UpcomingMeetings::emptyText() const
{
    switch (m_at.store.access()) {
    case CalendarStore::Access::Unknown:
        return u"Connect the calendars on this computer to show meetings here."_s;
    case CalendarStore::Access::Denied:
        return m_at.store.lastError().value_or(QString());
    case CalendarStore::Access::Granted:
        return {};
    }
    return {};
}

QString UpcomingMeetings::troubleTitle() const
{
    return m_at.store.access() == CalendarStore::Access::Granted && m_at.store.lastError()
        ? u"Calendar refresh failed"_s
        : QString();
}

QString UpcomingMeetings::troubleText() const
{
    return troubleTitle().isEmpty() ? QString() : m_at.store.lastError().value_or(QString());
}

QString UpcomingMeetings::connectLabel() const
{
    return m_at.store.access() == CalendarStore::Access::Granted ? QString() : u"Connect Calendar"_s;
}

void UpcomingMeetings::connectCalendar()
{
    m_at.store.requestAccess();
}

const CalEvent* UpcomingMeetings::find(const QString& id) const
{
    const QList<CalEvent>& events = m_at.store.events();
    const auto found = std::ranges::find(events, id, &CalEvent::id);
    return found == events.end() ? nullptr : &*found;
}

void UpcomingMeetings::join(const QString& id)
{
    if (const CalEvent* const event = find(id)) {
        if (const auto link = joinURL(*event))
            m_at.desktop.openInBrowser(*link);
    }
}

void UpcomingMeetings::prepare(const QString& id)
{
    if (const CalEvent* const event = find(id))
        m_at.prep.prepare(CalEvent(*event));
}

}
