#include "Calendar/MeetingPrep.h"

#include "AI/AIServices.h"
#include "Foundation/Literals.h"
#include "Foundation/MachineWords.h"
#include "Foundation/Text.h"
#include "Store/Core/StoreWatch.h"

#include <QDateTime>
#include <QLocale>
#include <QPointer>
#include <algorithm>
#include <array>

namespace corvane {

namespace {

constexpr int messageLength = 500;
const QString rawModel = u"Raw LocalDB brief"_s;

constexpr std::array sendingWords { "send "_L1, "email "_L1, "message "_L1, "reply "_L1, "follow up"_L1, "follow-up"_L1,
    "draft "_L1 };

QString attendeeBlock(LocalDB& db, const CalAttendee& attendee)
{
    const std::optional<AttendeeBrief> brief = meetingBrief(db, attendee.email, attendee.name);
    if (!brief)
        return u"Attendee: %1\nNo history with %1 yet."_s.arg(attendee.name);
    const QString touch = brief->lastTouch == 0 ? u"No local timestamp yet."_s : agoLabel(brief->lastTouch, db.nowMs());
    return QStringList { u"Attendee: "_s + brief->name,
        u"Last message: "_s + promptLine(brief->lastMessage, messageLength), u"Last touch: "_s + touch,
        u"Open deal: "_s + brief->openDeal, u"Notes: "_s + promptLine(brief->notes, messageLength) }
        .join(u'\n');
}

}

QString agoLabel(qint64 ms, qint64 nowMs)
{
    const qint64 seconds = std::max<qint64>(0, nowMs - ms) / 1000;
    if (seconds < 3600)
        return u"%1m ago"_s.arg(seconds / 60);
    return seconds < 86'400 ? u"%1h ago"_s.arg(seconds / 3600) : u"%1d ago"_s.arg(seconds / 86'400);
}

QString meetingPrepPacket(LocalDB& db, const CalEvent& event)
{
    const QDateTime start = QDateTime::fromMSecsSinceEpoch(event.startMs);
    QStringList lines { u"Meeting: "_s + event.title,
        u"When: "_s + QLocale().toString(start, u"dddd d MMMM yyyy, HH:mm"_s), u"Calendar: "_s + event.calendar };
    if (!event.location.isEmpty())
        lines.append(u"Location: "_s + event.location);
    if (!event.notes.isEmpty())
        lines.append(u"Calendar notes: "_s + event.notes);
    const qsizetype before = lines.size();
    for (const CalAttendee& attendee : event.attendeeDetails) {
        if (!attendee.currentUser)
            lines.append(attendeeBlock(db, attendee));
    }
    if (lines.size() == before)
        lines.append(u"Attendees: No external attendees on the calendar event."_s);
    return lines.join(u'\n');
}

MeetingPrep::MeetingPrep(const Surroundings& surroundings, QObject* parent)
    : QObject(parent)
    , m_at(surroundings)
{
}

QString MeetingPrep::madeBy() const
{
    return m_row.model.isEmpty() ? QString() : m_row.model + u" · "_s + agoLabel(m_row.generatedAt, m_at.db.nowMs());
}

void MeetingPrep::prepare(const CalEvent& event)
{
    m_event = event;
    m_message.clear();
    m_row = fetchMeetingPrepCache(m_at.db, event.id).value_or(MeetingPrepCacheRow());
    m_asksReview = proposeReview(m_row);
    Q_EMIT changed();
    if (m_row.eventId.isEmpty() && !isBusy())
        make(event, Reason::First);
}

void MeetingPrep::prepareAhead(const CalEvent& event)
{
    if (m_ahead.contains(event.id) || fetchMeetingPrepCache(m_at.db, event.id))
        return;
    m_ahead.insert(event.id);
    makeAhead(event);
}

void MeetingPrep::regenerate()
{
    if (isOpen() && !isBusy())
        make(m_event, Reason::Again);
}

void MeetingPrep::close()
{
    m_event = {};
    m_row = {};
    m_message.clear();
    Q_EMIT changed();
}

/// The unmodified answer; nothing if it failed.
QCoro::Task<std::optional<QString>> MeetingPrep::summarized(QString packet)
{
    const QString instructions
        = u"You are LumoAI inside Corvane. Use only the local meeting packet.\n"
          "Return exactly five short labeled lines:\nWho:\nContext:\nOpen threads:\nSuggested goal:\nOne risk:\n"
          "Keep outbound suggestions as draft/proposal wording only. Never imply anything was sent.\n"
          "If an attendee has no local history, say that plainly."_s;
    const Result<QString> answer = co_await m_at.ai.ai.respond(instructions, packet);
    co_return answer ? std::optional(*answer) : std::nullopt;
}

QCoro::Task<> MeetingPrep::make(CalEvent event, Reason reason)
{
    const QPointer<MeetingPrep> self(this);
    m_making.insert(event.id);
    Q_EMIT changed();
    co_await m_at.ai.ai.refresh();
    if (!self)
        co_return;
    MeetingPrepCacheRow row { event.id, event.title, meetingPrepPacket(m_at.db, event), {}, rawModel, 0 };
    if (const std::optional<QString> maker = m_at.ai.ai.availableName()) {
        const std::optional<QString> answer = co_await summarized(row.rawBrief);
        if (!self)
            co_return;
        row.aiSummary = answer.value_or(u"LumoAI failed — showing the raw local brief."_s);
        if (answer)
            row.model = *maker;
    } else {
        row.aiSummary
            = atStart(machineWords::localModel) + u" or Codex CLI unavailable — showing the raw local brief."_s;
    }
    row.generatedAt = m_at.db.nowMs();
    keep(event, row, reason);
}

/// In the background nothing leaves the machine, and no work is done that the machine should not do now.
QCoro::Task<> MeetingPrep::makeAhead(CalEvent event)
{
    const QPointer<MeetingPrep> self(this);
    co_await m_at.ai.ai.refresh();
    if (!self)
        co_return;
    if (m_at.ai.onDevice.unavailableReason() || m_at.ai.systemModel.runsElsewhere()
        || m_at.ai.gate.snapshot(true, false).stopCondition) {
        m_ahead.remove(event.id);
        co_return;
    }
    MeetingPrepCacheRow row { event.id, event.title, meetingPrepPacket(m_at.db, event), {},
        m_at.ai.ai.availableName().value_or(u"LumoAI"_s), 0 };
    const std::optional<QString> answer = co_await summarized(row.rawBrief);
    if (!self || !answer)
        co_return;
    row.aiSummary = *answer;
    row.generatedAt = m_at.db.nowMs();
    storeMeetingPrep(m_at.db, row);
}

void MeetingPrep::keep(const CalEvent& event, const MeetingPrepCacheRow& row, Reason reason)
{
    const bool stored = storeMeetingPrep(m_at.db, row);
    const auto kept = fetchMeetingPrepCache(m_at.db, event.id);
    const bool review = stored && proposeReview(row);
    m_making.remove(event.id);
    if (m_event.id == event.id) {
        m_row = stored && kept ? *kept : row;
        m_asksReview = m_asksReview || review;
        m_message = !stored           ? u"Could not cache this meeting brief."_s
            : reason == Reason::Again ? u"Brief regenerated."_s
                                      : QString();
    }
    Q_EMIT changed();
}

/// One decision per event: the user's answer also applies to later briefs.
bool MeetingPrep::proposeReview(const MeetingPrepCacheRow& row)
{
    if (const auto decision = fetchWorkDecision(m_at.db, outboundReviewId(row.eventId)))
        return decision->status == "proposed"_L1;
    const QString summary = row.aiSummary.toLower();
    if (row.model == rawModel || std::ranges::none_of(sendingWords, [&](auto word) { return summary.contains(word); })
        || !proposeOutboundReview(m_at.db, row.eventId, row.title, row.aiSummary))
        return false;
    m_at.db.watch().tell(StoreSubject::Approvals);
    return true;
}

}
