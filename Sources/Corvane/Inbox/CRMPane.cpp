#include "Inbox/CRMPane.h"

#include "Inbox/DateWords.h"
#include "Inbox/PaneRows.h"
#include "Store/ThreadQueries.h"

namespace corvane {

namespace {

constexpr int suggestionLimit = 20;
constexpr int dealLimit = 10;
constexpr int taskLimit = 12;
constexpr int activityLimit = 30;
constexpr Milliseconds identityDelay { 250 };
constexpr Milliseconds refreshPeriod { 500 };

template <typename Rows, typename MakeRow> QList<PaneRow> paneRows(const Rows& rows, MakeRow makeRow)
{
    QList<PaneRow> result;
    result.reserve(rows.size());
    for (const auto& row : rows)
        result.append(makeRow(row));
    return result;
}

}

CRMPane::CRMPane(LocalDB& db, Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_db(db)
    , m_scheduler(scheduler)
    , m_crmSoon(scheduler, refreshPeriod, [this] { reloadCRM(); })
{
}

CRMPane::~CRMPane() = default;

QString CRMPane::identityText() const
{
    return m_contact.platforms.size() < 2 ? QString()
                                          : QStringLiteral("Same person · %1 channels").arg(m_contact.platforms.size());
}

QString CRMPane::memoryEmpty() const
{
    return QStringLiteral("Nothing yet — agents save durable facts here as you work.");
}

QString CRMPane::infoEmpty() const
{
    return QStringLiteral("No contact fields yet — emails, phones, platforms, and linked deal companies appear here.");
}

QString CRMPane::dealsEmpty() const
{
    return QStringLiteral("No deals yet — add one for this contact.");
}

QString CRMPane::activityEmpty() const
{
    return QStringLiteral("No activity yet — messages, notes, and call recordings appear here.");
}

QString CRMPane::tasksEmpty() const
{
    return QStringLiteral("No open tasks yet — add one for this contact.");
}

QStringList CRMPane::stages() const
{
    return pipelineStages();
}

void CRMPane::open(const ContactRow& contact)
{
    const bool isOther = contact.id != m_contact.id;
    const bool isShownOtherwise = isOther || contact.name != m_contact.name || contact.platforms != m_contact.platforms;
    m_contact = contact;
    if (isOther) {
        setError({});
        m_suggestions.assign({});
        m_primary = contact.id.isEmpty() ? QString() : effectiveContactId(m_db, contact.id);
        m_identitySoon
            = contact.id.isEmpty() ? nullptr : m_scheduler.after(identityDelay, [this] { reloadIdentity(); });
        reloadMerges();
        reloadCRM();
    } else if (!contact.id.isEmpty()) {
        m_crmSoon.request();
    }
    if (isShownOtherwise)
        Q_EMIT contactChanged();
}

void CRMPane::reloadIdentity()
{
    m_identitySoon.reset();
    QList<PaneRow> rows;
    m_signals.clear();
    for (const MergeCandidate& pair : suggestedMerges(m_db, suggestionLimit, m_primary)) {
        const PaneRow row = suggestionRow(pair, m_primary);
        if (m_dismissed.contains({ m_primary, row.id }))
            continue;
        m_signals.insert(row.id, pair.signal);
        rows.append(row);
    }
    m_suggestions.assign(rows);
}

void CRMPane::reloadMerges()
{
    m_merges.assign(paneRows(m_primary.isEmpty() ? QList<LiveMerge>() : activeMerges(m_db, m_primary),
        [this](const LiveMerge& merge) { return mergeRow(merge, displayName(m_db, merge.mergedId)); }));
}

void CRMPane::reloadCRM()
{
    const QString& id = m_contact.id;
    if (id.isEmpty()) {
        for (auto* rows : { &m_memory, &m_info, &m_deals, &m_notes, &m_activity, &m_tasks })
            rows->assign({});
        return;
    }
    const DateWords words(m_scheduler.nowMs());
    m_memory.assign(paneRows(fetchMemoryEntries(m_db, QStringLiteral("contact:") + id), memoryRow));
    m_info.assign(infoRows(fetchContactInfo(m_db, id)));
    m_deals.assign(paneRows(fetchContactDeals(m_db, id, dealLimit), dealRow));
    m_notes.assign(paneRows(fetchNotes(m_db, id), [&](const NoteRow& note) { return noteRow(note, words); }));
    m_activity.assign(paneRows(fetchContactActivity(m_db, id, activityLimit),
        [&](const ActivityRow& activity) { return activityRow(activity, words); }));
    m_tasks.assign(paneRows(fetchContactTasks(m_db, id, DoneTasks::Leave, taskLimit), taskRow));
}

bool CRMPane::addNote(const QString& body)
{
    const QString text = body.trimmed();
    return !text.isEmpty() && !m_contact.id.isEmpty() && done(corvane::addNote(m_db, m_contact.id, text).has_value());
}

bool CRMPane::addTask(const QString& title)
{
    NewTask task;
    task.title = title.trimmed();
    return !task.title.isEmpty() && !m_contact.id.isEmpty()
        && done(insertCRMTask(m_db, m_contact.id, task).has_value());
}

bool CRMPane::canAddDeal(const QString& name) const
{
    return !m_contact.id.isEmpty() && !name.trimmed().isEmpty();
}

bool CRMPane::addDeal(const QString& name, const QString& stage, const QString& value)
{
    return canAddDeal(name)
        && done(insertCRMDeal(m_db, m_contact.id, { name.trimmed(), stage, value.trimmed(), QString(), std::nullopt })
                .has_value());
}

void CRMPane::completeTask(const QString& id)
{
    done(completeCRMTask(m_db, id));
}

void CRMPane::forget(const QString& memoryId)
{
    done(forgetMemoryEntry(m_db, memoryId));
}

void CRMPane::mergeWith(const QString& otherId)
{
    if (!m_signals.contains(otherId))
        return;
    if (!done(mergeContacts(m_db, m_primary, otherId, m_signals.value(otherId)).has_value()))
        return;
    reloadIdentity();
    reloadMerges();
    Q_EMIT peopleChanged();
}

void CRMPane::dismissSuggestion(const QString& otherId)
{
    m_dismissed.insert({ m_primary, otherId });
    m_dismissed.insert({ otherId, m_primary });
    QList<PaneRow> rows = m_suggestions.rows();
    rows.removeIf([&](const PaneRow& row) { return row.id == otherId; });
    m_suggestions.assign(rows);
}

void CRMPane::unmerge(const QString& mergeId)
{
    if (!done(unmergeContacts(m_db, mergeId)))
        return;
    m_primary = effectiveContactId(m_db, m_contact.id);
    reloadIdentity();
    reloadMerges();
    Q_EMIT peopleChanged();
}

bool CRMPane::done(bool saved)
{
    setError(saved ? QString() : QStringLiteral("Couldn't save it, try again."));
    reloadCRM();
    return saved;
}

void CRMPane::setError(const QString& text)
{
    if (m_errorText == text)
        return;
    m_errorText = text;
    Q_EMIT errorTextChanged();
}

}
