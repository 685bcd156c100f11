// The user's actions in the contact pane. Whatever is removed can be undone.

#include "CRM/CRMPane.h"
#include "Foundation/Literals.h"

#include "Foundation/Text.h"
#include "Foundation/WAName.h"
#include "Store/People/ContactInfo.h"
#include "Store/People/CrmRecords.h"
#include "Store/People/IdentityQueries.h"

#include <algorithm>
#include <array>

namespace corvane {

namespace {

/// A text shortened to fit a label.
QString shortened(const QString& text)
{
    constexpr int length = 32;
    const QString line = singleLine(text);
    const QString start = firstCharacters(line, length);
    return start.size() < line.size() ? start.trimmed() + u'…' : line;
}

std::optional<LiveMerge> liveMerge(LocalDB& db, const QString& primary, const QString& mergeId)
{
    const auto merges = activeMerges(db, primary);
    const auto found = std::ranges::find(merges, mergeId, &LiveMerge::id);
    return found == merges.end() ? std::nullopt : std::optional(*found);
}

}

void CRMPane::showNote(const QString& id)
{
    while (m_notes.hasOlder() && !m_notes.shows(id))
        m_notes.showOlder();
}

void CRMPane::setNoteText(const QString& text)
{
    setTyped(m_noteTexts, text);
}

void CRMPane::setTaskText(const QString& text)
{
    setTyped(m_taskTexts, text);
}

void CRMPane::setTyped(QHash<QString, QString>& texts, const QString& text)
{
    if (m_contact.id.isEmpty() || texts.value(m_contact.id) == text)
        return;
    if (text.isEmpty())
        texts.remove(m_contact.id);
    else
        texts.insert(m_contact.id, text);
    Q_EMIT typedChanged();
}

bool CRMPane::addNote(const QString& body)
{
    const QString text = body.trimmed();
    if (text.isEmpty() || m_contact.id.isEmpty() || !done(corvane::addNote(m_db, m_contact.id, text).has_value()))
        return false;
    setNoteText({});
    return true;
}

bool CRMPane::addTask(const QString& title)
{
    NewTask task;
    task.title = title.trimmed();
    if (task.title.isEmpty() || m_contact.id.isEmpty() || !done(insertCRMTask(m_db, m_contact.id, task).has_value()))
        return false;
    setTaskText({});
    return true;
}

void CRMPane::moveDeal(const QString& id, const QString& stage)
{
    const auto deals = latestDeals();
    const auto deal = std::ranges::find(deals, id, &CRMDealRow::id);
    if (deal == deals.end() || deal->stage == stage || !done(moveCRMDeal(m_db, id, stage)))
        return;
    Q_EMIT undoable(u"Moved “%1” to %2"_s.arg(shortened(deal->name), stage),
        [this, id, before = deal->stage] { done(moveCRMDeal(m_db, id, before)); });
}

void CRMPane::completeTask(const QString& id)
{
    const auto tasks = openTasks();
    const auto task = std::ranges::find(tasks, id, &CRMTaskRow::id);
    if (task == tasks.end() || !done(completeCRMTask(m_db, id)))
        return;
    Q_EMIT undoable(u"Completed “%1”"_s.arg(shortened(task->title)),
        [this, id, status = task->status] { done(reopenCRMTask(m_db, id, status)); });
}

void CRMPane::forget(const QString& memoryId)
{
    const auto entry = forgetMemoryEntry(m_db, memoryId);
    if (done(entry.has_value()))
        Q_EMIT undoable(u"Forgot “%1”"_s.arg(shortened(entry->body)),
            [this, entry = *entry] { done(keepMemoryEntry(m_db, entry)); });
}

void CRMPane::mergeWith(const QString& otherId)
{
    if (m_signals.contains(otherId))
        mergeUndoably(m_primary, otherId, m_signals.value(otherId));
}

void CRMPane::unmerge(const QString& mergeId)
{
    const auto live = liveMerge(m_db, m_primary, mergeId);
    if (!separate(mergeId) || !live)
        return;
    Q_EMIT undoable(u"Unmerged "_s + WAName::pretty(displayName(m_db, live->mergedId)),
        [this, merge = *live] { this->merge(merge.primaryId, merge.mergedId, merge.signal); });
}

void CRMPane::mergeUndoably(const QString& primary, const QString& merged, const QString& signal)
{
    const QString name = WAName::pretty(displayName(m_db, merged));
    if (const auto mergeId = merge(primary, merged, signal))
        Q_EMIT undoable(u"Merged with "_s + name, [this, id = *mergeId] { separate(id); });
}

void CRMPane::dismissSuggestion(const QString& otherId)
{
    const std::array pairs { std::pair(m_primary, otherId), std::pair(otherId, m_primary) };
    for (const auto& pair : pairs)
        m_dismissed.insert(pair);
    QList<PaneRow> rows = m_suggestions.rows();
    rows.removeIf([&](const PaneRow& row) { return row.id == otherId; });
    m_suggestions.assign(rows);
    Q_EMIT undoable(u"Dismissed the suggestion"_s, [this, pairs] {
        for (const auto& pair : pairs)
            m_dismissed.remove(pair);
        reloadIdentity();
    });
}

std::optional<QString> CRMPane::merge(const QString& primary, const QString& merged, const QString& signal)
{
    const auto mergeId = mergeContacts(m_db, primary, merged, signal);
    if (done(mergeId.has_value()))
        reloadPeople();
    return mergeId;
}

bool CRMPane::separate(const QString& mergeId)
{
    const bool separated = done(unmergeContacts(m_db, mergeId));
    if (separated)
        reloadPeople();
    return separated;
}

void CRMPane::reloadPeople()
{
    reloadIdentity();
    Q_EMIT peopleChanged();
}

}
