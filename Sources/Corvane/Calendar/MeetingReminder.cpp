#include "Calendar/MeetingReminder.h"

#include "Calendar/CalendarStore.h"
#include "Calendar/MeetingPrep.h"
#include "Calendar/MeetingRules.h"
#include "Foundation/Literals.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr Milliseconds period { 30'000 };
constexpr qint64 aheadMs = 600'000;
constexpr qint64 afterStartMs = 300'000;

}

MeetingReminder::MeetingReminder(CalendarStore& store, MeetingPrep& prep, QObject* parent)
    : QObject(parent)
    , m_store(store)
    , m_prep(prep)
{
    connect(&m_store, &CalendarStore::changed, this, &MeetingReminder::look);
    m_timer = m_store.surroundings().scheduler.every(period, [this] { look(); });
}

void MeetingReminder::look()
{
    const qint64 now = m_store.surroundings().scheduler.nowMs();
    const QString before = m_meeting ? m_meeting->id : QString();
    m_meeting.reset();
    for (const CalEvent& event : m_store.visible(m_store.events())) {
        const bool near = event.startMs - aheadMs <= now && now < event.startMs + afterStartMs && now < event.endMs;
        if (near && !m_read.contains(event.id) && isMeetingCandidate(event)) {
            m_meeting = event;
            break;
        }
    }
    if (m_meeting)
        m_prep.prepareAhead(*m_meeting);
    if (m_meeting || !before.isEmpty())
        Q_EMIT changed();
}

QString MeetingReminder::text() const
{
    if (!m_meeting)
        return {};
    return u"Ready for the next meeting: %1, %2"_s.arg(
        compactTitle(*m_meeting), relativeStart(m_meeting->startMs, m_store.surroundings().scheduler.nowMs()));
}

void MeetingReminder::dismiss()
{
    if (m_meeting)
        m_read.insert(m_meeting->id);
    look();
    Q_EMIT changed();
}

}
