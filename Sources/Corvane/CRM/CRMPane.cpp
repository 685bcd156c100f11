#include "CRM/CRMPane.h"

#include "CRM/PaneRows.h"
#include "Foundation/Channel.h"
#include "Foundation/Literals.h"
#include "Presentation/DateWords.h"
#include "Store/Messages/ThreadQueries.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr int suggestionLimit = 20;
constexpr int dealLimit = 10;
constexpr int taskLimit = 12;
constexpr int firstNotes = 5;
constexpr int firstActivity = 8;
constexpr Milliseconds identityDelay { 250 };
constexpr Milliseconds refreshPeriod { 500 };

/// The newest rows of all contacts.
template <typename Fetch, typename Time>
auto newestOf(const QStringList& contactIds, Fetch fetch, Time time, qsizetype limit)
{
    std::invoke_result_t<Fetch, const QString&> rows;
    for (const QString& id : contactIds)
        rows += fetch(id);
    if (contactIds.size() > 1)
        std::ranges::sort(rows, std::ranges::greater(), time);
    return rows.first(std::min(rows.size(), limit));
}

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
    , m_dealForm([this](const NewDeal& deal) {
        done(insertCRMDeal(m_db, m_contact.id, deal).has_value());
        return m_errorText;
    })
    , m_crmSoon(scheduler, refreshPeriod, [this] { reloadCRM(); })
    , m_memory(u"Nothing yet — agents save durable facts here as you work."_s)
    , m_info(u"No contact fields yet — emails, phones, platforms, and linked deal companies appear here."_s)
    , m_deals(u"No deals yet — add one for this contact."_s)
    , m_notes({}, firstNotes)
    , m_activity(u"No activity yet — messages, notes, and call recordings appear here."_s, firstActivity)
    , m_tasks(u"No open tasks yet — add one for this contact."_s)
{
    connect(&m_notes, &PaneSection::olderAsked, this, &CRMPane::reloadCRM);
    connect(&m_activity, &PaneSection::olderAsked, this, &CRMPane::reloadCRM);
}

CRMPane::~CRMPane() = default;

QString CRMPane::identityText() const
{
    return m_contact.platforms.size() < 2 ? QString() : u"Same person · %1 channels"_s.arg(m_contact.platforms.size());
}

QString CRMPane::identityEmpty() const
{
    const QString suggested = u"Contacts that look like the same person are suggested here."_s;
    return m_contact.platforms.size() != 1
        ? suggested
        : u"Known on %1 only. %2"_s.arg(channelLabel(m_contact.platforms.first()), suggested);
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
        m_notes.startAnew();
        m_activity.startAnew();
        m_suggestions.assign({});
        m_identitySoon
            = contact.id.isEmpty() ? nullptr : m_scheduler.after(identityDelay, [this] { reloadIdentity(); });
        reloadCRM();
    } else if (!contact.id.isEmpty()) {
        m_crmSoon.request();
    }
    if (isShownOtherwise) {
        m_dealForm.setPerson(contact.id, contact.name);
        Q_EMIT contactChanged();
    }
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
    m_primary = m_contact.id.isEmpty() ? QString() : effectiveContactId(m_db, m_contact.id);
    m_merges.assign(paneRows(m_primary.isEmpty() ? QList<LiveMerge>() : activeMerges(m_db, m_primary),
        [this](const LiveMerge& merge) { return mergeRow(merge, displayName(m_db, merge.mergedId)); }));
    m_people = QStringList { m_contact.id };
    if (!m_people.contains(m_primary))
        m_people.append(m_primary);
    for (qsizetype i = 0; i < m_people.size(); ++i) { // includes contacts merged into merged contacts
        for (const LiveMerge& merge : activeMerges(m_db, m_people.at(i))) {
            if (!m_people.contains(merge.mergedId))
                m_people.append(merge.mergedId);
        }
    }
}

QList<CRMTaskRow> CRMPane::openTasks() const
{
    return newestOf(
        m_people, [this](const QString& id) { return fetchContactTasks(m_db, id, DoneTasks::Leave, taskLimit); },
        &CRMTaskRow::updatedAt, taskLimit);
}

QList<CRMDealRow> CRMPane::latestDeals() const
{
    return newestOf(
        m_people, [this](const QString& id) { return fetchContactDeals(m_db, id, dealLimit); }, &CRMDealRow::updatedAt,
        dealLimit);
}

void CRMPane::reloadCRM()
{
    reloadMerges();
    if (m_contact.id.isEmpty()) {
        for (PaneSection* const section : { &m_memory, &m_info, &m_deals, &m_notes, &m_activity, &m_tasks })
            section->assign({});
        return;
    }
    const DateWords words(m_scheduler.nowMs());
    QList<MemoryEntry> memory;
    ContactInfoRow info;
    for (const QString& id : std::as_const(m_people)) {
        memory += fetchMemoryEntries(m_db, u"contact:"_s + id);
        info.add(fetchContactInfo(m_db, id));
    }
    // Fetches one more of each than is shown, to know whether there are more.
    const auto notes = newestOf(
        m_people, [this](const QString& id) { return fetchNotes(m_db, id); }, &NoteRow::ts, m_notes.limit() + 1);
    const auto activity = newestOf(
        m_people, [this](const QString& id) { return fetchContactActivity(m_db, id, m_activity.limit() + 1); },
        &ActivityRow::ts, m_activity.limit() + 1);
    m_memory.assign(paneRows(memory, memoryRow));
    m_info.assign(infoRows(info));
    m_deals.assign(paneRows(latestDeals(), dealRow));
    m_notes.assign(paneRows(notes, [&](const NoteRow& note) { return noteRow(note, words); }));
    m_activity.assign(paneRows(activity, [&](const ActivityRow& row) { return activityRow(row, words); }));
    m_tasks.assign(paneRows(openTasks(), taskRow));
}

bool CRMPane::done(bool saved)
{
    setError(saved ? QString() : u"Couldn't save it, try again."_s);
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
