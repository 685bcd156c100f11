#include "Work/WorkHistory.h"

#include "Presentation/DateWords.h"
#include "Store/Core/LocalDB.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr int evidenceShown = 50;
constexpr int eventsOnPage = 200; ///< of each kind

}

WorkEvidenceSeed evidenceSeed(const WorkEvidenceRecord& evidence, const DateWords& words)
{
    WorkEvidenceSeed seed;
    seed.id = evidence.id;
    seed.title = shownLine(evidence.title);
    seed.summary = shownText(evidence.summary);
    seed.facts = factLine({ shownLine(evidence.kind), shownLine(evidence.source), shownLine(evidence.uri),
        shownTime(evidence.createdAt, words) });
    return seed;
}

WorkHistory::WorkHistory(LocalDB& db, const QString& module, QObject* parent)
    : QObject(parent)
    , m_db(db)
    , m_module(module)
    , m_eventsShown(eventsOnPage)
{
}

void WorkHistory::setContext(const WorkContextId& context)
{
    if (std::exchange(m_context, context) != context)
        m_eventsShown = eventsOnPage;
}

void WorkHistory::readEvidence()
{
    const DateWords words(m_db.nowMs());
    QList<WorkEvidenceSeed> evidence;
    for (const WorkEvidenceRecord& row : fetchWorkEvidence(m_db, m_module, m_context, evidenceShown))
        evidence.append(evidenceSeed(row, words));
    m_evidence.assign(evidence);
}

void WorkHistory::readTimeline()
{
    const QList<WorkEvent> events = fetchWorkEvents(m_db, m_module, m_context, m_eventsShown);
    QHash<QString, int> counts;
    for (const WorkEvent& event : events)
        ++counts[event.kind];
    m_hasEarlier = std::ranges::any_of(counts, [this](int count) { return count >= m_eventsShown; });
    m_timeline.assign(timelineEvents(events, DateWords(m_db.nowMs())));
    Q_EMIT changed();
}

void WorkHistory::showEarlier()
{
    m_eventsShown += eventsOnPage;
    readTimeline();
}

}
