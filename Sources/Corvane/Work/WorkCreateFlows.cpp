#include "Work/WorkCreateFlows.h"

#include "Foundation/Literals.h"
#include "Foundation/Text.h"
#include "Store/Approvals/WorkDecisions.h"
#include "Store/Core/Transaction.h"
#include "Store/Work/WorkWrites.h"
#include "Work/WorkWords.h"

namespace corvane {

namespace {

const QString person = u"Oskel"_s;
const QString approved = u"approved"_s;
const QString usualSource = u"corvane-ui"_s;
const QString couldNotSaveItem = u"Could not save the item."_s;
constexpr int firstWords = 80;

bool holdsAny(const QString& text, const QStringList& words)
{
    const QString lower = text.toLower();
    return std::ranges::any_of(words, [&](const QString& word) { return lower.contains(word); });
}

QString usualKind(WorkCreateFlow flow)
{
    if (flow == WorkCreateFlow::Context)
        return u"workspace"_s;
    return flow == WorkCreateFlow::Note ? u"note"_s : u"task"_s;
}

QString kindOf(const WorkDraft& draft)
{
    const QString kind = draft.kind.trimmed();
    return kind.isEmpty() ? usualKind(draft.flow) : kind;
}

QString verdictWord(const QString& status)
{
    return status == approved ? u"Approved"_s : u"Rejected"_s;
}

}

WorkDraft emptyDraft(WorkCreateFlow flow)
{
    return { .flow = flow, .kind = usualKind(flow) };
}

WorkDraft quickActionDraft(const QString& title, const QString& subtitle, const QString& contextTitle)
{
    const QString inContext = u"%1 for %2"_s.arg(title, contextTitle);
    WorkDraft draft;
    draft.summary = subtitle;
    if (holdsAny(title, { u"ask"_s, u"approval"_s })) {
        draft = emptyDraft(WorkCreateFlow::Ask);
        draft.title = title;
        draft.summary = subtitle;
        draft.askUrgency = holdsAny(title, { u"approval"_s, u"invoice"_s }) ? u"high"_s : u"normal"_s;
        draft.askTarget = u"Human/agent"_s;
    } else if (holdsAny(title, { u"runbook"_s, u"log"_s, u"doc"_s })) {
        draft.flow = WorkCreateFlow::Note;
        draft.kind = holdsAny(title, { u"runbook"_s }) ? u"runbook"_s : u"note"_s;
        draft.title = inContext;
    } else {
        draft.flow = WorkCreateFlow::Item;
        draft.kind = inferredKind(title);
        draft.title = inContext;
        draft.priority = holdsAny(title, { u"invoice"_s, u"log"_s, u"reply"_s }) ? u"high"_s : u"normal"_s;
    }
    return draft;
}

Result<WorkContextRow> saveContext(LocalDB& db, const WorkPlace& place, const WorkDraft& draft)
{
    const QString title = draft.title.trimmed();
    if (title.isEmpty())
        return failure(u"Title is required."_s);
    const auto saved = upsertWorkContext(db,
        { .module = place.module,
            .kind = kindOf(draft),
            .slug = normalizedLocalSlug(title, db.nowMs()),
            .title = title,
            .subtitle = draft.summary.trimmed(),
            .owner = draft.owner.trimmed() });
    return saved ? Result<WorkContextRow>(*saved) : failure(u"Could not save the context."_s);
}

Result<WorkItemRecord> saveItem(LocalDB& db, const WorkPlace& place, const WorkDraft& draft)
{
    const QString title = draft.title.trimmed();
    if (title.isEmpty())
        return failure(u"Title is required."_s);
    const QString summary = draft.summary.trimmed();
    // An item that needs a decision is not saved without it.
    Transaction transaction(db);
    if (!transaction.begun())
        return failure(couldNotSaveItem);
    const auto saved = insertWorkItem(db,
        { .module = place.module,
            .context = place.contextId(),
            .kind = kindOf(draft),
            .title = title,
            .priority = draft.priority.trimmed(),
            .owner = draft.owner.trimmed(),
            .source = place.source,
            .summary = summary });
    if (!saved)
        return failure(couldNotSaveItem);
    postStatus(db, place, u"Created item %1: %2."_s.arg(saved->id, title));
    const auto risk = riskForCreate(saved->kind, title, summary);
    if (risk
        && !insertWorkDecision(db,
            { .module = place.module,
                .context = place.contextId(),
                .title = u"Review "_s + title,
                .proposal
                = u"Hold any external send, money movement, billing, credential, deploy, or destructive action "
                  "until Oskel approves."_s,
                .rationale = u"Created from Corvane Create. The item is local only; execution requires approval."_s,
                .risk = *risk }))
        return failure(couldNotSaveItem);
    return transaction.commit() ? Result<WorkItemRecord>(*saved) : failure(couldNotSaveItem);
}

Result<WorkEvidenceRecord> saveNote(LocalDB& db, const WorkPlace& place, const WorkDraft& draft)
{
    const QString title = draft.title.trimmed();
    if (title.isEmpty())
        return failure(u"Title is required."_s);
    const auto saved = insertWorkEvidence(db,
        { .module = place.module,
            .context = place.contextId(),
            .itemId = std::nullopt,
            .kind = kindOf(draft),
            .title = title,
            .source = usualSource,
            .uri = QLatin1StringView(""),
            .summary = draft.summary.trimmed() });
    if (!saved)
        return failure(u"Could not save the note."_s);
    postStatus(db, place, u"Created note %1: %2."_s.arg(saved->id, title));
    return *saved;
}

Result<OpsAskRow> saveAsk(LocalDB& db, const WorkPlace& place, const WorkDraft& draft)
{
    const QString title = draft.title.trimmed();
    const QString question = title.isEmpty() ? draft.summary.trimmed() : title;
    if (question.isEmpty())
        return failure(u"Question is required."_s);
    const bool isDev = place.module == "dev"_L1;
    if (!db.tableExists(u"ask"_s))
        return failure(isDev ? u"Could not save ask row."_s : u"Could not save ask."_s);
    const auto saved = createOpsAsk(db,
        { .projectSlug = place.context ? place.context->slug : place.slug,
            .question = question,
            .urgency = draft.askUrgency.trimmed() });
    if (!saved)
        return failure(isDev ? u"Could not save ask row."_s : u"Could not save ops ask."_s);
    postStatus(db, place, u"Created ops_ask %1: %2"_s.arg(saved->id, question), u"ask"_s);
    return *saved;
}

bool asksLumo(const WorkDraft& draft)
{
    return holdsAny(draft.askTarget, { u"lumo"_s });
}

bool postStatus(LocalDB& db, const WorkPlace& place, const QString& body, const QString& kind)
{
    return insertWorkMessage(db,
        { .module = place.module,
            .context = place.contextId(),
            .speaker = u"Corvane"_s,
            .role = u"system"_s,
            .kind = kind,
            .body = body })
        .has_value();
}

bool setWorkDecisionStatus(LocalDB& db, const WorkPlace& place, const WorkDecisionRecord& seen, const QString& status)
{
    const Decided decided = status == approved ? approveWorkDecision(db, seen.id, person, decisionHash(seen))
                                               : rejectWorkDecision(db, seen.id, person);
    if (decided != Decided::Taken)
        return false;
    postStatus(
        db, place, u"%1 decision locally: %2. No external action was executed."_s.arg(verdictWord(status), seen.title));
    return true;
}

bool setWorkMemoryStatus(LocalDB& db, const WorkPlace& place, const WorkMemoryRecord& memory, const QString& status)
{
    if (!updateWorkMemoryStatus(db, memory.id, status, person))
        return false;
    postStatus(db, place,
        u"%1 memory proposal locally: %2."_s.arg(
            verdictWord(status), firstCharacters(singleLine(memory.body), firstWords)));
    return true;
}

bool markWorkItemDone(LocalDB& db, const WorkPlace& place, const WorkItemRecord& item)
{
    if (item.status.toLower() == "done"_L1 || !updateWorkItemStatus(db, item.id, u"done"_s))
        return false;
    postStatus(db, place, u"Marked work item done locally: %1."_s.arg(item.title));
    return true;
}

}
