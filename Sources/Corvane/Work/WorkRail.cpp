#include "Work/WorkRail.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr int contextsShown = 100;

}

WorkRail::WorkRail(LocalDB& db, const WorkConsoleConfig& config, const QList<TabItem>& places, QObject* parent)
    : QObject(parent)
    , m_db(db)
    , m_config(config)
    , m_places(places)
    , m_place(places.isEmpty() ? QString() : places.first().id)
{
}

void WorkRail::read()
{
    m_everyContext = fetchWorkContexts(m_db, m_config.module, contextsShown);
    const QHash<QString, int> waiting = waitingDecisionsByContext(m_db, m_config.module);
    QList<WorkContextSeed> seeds;
    for (const QString& group : m_config.contextFilters) {
        for (const WorkContextRow& row : m_everyContext) {
            if (groupOf(m_config, row) != group)
                continue;
            const WorkContextSeed seed = contextSeed(m_config, row, waiting.value(row.id));
            if (m_query.isEmpty() || seed.title.contains(m_query, Qt::CaseInsensitive)
                || seed.subtitle.contains(m_query, Qt::CaseInsensitive))
                seeds.append(seed);
        }
    }
    m_contexts.assign(seeds);
    if (!m_context)
        return;
    const auto row = std::ranges::find(m_everyContext, m_context->id, &WorkContextRow::id);
    m_context = row != m_everyContext.end() ? WorkContext(*row) : fetchWorkContext(m_db, m_context->id);
    if (!m_context && !m_places.isEmpty())
        m_place = m_places.first().id;
}

void WorkRail::setPlaceCount(const QString& place, int count)
{
    const auto found = std::ranges::find(m_places, place, &TabItem::id);
    if (found == m_places.end() || found->count == count)
        return;
    found->count = count;
    Q_EMIT changed();
}

void WorkRail::setQuery(const QString& query)
{
    if (std::exchange(m_query, query) == query)
        return;
    const bool hadContext = m_context.has_value();
    read();
    if (m_context.has_value() != hadContext)
        Q_EMIT selected();
    Q_EMIT changed();
}

QString WorkRail::contextsEmpty() const
{
    if (!m_contexts.rows().isEmpty())
        return {};
    return m_query.isEmpty() ? u"No %1 yet"_s.arg(m_config.contextTitle.toLower()) : u"Nothing found"_s;
}

void WorkRail::setPlace(const QString& place)
{
    if (m_place == place || std::ranges::find(m_places, place, &TabItem::id) == m_places.end())
        return;
    m_place = place;
    m_context.reset();
    Q_EMIT selected();
}

void WorkRail::select(const QString& contextId)
{
    if (contextId == selectedContextId())
        return;
    const WorkContext context = fetchWorkContext(m_db, contextId);
    if (!context)
        return;
    m_place.clear();
    m_context = context;
    Q_EMIT selected();
}

void WorkRail::step(int by)
{
    const QList<WorkContextSeed>& rows = m_contexts.rows();
    if (rows.isEmpty())
        return;
    const auto at = std::ranges::find(rows, selectedContextId(), &WorkContextSeed::id);
    const qsizetype next = at == rows.end() ? 0 : std::clamp<qsizetype>(at - rows.begin() + by, 0, rows.size() - 1);
    select(rows.at(next).id);
}

}
