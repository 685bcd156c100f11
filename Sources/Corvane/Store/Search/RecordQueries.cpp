#include "Store/Search/RecordQueries.h"

#include "Foundation/Literals.h"
#include "Store/Core/LikePattern.h"
#include "Store/Search/RecordSources.h"

#include <algorithm>
#include <sqlite3.h>
#include <tuple>

namespace corvane {

namespace {

/// The rest of a statement after its SELECT list, with the values of its numbered parameters.
struct Rest {
    QString sql;
    QList<SqlValue> values;

    void also(const QStringList& columns, const QString& part)
    {
        values.append(containing(part));
        QStringList conditions;
        for (const QString& column : columns)
            conditions.append(uR"(%1 LIKE ?%2 ESCAPE '\')"_s.arg(column).arg(values.size()));
        sql += u"\n  AND ("_s + (conditions.isEmpty() ? u"0"_s : conditions.join(u" OR "_s)) + u')';
    }

    void also(const QString& time, const QString& comparison, std::optional<qint64> ms)
    {
        if (!ms)
            return;
        values.append(*ms);
        sql += u"\n  AND %1 %2 ?%3"_s.arg(time, comparison).arg(values.size());
    }
};

/// The rows are chosen by their number first: reading and sorting all columns of everything found takes far longer.
Rest restOf(const RecordSource& source, const SearchQuery& query, const SearchScope& scope)
{
    Rest rest { source.joins, { scope.workspaceId, scope.nowMs, scope.limit, query.text, containing(query.text) } };
    if (!query.text.isEmpty())
        rest.also(source.words, query.text);
    for (const QString& name : query.from)
        rest.also(source.people, name);
    for (const QString& place : query.places)
        rest.also(source.places, place);
    rest.also(source.time, u">="_s, query.afterMs);
    rest.also(source.time, u"<"_s, query.beforeMs);
    const QString newest = u'\n' + source.order + u" LIMIT ?3"_s;
    rest.sql = source.joins + u"\n  AND r.rowid IN (SELECT r.rowid\n"_s + source.table.from() + rest.sql + newest + u')'
        + newest + u';';
    return rest;
}

}

FoundRecords findRecords(SqlConnection& db, const SearchQuery& query, const SearchScope& scope)
{
    FoundRecords found;
    for (const RecordSource& source : recordSources()) {
        if (!query.asksFor(source.group))
            continue;
        db.forgetFailure();
        const Rest rest = restOf(source, query, scope);
        for (FoundRecord& record : source.table.rows(db, rest.sql, rest.values)) {
            record.group = source.group;
            found.records.append(record);
        }
        found.failed = found.failed || (db.failure() != 0 && db.failure() != SQLITE_ERROR);
    }
    // Work is the last group, and the only one with several tables. A decision follows the item that it is about.
    const auto work = std::ranges::find(found.records, SearchGroup::Work, &FoundRecord::group);
    const qsizetype others = work - found.records.begin();
    const auto rank = [](const FoundRecord& record) {
        return std::tuple(record.kind == "decision"_L1, -record.ts, record.kind, record.id);
    };
    std::ranges::sort(work, found.records.end(), {}, rank);
    found.records.resize(std::min(found.records.size(), others + scope.limit));
    return found;
}

}
