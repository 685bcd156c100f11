#include "Store/Approvals/CrmProposals.h"

#include "Foundation/Ids.h"
#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Foundation/Result.h"
#include "Store/Approvals/EventRequests.h"
#include "Store/Core/Table.h"
#include "Store/Core/Transaction.h"
#include "Store/Core/Workspaces.h"
#include "Store/People/CrmRecords.h"
#include "Store/People/IdentityQueries.h"

#include <QDateTime>
#include <QLocale>

namespace corvane {

namespace {

const QString pending = u"pending"_s;
const QString applied = u"applied"_s;
const QString rejected = u"rejected"_s;
const QString note = u"note"_s;
const QString task = u"task"_s;
const QString event = u"event"_s;

const Table<CRMUpdateProposal> proposals("crm_update_proposal",
    {
        { "id", &CRMUpdateProposal::id },
        { "call_id", &CRMUpdateProposal::callId, "''" },
        { "contact_id", &CRMUpdateProposal::contactId, "''" },
        { "deal_id", &CRMUpdateProposal::dealId, "''" },
        { "kind", &CRMUpdateProposal::kind },
        { "title", &CRMUpdateProposal::title },
        { "payload_json", &CRMUpdateProposal::payloadJson },
        { "confidence", &CRMUpdateProposal::confidence, "0" },
        { "status", &CRMUpdateProposal::status },
        { "created_at", &CRMUpdateProposal::createdAt },
        { "error", &CRMUpdateProposal::error, "''" },
    });

/// The payload as an object; empty if it is invalid.
QJsonObject payloadOf(const CRMUpdateProposal& proposal)
{
    return jsonObject(proposal.payloadJson.toUtf8()).value_or(QJsonObject());
}

QString payloadText(const QJsonObject& payload, const char* key, const QString& otherwise = {})
{
    return textValue(payload, QLatin1StringView(key)).value_or(otherwise);
}

bool updateStatus(LocalDB& db, const QString& id, const QString& status, const std::optional<QString>& error)
{
    const qint64 now = db.nowMs();
    return db.run(R"(UPDATE crm_update_proposal
SET status=?, updated_at=?, applied_at=CASE WHEN ?='applied' THEN ? ELSE applied_at END,
    rejected_at=CASE WHEN ?='rejected' THEN ? ELSE rejected_at END, error=?
WHERE workspace_id=? AND id=?;)",
        { status, now, status, now, status, now, error, activeWorkspaceId(db), id });
}

bool recordDecision(LocalDB& db, const CRMUpdateProposal& proposal, const char* action)
{
    return appendRecord(db, u"proposal"_s, proposal.id, QString::fromLatin1(action), proposalHash(proposal));
}

struct Span {
    qint64 startMs = 0;
    qint64 endMs = 0;
};

/// The time of a proposed event; nothing if it is invalid.
std::optional<Span> spanOf(const QJsonObject& payload)
{
    const auto start = wholeNumber(payload, "startMs"_L1);
    const auto end = wholeNumber(payload, "endMs"_L1);
    return start && end && *start > 0 && *end > *start ? std::optional(Span { *start, *end }) : std::nullopt;
}

QString spanWords(const Span& span)
{
    const QDateTime start = QDateTime::fromMSecsSinceEpoch(span.startMs);
    const QDateTime end = QDateTime::fromMSecsSinceEpoch(span.endMs);
    const QString time = u"HH:mm"_s;
    const QString day = u"ddd d MMM yyyy, "_s + time;
    return u"%1 to %2"_s.arg(
        QLocale::c().toString(start, day), QLocale::c().toString(end, start.date() == end.date() ? time : day));
}

/// Time, place and more of an event, one line each.
QString eventWords(const QJsonObject& payload)
{
    const auto span = spanOf(payload);
    QStringList lines { span ? spanWords(*span) : QString(), payloadText(payload, "location"),
        payloadText(payload, "notes") };
    lines.removeAll(QString());
    return lines.join(u'\n');
}

/// The title of a task, its due date, and its priority unless it is the default.
QString taskWords(const QJsonObject& payload)
{
    const QString due = payloadText(payload, "due");
    const QString priority = payloadText(payload, "priority");
    QStringList lines { payloadText(payload, "title") };
    if (!due.isEmpty())
        lines.append(u"Due: "_s + due);
    if (!priority.isEmpty() && priority != NewTask().priority)
        lines.append(u"Priority: "_s + priority);
    return lines.join(u'\n');
}

/// Asks the calendar for the event.
bool queueEvent(LocalDB& db, const QString& title, const Span& span, const QJsonObject& payload)
{
    const qint64 now = db.nowMs();
    const QString id = stampedId(u"calcmd"_s, now);
    return db.run(R"(INSERT INTO calendar_command(id, workspace_id, title, start_ms, end_ms, notes, location, calendar,
  status, created_at, updated_at)
VALUES(?,?,?,?,?,?,?,?,'pending',?,?);)",
               { id, activeWorkspaceId(db), title, span.startMs, span.endMs, payloadText(payload, "notes"),
                   payloadText(payload, "location"), payloadText(payload, "calendar"), now, now })
        && recordProposedEvent(db, id);
}

/// The reason for the failure.
std::optional<QString> write(LocalDB& db, const CRMUpdateProposal& proposal)
{
    const QJsonObject payload = payloadOf(proposal);
    const QString notSaved = u"Couldn't save it, try again."_s;
    if (proposal.kind == note) {
        if (proposal.contactId.isEmpty())
            return u"No contact linked. Open CRM and link this call first."_s;
        const QString text = payloadText(payload, "body").trimmed();
        if (text.isEmpty())
            return u"Call note payload is empty."_s;
        return addNote(db, proposal.contactId, text) ? std::nullopt : std::optional(notSaved);
    }
    const QString named = payloadText(payload, "title").trimmed();
    const QString title = named.isEmpty() ? proposal.title : named;
    if (proposal.kind == event) {
        const auto span = spanOf(payload);
        if (!span)
            return u"The event has no time."_s;
        return queueEvent(db, title, *span, payload) ? std::nullopt : std::optional(notSaved);
    }
    if (proposal.kind == task) {
        NewTask added;
        added.title = title;
        added.due = payloadText(payload, "due");
        added.priority = payloadText(payload, "priority", added.priority);
        added.status = payloadText(payload, "status", added.status);
        const auto id
            = proposal.contactId.isEmpty() ? insertCRMTask(db, added) : insertCRMTask(db, proposal.contactId, added);
        return id ? std::nullopt : std::optional(notSaved);
    }
    return u"Unsupported proposal kind: "_s + proposal.kind;
}

}

QString CRMUpdateProposal::bodyPreview() const
{
    const QJsonObject payload = payloadOf(*this);
    if (kind == event)
        return eventWords(payload);
    return payloadText(payload, "body", kind == task ? taskWords(payload) : QString());
}

QList<CRMUpdateProposal> fetchCRMUpdateProposals(LocalDB& db, const QString& status, int limit)
{
    return proposals.rows(db, R"(WHERE workspace_id=? AND (?='' OR status=?)
ORDER BY created_at DESC LIMIT ?;)",
        { activeWorkspaceId(db), status, status, limit });
}

QList<CRMUpdateProposal> callProposals(LocalDB& db, const QString& callId)
{
    return proposals.rows(
        db, "WHERE workspace_id=? AND call_id=? ORDER BY created_at, id;", { activeWorkspaceId(db), callId });
}

std::optional<CRMUpdateProposal> crmProposal(LocalDB& db, const QString& id)
{
    return proposals.first(db, "WHERE workspace_id=? AND id=? LIMIT 1;", { activeWorkspaceId(db), id });
}

QString proposalHash(const CRMUpdateProposal& proposal)
{
    return fieldsHash(
        { u"proposal"_s, proposal.kind, proposal.contactId, proposal.dealId, proposal.title, proposal.payloadJson });
}

Decided applyCRMUpdateProposal(LocalDB& db, const QString& id, const QString& seenHash)
{
    std::optional<CRMUpdateProposal> found;
    std::optional<QString> error;
    {
        Transaction transaction(db);
        found = transaction.begun() ? crmProposal(db, id) : std::nullopt;
        if (found && found->status == applied)
            return Decided::AlreadySo;
        if (!found || found->status != pending)
            return Decided::Refused;
        if (proposalHash(*found) != seenHash)
            return Decided::Changed;
        error = write(db, *found);
        if (!error) {
            const bool done = updateStatus(db, id, applied, std::nullopt) && recordDecision(db, *found, "apply")
                && transaction.commit();
            return done ? Decided::Taken : Decided::Refused;
        }
    }
    // Another program may have decided it meanwhile; a rejected one stays rejected.
    Transaction transaction(db);
    if (transaction.begun() && crmProposal(db, id) == found && updateStatus(db, id, pending, error))
        (void)transaction.commit();
    return Decided::Refused;
}

Decided rejectCRMUpdateProposal(LocalDB& db, const QString& id)
{
    Transaction transaction(db);
    const auto found = transaction.begun() ? crmProposal(db, id) : std::nullopt;
    if (found && found->status == rejected)
        return Decided::AlreadySo;
    if (!found || found->status != pending)
        return Decided::Refused;
    const bool done
        = updateStatus(db, id, rejected, std::nullopt) && recordDecision(db, *found, "reject") && transaction.commit();
    return done ? Decided::Taken : Decided::Refused;
}

bool linkCRMUpdateProposal(LocalDB& db, const QString& id, const QString& contactId)
{
    if (contactId.trimmed().isEmpty() || !contactExists(db, contactId))
        return false;
    const QString workspace = activeWorkspaceId(db);
    Transaction transaction(db);
    const auto found = transaction.begun() ? crmProposal(db, id) : std::nullopt;
    if (!found || found->status != pending)
        return false;
    const qint64 now = db.nowMs();
    const QString relink = uR"(UPDATE crm_update_proposal
SET contact_id=?, title=CASE
    WHEN kind='note' AND title LIKE 'Link contact,%' THEN 'Add call note'
    ELSE title
  END,
  confidence=MAX(COALESCE(confidence,0), 0.98),
  error=NULL,
  updated_at=?
WHERE workspace_id=? AND )"_s;
    const bool ofCall = !found->callId.isEmpty();
    const bool linked = !ofCall
        || db.run(R"(UPDATE call_recording
SET contact_id=?, updated_at=?
WHERE workspace_id=? AND id=?;)",
            { contactId, now, workspace, found->callId });
    return linked
        && db.run(relink + (ofCall ? u"call_id=?"_s : u"id=?"_s) + u" AND status='pending';"_s,
            { contactId, now, workspace, ofCall ? found->callId : id })
        && transaction.commit();
}

}
