#include "Store/Core/Snapshot.h"

#include "Foundation/Literals.h"

#include <QFile>
#include <sqlite3.h>

namespace corvane {

namespace {

QString wordsFor(int code)
{
    switch (code & 0xff) {
    case SQLITE_INTERRUPT:
        return u"Stopped."_s;
    case SQLITE_FULL:
        return u"There is no room left on the disk."_s;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
        return u"The database is damaged."_s;
    default:
        return u"The database cannot be copied: %1."_s.arg(QString::fromUtf8(sqlite3_errstr(code)));
    }
}

QString quoted(QString name)
{
    return u'"' + name.replace(u'"', u"\"\""_s) + u'"';
}

qint64 figure(SqlConnection& db, const QString& pragma)
{
    return db.firstRow(pragma, {}, [](const SqlRow& row) { return row.integer(0); }).value_or(0);
}

}

Result<void> copyDatabase(const QString& from, const QString& to, std::shared_ptr<const std::atomic<bool>> stopped)
{
    const auto db = SqlConnection::reader(from, std::move(stopped));
    db->visitRows(u"VACUUM INTO ?;"_s, { to }, [](const SqlRow&) { return true; });
    if (const int code = db->isOpen() ? db->failure() : SQLITE_CANTOPEN; code != 0) {
        QFile::remove(to);
        QFile::remove(to + u"-journal"_s);
        return failure(wordsFor(code));
    }
    return {};
}

QMap<QString, qint64> countRows(SqlConnection& db)
{
    QMap<QString, qint64> counts;
    const QStringList tables = db.rows(u"SELECT name FROM sqlite_master WHERE type='table' ORDER BY name;"_s, {},
        [](const SqlRow& row) { return row.text(0); });
    for (const QString& table : tables)
        counts.insert(table, figure(db, u"SELECT COUNT(*) FROM %1;"_s.arg(quoted(table))));
    return counts;
}

QString integrityTrouble(SqlConnection& db)
{
    const QStringList lines
        = db.rows(u"PRAGMA integrity_check(3);"_s, {}, [](const SqlRow& row) { return row.text(0); });
    if (lines.isEmpty())
        return u"It cannot be read."_s;
    return lines == QStringList { u"ok"_s } ? QString() : lines.join(u"; "_s);
}

FileFigures fileFigures(SqlConnection& db)
{
    return { figure(db, u"PRAGMA page_size;"_s), figure(db, u"PRAGMA page_count;"_s),
        figure(db, u"PRAGMA freelist_count;"_s) };
}

}
