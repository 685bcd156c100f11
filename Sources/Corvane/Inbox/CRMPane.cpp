#include "Inbox/CRMPane.h"

#include "Engines/Account.h"
#include "Inbox/DateWords.h"
#include "Inbox/PaneRows.h"
#include "Store/ThreadQueries.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr int suggestionLimit = 20;
constexpr int dealLimit = 10;
constexpr int firstNotes = 5;
constexpr int firstActivity = 8;
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
    , m_crmSoon(scheduler, refreshPeriod, [this] {
        reloadMerges();
        reloadCRM();
    })
{
}

CRMPane::~CRMPane() = default;

QString CRMPane::identityText() const
{
    return m_contact.platforms.size() < 2 ? QString()
                                          : QStringLiteral("Same person · %1 channels").arg(m_contact.platforms.size());
}

QString CRMPane::identityEmpty() const
{
    const QString suggested = QStringLiteral("Contacts that look like the same person are suggested here.");
    return m_contact.platforms.size() != 1
        ? suggested
        : QStringLiteral("Known on %1 only. %2").arg(channelLabel(m_contact.platforms.first()), suggested);
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
        m_noteLimit = firstNotes;
        m_activityLimit = firstActivity;
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
    if (isOther)
        Q_EMIT typedChanged();
}

void CRMPane::reloadIdentity()
{
    m_identitySoon.reset();
    QList<PaneRow> rows;
    m_signals.clear();
    const auto pairs
        = m_primary.isEmpty() ? QList<MergeCandidate>() : suggestedMerges(m_db, suggestionLimit, m_primary);
    for (const MergeCandidate& pair : pairs) {
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
    const auto notes = fetchNotes(m_db, id);
    m_notes.assign(paneRows(notes.first(std::min<qsizetype>(notes.size(), m_noteLimit)),
        [&](const NoteRow& note) { return noteRow(note, words); }));
    const auto activity = fetchContactActivity(m_db, id, m_activityLimit + 1);
    m_activity.assign(paneRows(activity.first(std::min<qsizetype>(activity.size(), m_activityLimit)),
        [&](const ActivityRow& row) { return activityRow(row, words); }));
    m_olderNotes = notes.size() > m_noteLimit;
    m_olderActivity = activity.size() > m_activityLimit;
    Q_EMIT lengthsChanged();
    m_tasks.assign(paneRows(fetchContactTasks(m_db, id, DoneTasks::Leave, shownTasks), taskRow));
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
