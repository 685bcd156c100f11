#include "Store/Core/Schema.h"

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
        if (const auto text = fileText(folders.resources + QStringLiteral("/local-schema/") + name))
            return text;
    }
    return fileText(folders.home + QStringLiteral("/nimb/apps/nimb-local/local-schema/") + name);
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
    const auto base = schemaSQL(folders, QStringLiteral("schema-v1.sql"));
    if (!base)
        return log(QStringLiteral("LocalDB: schema file not found"));
    db.exec(*base);
    if (const auto ops = schemaSQL(folders, QStringLiteral("schema-ops-v1.sql")))
        db.exec(*ops);
    else
        log(QStringLiteral("LocalDB: ops schema file not found"));
    for (const schema::Step& step : schema::steps())
        std::visit(Apply { db }, step);
    // An older engine mirrored WhatsApp's status feed as a conversation.
    db.run(QStringLiteral("UPDATE unified_conversation SET deleted_at=? WHERE external_id='status@broadcast' "
                          "AND deleted_at IS NULL;"),
        { db.nowMs() });
}

void schema::migrateAIRequestsSchemaIfNeeded(LocalDB& db)
{
    const QString current = QStringLiteral("ai_requests");
    const QString legacy = QStringLiteral("ai_requests_legacy_status");
    const QString sql = db.tableSQL(current).value_or(QString());
    if (sql.contains(QLatin1String("CHECK")) && !sql.contains(QLatin1String("'processing'"))) {
        db.exec(QStringLiteral("ALTER TABLE ai_requests RENAME TO ai_requests_legacy_status;\n")
            + QString::fromUtf8(aiRequestsTable));
    }
    // A start that was cut short has left the old table behind, so this asks for the table itself.
    if (db.tableExists(legacy)) {
        const auto orNull = [&](const QString& column) {
            return db.columnExists(legacy, column) ? column : QStringLiteral("NULL");
        };
        db.exec(QStringLiteral(
            "INSERT INTO ai_requests(id, instructions, prompt, status, response, error, created_at,\n"
            "  claimed_at, claimed_by, completed_at)\n"
            "SELECT id, instructions, prompt, status, response, error, created_at, %1, %2, completed_at\n"
            "FROM ai_requests_legacy_status WHERE id NOT IN (SELECT id FROM ai_requests);\n"
            "DROP TABLE ai_requests_legacy_status;")
                .arg(orNull(QStringLiteral("claimed_at")), orNull(QStringLiteral("claimed_by"))));
        return;
    }
    db.addColumnIfMissing(current, QStringLiteral("claimed_at"), QStringLiteral("claimed_at INTEGER"));
    db.addColumnIfMissing(current, QStringLiteral("claimed_by"), QStringLiteral("claimed_by TEXT"));
}

}
