#include "Approvals/DraftEdit.h"

#include "Approvals/ApprovalsStore.h"
#include "Foundation/Literals.h"

#include <algorithm>

namespace corvane {

DraftEdit::DraftEdit(ApprovalsStore& store, QObject* parent)
    : QObject(parent)
    , m_store(store)
{
    connect(&store, &ApprovalsStore::changed, this, &DraftEdit::follow);
}

void DraftEdit::setText(const QString& text)
{
    if (text == m_text)
        return;
    m_text = text;
    Q_EMIT textChanged();
}

QList<PendingDraft> DraftEdit::withLost(QList<PendingDraft> drafts) const
{
    if (!m_lost || std::ranges::find(drafts, m_draft.id, &PendingDraft::id) != drafts.end())
        return drafts;
    PendingDraft lost = m_draft;
    lost.status = u"lost"_s;
    drafts.insert(std::min(m_place, drafts.size()), lost);
    return drafts;
}

void DraftEdit::begin(const QString& draftId)
{
    const auto found = std::ranges::find(m_store.drafts(), draftId, &PendingDraft::id);
    const bool waits = found != m_store.drafts().end() && waitsForPerson(*found) && !m_store.armed(draftKey(draftId));
    if (!waits || draftId == m_draft.id)
        return;
    if (m_lost || (!m_draft.id.isEmpty() && m_text != m_draft.body)) {
        m_problem = u"Save or close this text first."_s;
        Q_EMIT changed();
        return;
    }
    m_draft = *found;
    m_place = found - m_store.drafts().begin();
    m_problem.clear();
    setText(m_draft.body);
    Q_EMIT changed();
}

void DraftEdit::save()
{
    if (m_draft.id.isEmpty() || !canSave())
        return;
    const QString id = m_draft.id;
    const Result<void> saved = m_store.saveDraftBody(id, m_text);
    if (saved)
        return close();
    m_problem = saved.error().message;
    Q_EMIT changed();
}

void DraftEdit::close()
{
    if (m_draft.id.isEmpty())
        return;
    m_draft = {};
    m_problem.clear();
    m_lost = false;
    setText({});
    Q_EMIT changed();
}

void DraftEdit::follow()
{
    if (m_draft.id.isEmpty())
        return;
    const auto found = std::ranges::find(m_store.drafts(), m_draft.id, &PendingDraft::id);
    const bool waits = found != m_store.drafts().end() && waitsForPerson(*found);
    if (waits) {
        m_draft = *found;
        m_place = found - m_store.drafts().begin();
    }
    if (waits != m_lost)
        return;
    m_lost = !waits;
    m_problem
        = m_lost ? m_store.whyNot(draftKey(m_draft.id)) + u" Your text stays here until you close it."_s : QString();
    Q_EMIT changed();
    Q_EMIT textChanged();
}

}
