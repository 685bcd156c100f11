#include "Store/Work/WorkBoardQueries.h"

#include "Foundation/Literals.h"
#include "Store/Core/LikePattern.h"
#include "Store/Core/Table.h"
#include "Store/Work/WorkTables.h"

#include <algorithm>

namespace corvane {

namespace {

const QString finished = u"lower(COALESCE(status,'')) IN ('done','closed','rejected')"_s;
const QString byPriority
    = u"ORDER BY CASE priority WHEN 'high' THEN 0 WHEN 'normal' THEN 1 ELSE 2 END, updated_at DESC, id\nLIMIT ?;"_s;

// The columns shown on a card.
const Table<WorkItemRecord> cards("work_item",
    {
        { "id", &WorkItemRecord::id },
        { "context_id", &WorkItemRecord::contextId, "''" },
        { "module", &WorkItemRecord::module },
        { "kind", &WorkItemRecord::kind },
        { "title", &WorkItemRecord::title },
        { "status", &WorkItemRecord::status },
        { "priority", &WorkItemRecord::priority },
        { "owner", &WorkItemRecord::owner },
        { "source", &WorkItemRecord::source },
        { "substr(summary,1,400)", &WorkItemRecord::summary, "''" },
        { "updated_at", &WorkItemRecord::updatedAt },
    });

const Table<WorkEvent> decisionEvents("work_decision",
    {
        { "'decision'", &WorkEvent::kind },
        { "id", &WorkEvent::id },
        { "title", &WorkEvent::title },
        { "status", &WorkEvent::status },
        { "decided_by", &WorkEvent::by, "''" },
        { "substr(proposal,1,4000)", &WorkEvent::detail, "''" },
        { "created_at", &WorkEvent::at, "''" },
        { "updated_at", &WorkEvent::changedAt, "''" },
    });

const Table<WorkEvent> evidenceEvents("work_evidence",
    {
        { "'evidence'", &WorkEvent::kind },
        { "id", &WorkEvent::id },
        { "title", &WorkEvent::title },
        { "source", &WorkEvent::by, "''" },
        { "substr(summary,1,4000)", &WorkEvent::detail, "''" },
        { "created_at", &WorkEvent::at, "''" },
        { "kind", &WorkEvent::role, "''" },
        { "uri", &WorkEvent::uri, "''" },
    });

const Table<WorkEvent> messageEvents("work_message",
    {
        { "'message'", &WorkEvent::kind },
        { "id", &WorkEvent::id },
        { "kind", &WorkEvent::title, "''" },
        { "COALESCE(NULLIF(speaker,''), role)", &WorkEvent::by, "''" },
        { "substr(body,1,4000)", &WorkEvent::detail, "''" },
        { "created_at", &WorkEvent::at, "''" },
        { "role", &WorkEvent::role, "''" },
    });

struct Condition {
    QString sql;
    QList<SqlValue> values;
};

Condition conditionOf(const QString& module, const WorkContextId& context)
{
    return context ? Condition { u"WHERE module=? AND context_id=?"_s, { module, *context } }
                   : Condition { u"WHERE module=?"_s, { module } };
}

Condition conditionOf(const WorkItemFilter& filter)
{
    Condition condition = conditionOf(filter.module, filter.context);
    const auto also = [&condition](const QString& sql, const QString& value) {
        condition.sql += u" AND "_s + sql;
        condition.values.append(value);
    };
    if (!filter.owner.isEmpty())
        also(u"owner=?"_s, filter.owner);
    if (!filter.priority.isEmpty())
        also(u"priority=?"_s, filter.priority);
    if (!filter.kind.isEmpty())
        also(u"kind=?"_s, filter.kind);
    if (!filter.words.isEmpty()) {
        also(uR"((title LIKE ? ESCAPE '\' OR summary LIKE ? ESCAPE '\'))"_s, containing(filter.words));
        condition.values.append(containing(filter.words));
    }
    const auto anyOf = [&condition](const QString& text, const QStringList& signs) {
        QStringList parts;
        for (const QString& sign : signs) {
            parts.append(text + uR"( LIKE ? ESCAPE '\')"_s);
            condition.values.append(containing(sign));
        }
        return u'(' + parts.join(u" OR "_s) + u')';
    };
    if (!filter.kindSigns.isEmpty())
        condition.sql += (filter.otherKinds ? u" AND NOT "_s : u" AND "_s) + anyOf(u"kind"_s, filter.kindSigns);
    if (!filter.textSigns.isEmpty())
        condition.sql += u" AND "_s + anyOf(u"(kind||' '||title||' '||COALESCE(summary,''))"_s, filter.textSigns);
    return condition;
}

template <typename Row>
QList<Row> guarded(LocalDB& db, const Table<Row>& table, const Condition& condition, const QString& order, int limit)
{
    QList<SqlValue> parameters = condition.values;
    parameters.append(limit);
    return db.tableExists(table.name()) ? table.rows(db, condition.sql + u' ' + order, parameters) : QList<Row>();
}

int count(LocalDB& db, const QString& table, const Condition& condition, const QString& more = {})
{
    if (!db.tableExists(table))
        return 0;
    return db.scalar(u"SELECT COUNT(*) FROM %1 %2%3;"_s.arg(table, condition.sql, more), condition.values)
        .value_or(QString())
        .toInt();
}

/// Merges lists that are newest first into one that is oldest first.
QList<WorkEvent> byTime(const QList<QList<WorkEvent>>& lists)
{
    QList<WorkEvent> all;
    for (const QList<WorkEvent>& list : lists) {
        QList<WorkEvent> merged;
        merged.reserve(all.size() + list.size());
        std::merge(all.cbegin(), all.cend(), list.crbegin(), list.crend(), std::back_inserter(merged),
            [](const WorkEvent& a, const WorkEvent& b) { return a.at < b.at; });
        all = merged;
    }
    return all;
}

const QString newestFirst = u"ORDER BY created_at DESC, rowid DESC LIMIT ?;"_s;

}

bool isFinishedStatus(const QString& status)
{
    const QString word = status.toLower();
    return word == "done"_L1 || word == "closed"_L1 || word == "rejected"_L1;
}

QList<WorkItemRecord> fetchWorkItems(LocalDB& db, const WorkItemFilter& filter, WorkItems which, int limit)
{
    Condition condition = conditionOf(filter);
    condition.sql += (which == WorkItems::Open ? u" AND NOT "_s : u" AND "_s) + finished;
    return guarded(db, cards, condition, byPriority, limit);
}

QList<WorkStatusCount> countWorkItems(LocalDB& db, const WorkItemFilter& filter)
{
    if (!db.tableExists(cards.name()))
        return {};
    const Condition condition = conditionOf(filter);
    return db.rows(u"SELECT COALESCE(status,''), COUNT(*) FROM work_item %1 GROUP BY status;"_s.arg(condition.sql),
        condition.values,
        [](const SqlRow& row) { return WorkStatusCount { row.text(0), static_cast<int>(row.integer(1)) }; });
}

WorkItemWords workItemWords(LocalDB& db, const QString& module, const WorkContextId& context)
{
    WorkItemWords words;
    if (!db.tableExists(cards.name()))
        return words;
    const Condition condition = conditionOf(module, context);
    db.visitRows(u"SELECT DISTINCT owner, priority, kind FROM work_item %1 LIMIT 500;"_s.arg(condition.sql),
        condition.values, [&](const SqlRow& row) {
            const auto add = [](QStringList& list, const QString& word) {
                if (!word.isEmpty() && !list.contains(word))
                    list.append(word);
            };
            add(words.owners, row.text(0));
            add(words.priorities, row.text(1));
            add(words.kinds, row.text(2));
            return true;
        });
    for (QStringList* list : { &words.owners, &words.priorities, &words.kinds })
        list->sort(Qt::CaseInsensitive);
    return words;
}

WorkCounts countWork(LocalDB& db, const QString& module, const WorkContextId& context)
{
    const Condition of = conditionOf(module, context);
    return { .contexts = count(db, u"work_context"_s, conditionOf(module, {})),
        .openItems = count(db, u"work_item"_s, of, u" AND NOT "_s + finished),
        .agents = count(db, u"work_agent"_s, of),
        .evidence = count(db, u"work_evidence"_s, of),
        .waitingDecisions = count(db, u"work_decision"_s, of, u" AND status='proposed'"_s),
        .proposedMemory = count(db, u"work_memory"_s, of, u" AND status='proposed'"_s) };
}

QHash<QString, int> waitingDecisionsByContext(LocalDB& db, const QString& module)
{
    QHash<QString, int> counts;
    if (!db.tableExists(decisionEvents.name()))
        return counts;
    db.visitRows(u"SELECT context_id, COUNT(*) FROM work_decision WHERE module=? AND status='proposed' "
                 "GROUP BY context_id;"_s,
        { module }, [&](const SqlRow& row) {
            counts.insert(row.text(0), int(row.integer(1)));
            return true;
        });
    return counts;
}

QList<WorkDecisionRecord> fetchWaitingDecisions(
    LocalDB& db, const QString& module, const WorkContextId& context, int limit)
{
    Condition of = conditionOf(module, context);
    of.sql += u" AND status='proposed'"_s;
    return guarded(db, workDecisions, of, byRisk, limit);
}

QStringList titlesOfWaitingDecisions(LocalDB& db, const QString& module, const WorkContextId& context)
{
    if (!db.tableExists(decisionEvents.name()))
        return {};
    const Condition of = conditionOf(module, context);
    return db.rows(u"SELECT title FROM work_decision %1 AND status='proposed' LIMIT 500;"_s.arg(of.sql), of.values,
        [](const SqlRow& row) { return row.text(0); });
}

QList<WorkEvent> fetchWorkEvents(LocalDB& db, const QString& module, const WorkContextId& context, int limit)
{
    const Condition of = conditionOf(module, context);
    return byTime({ guarded(db, decisionEvents, of, newestFirst, limit),
        guarded(db, evidenceEvents, of, newestFirst, limit), guarded(db, messageEvents, of, newestFirst, limit) });
}

QList<WorkEvent> fetchItemEvents(LocalDB& db, const WorkItemRecord& item, int limit)
{
    const WorkContextId context = item.contextId.isEmpty() ? WorkContextId() : WorkContextId(item.contextId);
    const auto linked = [&](const QString& sql, const QList<SqlValue>& values) {
        Condition condition = conditionOf(item.module, context);
        condition.sql += u" AND "_s + sql;
        condition.values += values;
        return condition;
    };
    const QString names = containing(item.id);
    return byTime({ guarded(db, decisionEvents,
                        linked(uR"((title=? OR proposal LIKE ? ESCAPE '\' OR rationale LIKE ? ESCAPE '\'))"_s,
                            { u"Review "_s + item.title, names, names }),
                        newestFirst, limit),
        guarded(db, evidenceEvents,
            { uR"(WHERE (item_id=? OR (module=? AND summary LIKE ? ESCAPE '\')))"_s, { item.id, item.module, names } },
            newestFirst, limit),
        guarded(db, messageEvents, linked(uR"(body LIKE ? ESCAPE '\')"_s, { names }), newestFirst, limit) });
}

QString lastWordsOf(LocalDB& db, const QString& module, const QString& speaker)
{
    if (!db.tableExists(messageEvents.name()))
        return {};
    return db
        .scalar(u"SELECT substr(body,1,400) FROM work_message WHERE module=? AND speaker=? "
                "ORDER BY created_at DESC LIMIT 1;"_s,
            { module, speaker })
        .value_or(QString());
}

}
