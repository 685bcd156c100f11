#include "Calls/MeetingAutoRecorder.h"

#include "Calendar/CalendarStore.h"
#include "Calendar/MeetingRules.h"
#include "Calls/CallRecorder.h"
#include "Calls/ContactMatch.h"
#include "Foundation/Literals.h"

#include <QPointer>
#include <algorithm>
#include <array>

namespace corvane {

namespace {

constexpr Milliseconds period { 15'000 };
constexpr std::array finalStates { "complete"_L1, "stopped"_L1, "skipped"_L1, "failed"_L1, "interrupted"_L1 };
const QString off = u"Auto-record is off."_s;

}

MeetingAutoRecorder::MeetingAutoRecorder(Surroundings surroundings, QObject* parent)
    : QObject(parent)
    , m_at(std::move(surroundings))
    , m_statusText(off)
{
}

LocalDB& MeetingAutoRecorder::db() const
{
    return m_at.calendar.surroundings().db;
}

void MeetingAutoRecorder::start()
{
    m_timer = m_at.calendar.surroundings().scheduler.every(period, [this] { refresh(); });
    refresh();
}

/// Running programs are only listed if they matter.
void MeetingAutoRecorder::refresh()
{
    if (db().isSound())
        m_rule = fetchCallRecordingRule(db()).value_or(CallRecordingRuleRow());
    if (!m_rule.enabled)
        m_runningMeetingApps.clear();
    if (!m_rule.enabled || m_at.calls.isRecording())
        return evaluate();
    if (std::exchange(m_looking, true))
        return;
    m_at.look([self = QPointer<MeetingAutoRecorder>(this)](const ProgramsSeen& seen) {
        if (!self)
            return;
        self->m_looking = false;
        self->m_runningMeetingApps = meetingApps(seen, self->m_rule.requireMeetingApp);
        self->evaluate();
    });
}

void MeetingAutoRecorder::change(const std::function<void(CallRecordingRuleRow&)>& edit)
{
    CallRecordingRuleRow rule = fetchCallRecordingRule(db()).value_or(m_rule);
    edit(rule);
    updateCallRecordingRule(db(), rule);
    refresh();
}

void MeetingAutoRecorder::setEnabled(bool enabled)
{
    change([enabled](CallRecordingRuleRow& rule) { rule.enabled = enabled; });
}

void MeetingAutoRecorder::setRequireMeetingApp(bool required)
{
    change([required](CallRecordingRuleRow& rule) { rule.requireMeetingApp = required; });
}

void MeetingAutoRecorder::setStartLeadSeconds(int seconds)
{
    change([seconds](CallRecordingRuleRow& rule) { rule.startLeadSeconds = seconds; });
}

void MeetingAutoRecorder::setStopGraceSeconds(int seconds)
{
    change([seconds](CallRecordingRuleRow& rule) { rule.stopGraceSeconds = seconds; });
}

void MeetingAutoRecorder::evaluate()
{
    m_statusText = decide();
    Q_EMIT changed();
}

/// Starts or stops what is due, and returns the state text.
QString MeetingAutoRecorder::decide()
{
    const CallRecorder& calls = m_at.calls;
    if (!db().isOpen())
        return u"Waiting for Corvane startup."_s;
    if (calls.isStarting())
        return m_statusText;
    const bool records = calls.isRecording();
    if (records && !calls.activeCalendarEventId().isEmpty())
        return followRecording(calls.activeCalendarEventId());
    if (const auto ended = std::exchange(m_activeAuto, std::nullopt))
        write(*ended, u"stopped"_s, u"Recording stopped before the scheduled auto-stop."_s);
    m_matchedEventTitle.clear();
    if (!m_rule.enabled)
        return off;
    if (m_at.calendar.access() != CalendarStore::Access::Granted)
        return u"Connect Calendar before auto-record can watch meetings."_s;
    const CalEvent* const event = nextEligibleEvent();
    if (!event)
        return u"Watching calendar for eligible meetings."_s;
    m_matchedEventTitle = event->title;
    if (m_rule.requireMeetingApp && m_runningMeetingApps.isEmpty())
        return u"Waiting for a meeting app before recording %1."_s.arg(event->title);
    const QString status = callAutoRecordState(db(), event->id).value_or(CallAutoRecordStateRow()).status;
    if (std::ranges::find(finalStates, status) != finalStates.end())
        return u"Already handled %1 for this calendar event."_s.arg(event->title);
    // A manual recording continues; the meeting is recorded afterwards if it is still running.
    if (records)
        return u"Waiting for the running recording to end before recording %1."_s.arg(event->title);
    if (!status.isEmpty()) {
        write(*event, u"interrupted"_s, u"Previous auto-record state was active but no recording is running."_s);
        return u"Previous auto-record for %1 was interrupted."_s.arg(event->title);
    }
    return begin(*event);
}

QString MeetingAutoRecorder::followRecording(const QString& eventId)
{
    const CalEvent* const event = findEvent(eventId);
    if (!event)
        return u"Recording a calendar meeting that is no longer in the current mirror."_s;
    m_matchedEventTitle = event->title;
    write(*event, u"recording"_s, u"Recording is active."_s, m_at.calls.activeCallId());
    const auto& at = m_at.calendar.surroundings();
    if (at.scheduler.nowMs() < event->endMs + m_rule.stopGraceSeconds * 1000LL)
        return u"Auto-recording %1."_s.arg(event->title);
    write(*event, u"complete"_s, u"Event ended and stop grace elapsed."_s);
    m_activeAuto.reset();
    const QString title = event->title;
    m_at.calls.stop();
    return u"Stopped auto-record for %1. Processing locally."_s.arg(title);
}

QString MeetingAutoRecorder::begin(const CalEvent& event)
{
    const auto match = calendarContactMatch(db(), event);
    const QString reason = match ? u"Calendar rule matched; linked CRM contact by %1."_s.arg(match->reason)
                                 : u"Calendar rule matched."_s;
    const MeetingAppCandidate source = m_runningMeetingApps.value(0, { {}, u"Calendar"_s });
    const QString title = event.title;
    // Without a stored state the event would be recorded again and again.
    if (!write(event, u"started"_s, reason, {}, source.name))
        return u"%1 is not recorded: the database cannot be written."_s.arg(title);
    m_activeAuto = event;
    m_at.calls.start(title,
        { .startMode = u"calendar_auto"_s,
            .calendarEventId = event.id,
            .contactId = match ? match->contactId : QString(),
            .sourceApp = source.name,
            .sourceBundleId = source.bundleId,
            .consentRequired = m_rule.consentRequired,
            .consentGranted = false,
            .consentNote = u"Auto-started by an enabled calendar rule; participant consent remains the user's "
                           "responsibility."_s,
            .disclosureMode = m_rule.disclosureMode });
    return match ? u"Starting auto-record for %1 with a linked CRM contact."_s.arg(title)
                 : u"Starting auto-record for %1."_s.arg(title);
}

bool MeetingAutoRecorder::write(const CalEvent& event, const QString& status, const QString& reason,
    const QString& callId, const QString& sourceApp)
{
    return upsertCallAutoRecordState(db(),
        { .id = {},
            .calendarEventId = event.id,
            .title = event.title,
            .status = status,
            .callId = callId,
            .sourceApp = sourceApp,
            .reason = reason });
}

const CalEvent* MeetingAutoRecorder::findEvent(const QString& id) const
{
    const QList<CalEvent>& events = m_at.calendar.events();
    const auto found = std::ranges::find(events, id, &CalEvent::id);
    return found == events.end() ? nullptr : &*found;
}

/// Includes one that started an hour ago and is still running.
const CalEvent* MeetingAutoRecorder::nextEligibleEvent() const
{
    const qint64 now = m_at.calendar.surroundings().scheduler.nowMs();
    const qint64 windowEnd = now + m_rule.startLeadSeconds * 1000LL;
    const CalEvent* next = nullptr;
    for (const CalEvent& event : m_at.calendar.events()) {
        const bool inTime = !event.allDay && event.startMs <= windowEnd && event.endMs > now;
        if (inTime && (!next || event.startMs < next->startMs) && isMeetingCandidate(event))
            next = &event;
    }
    return next;
}

}
