#include "Desk/CorvaneMenuBarLabel.h"

#include "Calendar/CalendarStore.h"
#include "Calendar/MeetingRules.h"
#include "Desk/ResourceMonitor.h"
#include "Foundation/Literals.h"
#include "Platform/Tray.h"

namespace corvane {

namespace {

constexpr Milliseconds period { 15'000 };
constexpr qint64 soonMs = 3'600'000;

}

CorvaneMenuBarLabel::CorvaneMenuBarLabel(
    CalendarStore& calendar, ResourceMonitor& resources, Tray& tray, Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_calendar(calendar)
    , m_resources(resources)
    , m_tray(tray)
    , m_scheduler(scheduler)
{
    connect(&calendar, &CalendarStore::changed, this, &CorvaneMenuBarLabel::show);
    connect(&resources, &ResourceMonitor::changed, this, &CorvaneMenuBarLabel::show);
    m_clock = scheduler.every(period, [this] { show(); });
    show();
}

QString CorvaneMenuBarLabel::text() const
{
    const qint64 now = m_scheduler.nowMs();
    const auto next = nextMeetingCandidate(m_calendar.visible(m_calendar.events()), now);
    if (next && next->startMs - now < soonMs)
        return compactTitle(*next) + u' ' + compactCountdown(next->startMs, now);
    return isShort(m_resources.snapshot()) ? u"Memory is short"_s : QString();
}

void CorvaneMenuBarLabel::show()
{
    m_tray.setLabel(text());
}

}
