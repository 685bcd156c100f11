#include "Store/Search/SearchIndexFile.h"

#include "Foundation/Literals.h"

#include <algorithm>

namespace corvane {

qint64 documentNumberAt(qint64 ts)
{
    return std::clamp<qint64>(ts, 0, lastNumberedTime + 1) << documentSlotBits;
}

// FNV-1a
qint64 indexHash(const QString& text)
{
    quint64 hash = 14695981039346656037ULL;
    for (const char byte : text.toUtf8())
        hash = (hash ^ quint8(byte)) * 1099511628211ULL;
    return qint64(hash);
}

// Made of private-use characters, which have no case.
QString indexMark(const QString& name)
{
    constexpr char16_t first = 0xE000;
    constexpr quint64 count = 0xF8FF - first + 1;
    QString mark;
    for (quint64 rest = quint64(indexHash(name)); mark.size() < 3; rest /= count)
        mark += QChar(char16_t(first + rest % count));
    return mark;
}

std::optional<qint64> indexValue(SqlConnection& index, const QString& name)
{
    return index.firstRow(
        "SELECT value FROM state WHERE name=?;", { name }, [](const SqlRow& row) { return row.integer(0); });
}

qint64 indexProbe(SqlConnection& database, qint64 rowid)
{
    return database
        .firstRow("SELECT id FROM unified_message WHERE rowid=?;", { rowid },
            [](const SqlRow& row) { return indexHash(row.text(0)); })
        .value_or(0);
}

}
