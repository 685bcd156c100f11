#include "Store/Approvals/DraftApprovals.h"

#include "Foundation/Literals.h"
#include "Store/Core/Transaction.h"

namespace corvane {

namespace {

using enum DraftStatus;

bool record(LocalDB& db, const QString& id, const char* action, const QString& hash)
{
    return appendRecord(db, u"draft"_s, id, QString::fromLatin1(action), hash);
}

bool remember(LocalDB& db, const QString& id, const QString& hash)
{
    return db.run("INSERT INTO draft_approval(draft_id, content_hash, approved_at) VALUES(?,?,?) "
                  "ON CONFLICT(draft_id) DO UPDATE SET content_hash=excluded.content_hash, "
                  "approved_at=excluded.approved_at;",
        { id, hash, db.nowMs() });
}

bool forget(LocalDB& db, const QString& id)
{
    return db.run("DELETE FROM draft_approval WHERE draft_id=?;", { id });
}

std::optional<QString> approvedHash(LocalDB& db, const QString& id)
{
    return db.scalar("SELECT content_hash FROM draft_approval WHERE draft_id=?;", { id });
}

/// Differs from what the user saw.
bool sendBack(LocalDB& db, const PendingDraft& draft)
{
    return db.changedRows("UPDATE outbound_draft SET status='pending', error=?, updated_at=? WHERE id=? AND status=?;",
               { describe(DraftFailure::Changed), db.nowMs(), draft.id, draft.status })
        == 1
        && forget(db, draft.id) && record(db, draft.id, "return", draftHash(draft));
}

/// The step that releases a text: it matches the row only as it was read.
bool take(LocalDB& db, const PendingDraft& draft)
{
    return db.changedRows("UPDATE outbound_draft SET status='sending', updated_at=? WHERE id=? AND status='approved' "
                          "AND body=? AND channel=? AND account_id=? AND external_id=? AND COALESCE(subject,'')=? "
                          "AND COALESCE(files,'')=?;",
               { db.nowMs(), draft.id, draft.body, draft.channel, draft.accountId, draft.externalId, draft.subject,
                   draft.files })
        == 1;
}

/// The stored text differs from what was read, such as invalid UTF-8: the user cannot have seen it.
bool failUnreadable(LocalDB& db, const PendingDraft& draft)
{
    markDraftFailed(db, draft.id, describe(DraftFailure::Unreadable));
    return forget(db, draft.id) && record(db, draft.id, "failed", draftHash(draft));
}

/// Its engine has it and has not reported a final result.
bool isWithEngine(const PendingDraft& draft)
{
    return allows(draft.state(), DraftStep::Acknowledge) || mayHaveGoneOut(draft);
}

/// One logged step of the user; `AlreadySo` if the draft already has that status.
Decided step(LocalDB& db, const QString& id, DraftStatus from, DraftStatus to, const char* action)
{
    Transaction transaction(db);
    const auto draft = transaction.begun() ? fetchDraft(db, id) : std::nullopt;
    if (!draft)
        return Decided::Refused;
    if (draft->state() == to)
        return Decided::AlreadySo;
    const bool done = moveDraft(db, id, from, to) && forget(db, id) && record(db, id, action, draftHash(*draft))
        && transaction.commit();
    return done ? Decided::Taken : Decided::Refused;
}

/// Inside a transaction.
bool failOne(LocalDB& db, const QString& id, DraftStatus from, const QString& error)
{
    const auto draft = fetchDraft(db, id);
    if (!draft || draft->state() != from)
        return false;
    markDraftFailed(db, id, error);
    return forget(db, id) && record(db, id, "failed", draftHash(*draft));
}

}

QString draftHash(const PendingDraft& draft)
{
    QStringList fields { u"draft"_s, draft.channel, draft.accountId, draft.externalId, draft.body };
    // A text without attachments keeps its old hash.
    if (!draft.subject.isEmpty() || !draft.files.isEmpty())
        fields += { draft.subject, draft.files };
    return fieldsHash(fields);
}

Decided approveDraft(LocalDB& db, const QString& id, const QString& seenHash)
{
    Transaction transaction(db);
    const auto draft = transaction.begun() ? fetchDraft(db, id) : std::nullopt;
    if (!draft || draft->state() == Rejected)
        return Decided::Refused;
    if (!waitsForPerson(*draft))
        return Decided::AlreadySo;
    if (draftHash(*draft) != seenHash)
        return sendBack(db, *draft) && transaction.commit() ? Decided::Changed : Decided::Refused;
    const bool done = moveDraft(db, id, draft->state(), Approved) && remember(db, id, seenHash)
        && record(db, id, "approve", seenHash) && transaction.commit();
    return done ? Decided::Taken : Decided::Refused;
}

Decided returnDraft(LocalDB& db, const QString& id, const QList<OutgoingFile>& files)
{
    Transaction transaction(db);
    auto draft = transaction.begun() ? fetchDraft(db, id) : std::nullopt;
    if (!draft || !waitsForPerson(*draft))
        return Decided::Refused;
    draft->files = filesText(files);
    const bool done = db.run("UPDATE outbound_draft SET files=? WHERE id=?;", { draft->files, id })
        && sendBack(db, *draft) && transaction.commit();
    return done ? Decided::Changed : Decided::Refused;
}

Decided rejectDraft(LocalDB& db, const QString& id)
{
    Transaction transaction(db);
    const auto draft = transaction.begun() ? fetchDraft(db, id) : std::nullopt;
    if (!draft)
        return Decided::Refused;
    if (draft->state() == Rejected)
        return Decided::AlreadySo;
    if (!allows(draft->state(), DraftStep::Reject))
        return Decided::Refused;
    const bool done = moveDraft(db, id, draft->state(), Rejected) && forget(db, id)
        && record(db, id, "reject", draftHash(*draft)) && transaction.commit();
    return done ? Decided::Taken : Decided::Refused;
}

Decided takeBackDraft(LocalDB& db, const QString& id)
{
    return step(db, id, Approved, Pending, "undo");
}

Decided confirmDraftSent(LocalDB& db, const QString& id)
{
    return step(db, id, Placed, Sent, "sent");
}

bool editDraft(LocalDB& db, const QString& id, const QString& body)
{
    Transaction transaction(db);
    const auto draft = transaction.begun() ? fetchDraft(db, id) : std::nullopt;
    if (!draft || !waitsForPerson(*draft))
        return false;
    PendingDraft edited = *draft;
    edited.body = body;
    updateDraftBody(db, id, body);
    return forget(db, id) && record(db, id, "edit", draftHash(edited)) && transaction.commit();
}

void failWaitingDraft(LocalDB& db, const QString& id, const QString& error)
{
    Transaction transaction(db);
    const auto draft = transaction.begun() ? fetchDraft(db, id) : std::nullopt;
    if (!draft || !waitsForPerson(*draft))
        return;
    markDraftFailed(db, id, error);
    if (record(db, id, "failed", draftHash(*draft)))
        (void)transaction.commit();
}

void failApprovedDrafts(LocalDB& db, const QString& accountId, const QString& error)
{
    Transaction transaction(db);
    if (!transaction.begun())
        return;
    const QStringList ids = db.rows("SELECT id FROM outbound_draft WHERE account_id=? AND status='approved';",
        { accountId }, [](const SqlRow& row) { return row.text(0); });
    for (const QString& id : ids) {
        if (!failOne(db, id, Approved, error))
            return;
    }
    (void)transaction.commit();
}

bool failRestoredDrafts(LocalDB& db)
{
    Transaction transaction(db);
    if (!transaction.begun())
        return false;
    const QStringList ids = db.rows("SELECT id FROM outbound_draft WHERE status IN ('approved','sending');", {},
        [](const SqlRow& row) { return row.text(0); });
    for (const QString& id : ids) {
        const auto draft = fetchDraft(db, id);
        if (!draft || !failOne(db, id, draft->state(), describe(DraftFailure::Restored)))
            return false;
    }
    return transaction.commit();
}

DraftClaim DraftClaim::claim(LocalDB& db, const QString& id)
{
    DraftClaim claim;
    Transaction transaction(db);
    const auto draft = transaction.begun() ? fetchDraft(db, id) : std::nullopt;
    if (!draft || !allows(draft->state(), DraftStep::HandOver))
        return claim;
    const QString hash = draftHash(*draft);
    const auto expected = approvedHash(db, id);
    if (expected && expected != hash) {
        claim.returned = sendBack(db, *draft) && transaction.commit();
        return claim;
    }
    if (!expected && !record(db, id, "approve_elsewhere", hash))
        return claim;
    if (!take(db, *draft)) {
        if (moveDraft(db, id, Approved, Failed) && failUnreadable(db, *draft))
            (void)transaction.commit();
        return claim;
    }
    if (forget(db, id) && transaction.commit())
        claim.draft = ClaimedDraft(*draft);
    return claim;
}

bool unclaimDraft(LocalDB& db, const ClaimedDraft& draft)
{
    const QString& id = draft.row().id;
    Transaction transaction(db);
    return transaction.begun() && moveDraft(db, id, Sending, Approved) && remember(db, id, draftHash(draft.row()))
        && transaction.commit();
}

void acknowledgeDraft(LocalDB& db, const QString& accountSlug, const QString& id, const QString& status,
    const std::optional<QString>& providerMsgId, const QString& error)
{
    Transaction transaction(db);
    const auto draft = transaction.begun() ? fetchDraft(db, id) : std::nullopt;
    if (!draft || draft->accountId != accountSlug || !isWithEngine(*draft))
        return;
    const DraftStatus said = draftStatus(status);
    const DraftStatus outcome = said == Sent || said == Placed ? said : Failed;
    if (outcome == Failed)
        markDraftFailed(db, id, error);
    else
        markDraftCompleted(db, id, outcome, providerMsgId);
    const bool news = draft->state() != outcome;
    if (forget(db, id) && (!news || record(db, id, draftStatusWord(outcome).toLatin1().constData(), draftHash(*draft))))
        (void)transaction.commit();
}

void failUnacknowledgedDraft(LocalDB& db, const QString& id)
{
    Transaction transaction(db);
    const auto draft = transaction.begun() ? fetchDraft(db, id) : std::nullopt;
    if (!draft || draft->state() != Sending)
        return;
    markDraftUnacknowledged(db, id);
    if (record(db, id, "failed", draftHash(*draft)))
        (void)transaction.commit();
}

void failClaimedDraft(LocalDB& db, const ClaimedDraft& draft, const QString& error)
{
    Transaction transaction(db);
    if (transaction.begun() && failOne(db, draft.row().id, Sending, error))
        (void)transaction.commit();
}

}
