#include "Work/WorkCreate.h"

#include "Foundation/Literals.h"
#include "Store/Core/StoreWatch.h"
#include "Work/WorkRows.h"
#include "Work/WorkWords.h"

namespace corvane {

namespace {

using Flow = WorkCreateFlow;

const QStringList flowWords { u"context"_s, u"item"_s, u"note"_s, u"ask"_s };
const QString titleField = u"title"_s;
const QString summaryField = u"summary"_s;
const QString kindField = u"kind"_s;
const QString ownerField = u"owner"_s;

QList<FieldSpec> fieldsOf(Flow flow)
{
    QList<FieldSpec> fields {
        { .id = titleField, .label = flow == Flow::Ask ? u"Question"_s : u"Title"_s, .maximumLines = 4 },
        { .id = summaryField,
            .label = flow == Flow::Context ? u"What it is about"_s : u"Summary"_s,
            .minimumLines = 2,
            .maximumLines = 8 },
    };
    const bool hasOwner = flow == Flow::Context || flow == Flow::Item;
    if (flow != Flow::Ask)
        fields.append({ .id = kindField, .label = u"Kind"_s, .narrow = hasOwner });
    if (hasOwner)
        fields.append({ .id = ownerField, .label = u"Owner"_s, .narrow = true });
    return fields;
}

QString riskWords(const QString& risk)
{
    if (risk == "money"_L1)
        return u"This involves money"_s;
    if (risk == "external"_L1)
        return u"This goes to somebody outside"_s;
    return risk == "credential"_L1 ? u"This involves secrets"_s : u"This cannot be undone"_s;
}

}

WorkCreate::WorkCreate(LocalDB& db, QObject* parent)
    : Form(parent)
    , m_db(db)
    , m_contextNoun(u"context"_s)
{
}

void WorkCreate::setPlace(const WorkPlace& place, const QString& contextNoun, const QList<WorkContextRow>& contexts)
{
    m_place = place;
    m_contextNoun = contextNoun;
    m_contexts = contexts;
    Q_EMIT changed();
}

QString WorkCreate::title() const
{
    switch (m_draft.flow) {
    case Flow::Context:
        return u"Create "_s + m_contextNoun;
    case Flow::Item:
        return u"Create Work Item"_s;
    case Flow::Note:
        return u"Create Note"_s;
    case Flow::Ask:
        return u"Create Ask"_s;
    }
    return {};
}

QString WorkCreate::hint() const
{
    if (m_draft.flow == Flow::Context)
        return {};
    return m_place.context ? u"In %1"_s.arg(shownLine(m_place.context->title)) : noContext();
}

QString WorkCreate::buttonLabel() const
{
    return u"Create"_s;
}

QString WorkCreate::message() const
{
    return m_error.isEmpty() ? riskText() : m_error;
}

QString WorkCreate::messageKind() const
{
    return m_error.isEmpty() ? u"warn"_s : u"bad"_s;
}

QString WorkCreate::noContext() const
{
    return u"In no %1"_s.arg(m_contextNoun);
}

QStringList WorkCreate::contexts() const
{
    QStringList titles;
    if (m_draft.flow == Flow::Context || m_place.context)
        return titles;
    for (const WorkContextRow& row : m_contexts)
        titles.append(shownLine(row.title));
    return titles;
}

QString WorkCreate::chosenContext() const
{
    return m_chosen ? shownLine(m_chosen->context->title) : QString();
}

void WorkCreate::chooseContext(const QString& title)
{
    m_chosen.reset();
    if (const auto at = contexts().indexOf(title); at >= 0) {
        m_chosen = m_place;
        m_chosen->context = m_contexts.at(at);
    }
    Q_EMIT changed();
}

QString WorkCreate::priorityLabel() const
{
    if (m_draft.flow == Flow::Item)
        return u"Priority"_s;
    return m_draft.flow == Flow::Ask ? u"Urgency"_s : QString();
}

const QString& WorkCreate::priority() const
{
    return m_draft.flow == Flow::Ask ? m_draft.askUrgency : m_draft.priority;
}

void WorkCreate::setPriority(const QString& priority)
{
    (m_draft.flow == Flow::Ask ? m_draft.askUrgency : m_draft.priority) = priority;
    edited();
}

QStringList WorkCreate::priorities() const
{
    return { u"high"_s, u"normal"_s, u"low"_s };
}

void WorkCreate::setToLumo(bool toLumo)
{
    m_draft.askTarget = toLumo ? u"LumoAI"_s : u"Human/agent"_s;
    edited();
}

void WorkCreate::edited()
{
    m_error.clear();
    Q_EMIT changed();
}

QString WorkCreate::riskText() const
{
    const WorkDraft draft = this->draft();
    if (draft.flow != Flow::Item || draft.title.trimmed().isEmpty())
        return {};
    const auto risk = riskForCreate(draft.kind, draft.title.trimmed(), draft.summary.trimmed());
    return risk ? u"%1: a decision will wait for you in Approvals."_s.arg(riskWords(*risk)) : QString();
}

void WorkCreate::begin(const QString& flow, const QString& kind, const QString& title)
{
    const auto index = flowWords.indexOf(flow);
    if (index < 0)
        return;
    WorkDraft draft = emptyDraft(Flow(index));
    draft.title = title;
    if (!kind.isEmpty())
        draft.kind = kind;
    show(draft);
}

void WorkCreate::beginQuickAction(const QString& title, const QString& subtitle)
{
    show(quickActionDraft(
        title, subtitle, m_place.context ? shownLine(m_place.context->title) : u"no %1"_s.arg(m_contextNoun)));
}

void WorkCreate::show(const WorkDraft& draft)
{
    m_draft = draft;
    setFields(fieldsOf(draft.flow),
        { { titleField, draft.title }, { summaryField, draft.summary }, { kindField, draft.kind },
            { ownerField, draft.owner } });
    m_chosen.reset();
    m_error.clear();
    m_open = true;
    Q_EMIT changed();
}

WorkDraft WorkCreate::draft() const
{
    const QHash<QString, QString> typed = values();
    WorkDraft draft = m_draft;
    draft.title = typed.value(titleField, draft.title);
    draft.summary = typed.value(summaryField, draft.summary);
    draft.kind = typed.value(kindField, draft.kind);
    draft.owner = typed.value(ownerField, draft.owner);
    return draft;
}

void WorkCreate::close()
{
    if (!m_open)
        return;
    m_open = false;
    m_error.clear();
    Q_EMIT changed();
}

/// Why it was not saved; nothing if it was.
std::optional<Error> WorkCreate::write(const WorkDraft& draft)
{
    const auto errorOf = [](const auto& saved) {
        return saved ? std::nullopt : std::optional(saved.error());
    };
    switch (draft.flow) {
    case Flow::Context: {
        const auto saved = saveContext(m_db, m_place, draft);
        if (saved)
            Q_EMIT contextSaved(saved->id);
        return errorOf(saved);
    }
    case Flow::Item:
        return errorOf(saveItem(m_db, placed(), draft));
    case Flow::Note:
        return errorOf(saveNote(m_db, placed(), draft));
    case Flow::Ask: {
        const auto saved = saveAsk(m_db, placed(), draft);
        if (saved)
            Q_EMIT askSaved(*saved, asksLumo(draft));
        return errorOf(saved);
    }
    }
    return std::nullopt;
}

void WorkCreate::submit()
{
    if (!m_open)
        return;
    if (const auto error = write(draft())) {
        m_error = error->message;
        return Q_EMIT changed();
    }
    close();
    m_db.watch().tell(StoreSubject::Work);
    Q_EMIT wrote();
}

}
