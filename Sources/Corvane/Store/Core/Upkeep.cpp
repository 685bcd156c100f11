#include "Store/Core/Upkeep.h"

#include "Foundation/Literals.h"
#include "Store/Core/LocalDB.h"

namespace corvane {

QMap<QString, QStringList> tableColumns(SqlConnection& db)
{
    QMap<QString, QStringList> tables;
    db.visitRows(u"SELECT m.name, p.name FROM sqlite_master m JOIN pragma_table_info(m.name) p "
                 "WHERE m.type='table' ORDER BY m.name, p.cid;"_s,
        {}, [&](const SqlRow& row) {
            tables[row.text(0)].append(row.text(1));
            return true;
        });
    return tables;
}

qint64 newestMessageMs(SqlConnection& db)
{
    return db
        .firstRow(u"SELECT MAX(ts) FROM unified_message WHERE deleted_at IS NULL;"_s, {},
            [](const SqlRow& row) { return row.integer(0); })
        .value_or(0);
}

void careWhileIdle(LocalDB& db)
{
    db.exec(u"PRAGMA optimize;"_s);
    db.exec(u"PRAGMA wal_checkpoint(PASSIVE);"_s);
}

bool emptyLog(LocalDB& db)
{
    return db.firstRow(u"PRAGMA wal_checkpoint(TRUNCATE);"_s, {}, [](const SqlRow& row) { return row.integer(0); })
        == 0;
}

bool compact(LocalDB& db)
{
    return db.run(u"VACUUM;"_s) && emptyLog(db);
}

}
