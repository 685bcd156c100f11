#include "Store/Core/Schema.h"

#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Store/Core/SchemaSteps.h"

#include <QFile>

namespace corvane {

namespace {

std::optional<QString> fileText(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return QString::fromUtf8(file.readAll());
}

std::optional<QString> schemaSQL(const LocalDB::SchemaFolders& folders, const QString& name)
{
    if (!folders.resources.isEmpty()) {
        if (const auto text = fileText(folders.resources + u"/local-schema/"_s + name))
            return text;
    }
    return fileText(folders.home + u"/nimb/apps/nimb-local/local-schema/"_s + name);
}

struct Apply {
    LocalDB& db;

    void operator()(const schema::Statement& step) const { db.exec(QString::fromUtf8(step.sql)); }
    void operator()(const schema::Migration& step) const { step.migrate(db); }
    void operator()(const schema::AddedColumn& step) const
    {
        const QString definition = QString::fromUtf8(step.definition);
        db.addColumnIfMissing(QString::fromUtf8(step.table), definition.section(u' ', 0, 0), definition);
    }
};

}

void applySchema(LocalDB& db, const LocalDB::SchemaFolders& folders)
{
    const auto base = schemaSQL(folders, u"schema-v1.sql"_s);
    if (!base)
        return log(u"LocalDB: schema file not found"_s);
    db.exec(*base);
    if (const auto ops = schemaSQL(folders, u"schema-ops-v1.sql"_s))
        db.exec(*ops);
    else
        log(u"LocalDB: ops schema file not found"_s);
    for (const schema::Step& step : schema::steps())
        std::visit(Apply { db }, step);
    // An older engine stored WhatsApp's status feed as a conversation.
    db.run(u"UPDATE unified_conversation SET deleted_at=? WHERE external_id='status@broadcast' "
           "AND deleted_at IS NULL;"_s,
        { db.nowMs() });
}

void schema::migrateAIRequestsSchemaIfNeeded(LocalDB& db)
{
    const QString current = u"ai_requests"_s;
    const QString legacy = u"ai_requests_legacy_status"_s;
    const QString sql = db.tableSQL(current).value_or(QString());
    if (sql.contains("CHECK"_L1) && !sql.contains("'processing'"_L1)) {
        db.exec(
            u"ALTER TABLE ai_requests RENAME TO ai_requests_legacy_status;\n"_s + QString::fromUtf8(aiRequestsTable));
    }
    // An interrupted migration leaves the old table behind, so this checks for the table itself.
    if (db.tableExists(legacy)) {
        const auto orNull = [&](const QString& column) {
            return db.columnExists(legacy, column) ? column : u"NULL"_s;
        };
        db.exec(u"INSERT INTO ai_requests(id, instructions, prompt, status, response, error, created_at,\n"
                "  claimed_at, claimed_by, completed_at)\n"
                "SELECT id, instructions, prompt, status, response, error, created_at, %1, %2, completed_at\n"
                "FROM ai_requests_legacy_status WHERE id NOT IN (SELECT id FROM ai_requests);\n"
                "DROP TABLE ai_requests_legacy_status;"_s.arg(orNull(u"claimed_at"_s), orNull(u"claimed_by"_s)));
        return;
    }
    db.addColumnIfMissing(current, u"claimed_at"_s, u"claimed_at INTEGER"_s);
    db.addColumnIfMissing(current, u"claimed_by"_s, u"claimed_by TEXT"_s);
}

}
