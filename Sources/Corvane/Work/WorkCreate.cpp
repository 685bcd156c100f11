#include "Work/WorkCreate.h"

#include "Foundation/Literals.h"
#include "Store/Core/StoreWatch.h"
#include "Work/WorkRows.h"
#include "Work/WorkWords.h"

namespace corvane {

namespace {

const QStringList flowWords { u"context"_s, u"item"_s, u"note"_s, u"ask"_s };

QString riskWords(const QString& risk)
{
    if (risk == "money"_L1)
        return u"It is about money"_s;
    if (risk == "external"_L1)
        return u"It goes to somebody outside"_s;
    return risk == "credential"_L1 ? u"It is about secrets"_s : u"It cannot be taken back"_s;
}

}

WorkCreate::WorkCreate(LocalDB& db, QObject* parent)
    : QObject(parent)
    , m_db(db)
{
}

void WorkCreate::setPlace(const WorkPlace& place, const QString& contextNoun, const QList<WorkContextRow>& contexts)
{
    m_place = place;
    m_contextNoun = contextNoun;
    m_contexts = contexts;
    Q_EMIT changed();
}

QString WorkCreate::flow() const
{
    return flowWords.at(int(m_draft.flow));
}

QString WorkCreate::heading() const
{
    switch (m_draft.flow) {
    case WorkCreateFlow::Context:
        return u"Create "_s + m_contextNoun;
    case WorkCreateFlow::Item:
        return u"Create Work Item"_s;
    case WorkCreateFlow::Note:
        return u"Create Note"_s;
    case WorkCreateFlow::Ask:
        return u"Create Ask"_s;
    }
    return {};
}

QString WorkCreate::place() const
{
    if (m_draft.flow == WorkCreateFlow::Context)
        return {};
    return m_place.context ? u"In %1"_s.arg(shownLine(m_place.context->title)) : noContext();
}

QStringList WorkCreate::contexts() const
{
    QStringList titles;
    if (m_draft.flow == WorkCreateFlow::Context || m_place.context)
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

QString WorkCreate::titleLabel() const
{
    return m_draft.flow == WorkCreateFlow::Ask ? u"Question"_s : u"Title"_s;
}

QString WorkCreate::summaryLabel() const
{
    return m_draft.flow == WorkCreateFlow::Context ? u"What it is about"_s : u"Summary"_s;
}

void WorkCreate::setToLumo(bool toLumo)
{
    edit(m_draft.askTarget, toLumo ? u"LumoAI"_s : u"Human/agent"_s);
}

QString WorkCreate::riskText() const
{
    if (m_draft.flow != WorkCreateFlow::Item || m_draft.title.trimmed().isEmpty())
        return {};
    const auto risk = riskForCreate(m_draft.kind, m_draft.title.trimmed(), m_draft.summary.trimmed());
    return risk ? u"%1: a decision will wait for you in Approvals."_s.arg(riskWords(*risk)) : QString();
}

void WorkCreate::begin(const QString& flow)
{
    const auto index = flowWords.indexOf(flow);
    if (index >= 0)
        show(emptyDraft(WorkCreateFlow(index)));
}

void WorkCreate::beginQuickAction(const QString& title, const QString& subtitle)
{
    show(quickActionDraft(
        title, subtitle, m_place.context ? shownLine(m_place.context->title) : u"no %1"_s.arg(m_contextNoun)));
}

void WorkCreate::show(const WorkDraft& draft)
{
    m_draft = draft;
    m_chosen.reset();
    m_error.clear();
    m_open = true;
    Q_EMIT changed();
}

void WorkCreate::edit(QString& field, const QString& value)
{
    if (field == value)
        return;
    field = value;
    m_error.clear();
    Q_EMIT changed();
}

void WorkCreate::cancel()
{
    m_open = false;
    m_error.clear();
    Q_EMIT changed();
}

/// Why it was not saved; nothing if it was.
std::optional<Error> WorkCreate::write()
{
    const auto errorOf = [](const auto& saved) {
        return saved ? std::nullopt : std::optional(saved.error());
    };
    switch (m_draft.flow) {
    case WorkCreateFlow::Context: {
        const auto saved = saveContext(m_db, m_place, m_draft);
        if (saved)
            Q_EMIT contextSaved(saved->id);
        return errorOf(saved);
    }
    case WorkCreateFlow::Item:
        return errorOf(saveItem(m_db, placed(), m_draft));
    case WorkCreateFlow::Note:
        return errorOf(saveNote(m_db, placed(), m_draft));
    case WorkCreateFlow::Ask: {
        const auto saved = saveAsk(m_db, placed(), m_draft);
        if (saved)
            Q_EMIT askSaved(*saved, asksLumo(m_draft));
        return errorOf(saved);
    }
    }
    return std::nullopt;
}

void WorkCreate::save()
{
    if (!m_open)
        return;
    if (const auto error = write()) {
        m_error = error->message;
        return Q_EMIT changed();
    }
    m_open = false;
    m_error.clear();
    Q_EMIT changed();
    m_db.watch().tell(StoreSubject::Work);
    Q_EMIT wrote();
}

}
