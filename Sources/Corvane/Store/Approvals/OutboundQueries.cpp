#include "Store/Approvals/OutboundQueries.h"

#include "Foundation/Ids.h"
#include "Foundation/Literals.h"
#include "Store/Core/Table.h"
#include "Store/Core/Workspaces.h"

namespace corvane {

namespace {

const Table<PendingDraft> drafts("outbound_draft",
    {
        { "id", &PendingDraft::id },
        { "workspace_id" },
        { "conversation_id", &PendingDraft::conversationId },
        { "channel", &PendingDraft::channel },
        { "account_id", &PendingDraft::accountId },
        { "external_id", &PendingDraft::externalId },
        { "title", &PendingDraft::title, "''" },
        { "body", &PendingDraft::body },
        { "status", &PendingDraft::status, asStored, "'pending'" },
        { "source", &PendingDraft::source, "''" },
        { "web_ack_status", &PendingDraft::webAckStatus, "''", onlyRead },
        { "provider_msg_id", &PendingDraft::providerMsgId, "''", onlyRead },
        { "error", &PendingDraft::error, "''", onlyRead },
        { "subject", &PendingDraft::subject, "''" },
        { "files", &PendingDraft::files, "''" },
        { "created_at" },
        { "updated_at" },
    });

QString placeholders(qsizetype count)
{
    return QStringList(count, u"?"_s).join(u',');
}

}

bool queueDraft(LocalDB& db, const QString& conversationId, const QString& text, const QString& source)
{
    return queueDraft(db, conversationId, OutgoingMessage { text }, source);
}

bool queueDraft(LocalDB& db, const QString& conversationId, const OutgoingMessage& message, const QString& source)
{
    const qint64 now = db.nowMs();
    const auto draft = db.firstRow("SELECT account_id, external_id, channel, COALESCE(title, external_id) FROM "
                                   "unified_conversation WHERE id=? AND deleted_at IS NULL;",
        { conversationId }, [&](const SqlRow& row) {
            PendingDraft queued;
            queued.id = stampedId(u"od"_s, now);
            queued.conversationId = conversationId;
            queued.channel = row.text(2);
            queued.accountId = row.text(0);
            queued.externalId = row.text(1);
            queued.title = row.text(3);
            queued.body = message.text;
            queued.source = source;
            queued.subject = message.subject;
            queued.files = filesText(message.files);
            return queued;
        });
    return draft
        && drafts.insert(
            db, *draft, { { "workspace_id", activeWorkspaceId(db) }, { "created_at", now }, { "updated_at", now } });
}

std::optional<QList<OutgoingFile>> fetchDraftFiles(LocalDB& db)
{
    db.forgetFailure();
    QList<OutgoingFile> files;
    bool allReadable = true;
    db.visitRows("SELECT files FROM outbound_draft WHERE files<>'' AND status NOT IN ('sent','rejected');", {},
        [&](const SqlRow& row) {
            const auto theirs = filesFromText(row.text(0));
            allReadable = allReadable && theirs;
            files.append(theirs.value_or(QList<OutgoingFile>()));
            return allReadable;
        });
    return db.isOpen() && db.failure() == 0 && allReadable ? std::optional(files) : std::nullopt;
}

QList<PendingDraft> fetchDrafts(LocalDB& db, const QList<DraftStatus>& statuses, int limit)
{
    QList<SqlValue> parameters { activeWorkspaceId(db) };
    for (const DraftStatus status : statuses)
        parameters.append(draftStatusWord(status));
    parameters.append(limit);
    const QString which = uR"(WHERE workspace_id=? AND status IN (%1)
ORDER BY CASE status WHEN 'failed' THEN 0 WHEN 'pending' THEN 1 WHEN 'sending' THEN 2 ELSE 3 END, created_at ASC
LIMIT ?;)"_s.arg(placeholders(statuses.size()));
    return drafts.rows(db, which, parameters);
}

QList<PendingDraft> fetchApprovedDrafts(LocalDB& db, const QStringList& accountIds, int limit)
{
    QList<SqlValue> parameters { activeWorkspaceId(db) };
    for (const QString& accountId : accountIds)
        parameters.append(accountId);
    parameters.append(limit);
    const QString which
        = u"WHERE workspace_id=? AND status='approved' AND account_id IN (%1) ORDER BY created_at ASC LIMIT ?;"_s.arg(
            placeholders(accountIds.size()));
    return drafts.rows(db, which, parameters);
}

QList<DraftOfAccount> fetchApprovedIds(LocalDB& db)
{
    return db.rows("SELECT id, account_id FROM outbound_draft WHERE workspace_id=? AND status='approved' "
                   "ORDER BY created_at ASC;",
        { activeWorkspaceId(db) }, [](const SqlRow& row) { return DraftOfAccount { row.text(0), row.text(1) }; });
}

QStringList accountsWithApprovedDrafts(LocalDB& db)
{
    return db.rows("SELECT DISTINCT account_id FROM outbound_draft WHERE status='approved';", {},
        [](const SqlRow& row) { return row.text(0); });
}

QStringList fetchSendingIds(LocalDB& db)
{
    return db.rows(
        "SELECT id FROM outbound_draft WHERE status='sending';", {}, [](const SqlRow& row) { return row.text(0); });
}

bool waitsForPerson(const PendingDraft& draft)
{
    return allows(draft.state(), DraftStep::Decide);
}

bool mayHaveGoneOut(const PendingDraft& draft)
{
    return draft.state() == DraftStatus::Failed
        && (draft.error == describe(DraftFailure::Unacknowledged) || draft.error == describe(DraftFailure::Restored)
            || draft.error.startsWith(describe(DraftFailure::Uncertain)));
}

std::optional<PendingDraft> fetchDraft(LocalDB& db, const QString& id)
{
    return drafts.first(db, u"WHERE id=?;"_s, { id });
}

bool moveDraft(LocalDB& db, const QString& id, DraftStatus from, DraftStatus to)
{
    return db.changedRows("UPDATE outbound_draft SET status=?, updated_at=? WHERE id=? AND status=?;",
               { draftStatusWord(to), db.nowMs(), id, draftStatusWord(from) })
        == 1;
}

void markDraftCompleted(LocalDB& db, const QString& id, DraftStatus status, const std::optional<QString>& providerMsgId)
{
    db.run("UPDATE outbound_draft SET status=?, provider_msg_id=?, error=NULL, updated_at=? WHERE id=?;",
        { draftStatusWord(status), providerMsgId, db.nowMs(), id });
}

void markDraftFailed(LocalDB& db, const QString& id, const QString& error)
{
    db.run("UPDATE outbound_draft SET status='failed', error=?, updated_at=? WHERE id=?;", { error, db.nowMs(), id });
}

void updateDraftBody(LocalDB& db, const QString& id, const QString& body)
{
    db.run("UPDATE outbound_draft SET body=?, updated_at=? WHERE id=? AND status IN ('pending','failed');",
        { body, db.nowMs(), id });
}

void markDraftUnacknowledged(LocalDB& db, const QString& id)
{
    db.run("UPDATE outbound_draft SET status='failed', error=?, updated_at=? WHERE id=? AND status='sending';",
        { describe(DraftFailure::Unacknowledged), db.nowMs(), id });
}

}
