#pragma once

#include <QList>
#include <variant>

namespace corvane {

class LocalDB;
}

namespace corvane::schema {

/// One CREATE ... IF NOT EXISTS statement.
struct Statement {
    const char* sql;
};

/// A column that was added later; the definition starts with its name.
struct AddedColumn {
    const char* table;
    const char* definition;
};

/// A change that neither of the two can express.
struct Migration {
    void (*migrate)(LocalDB&);
};

using Step = std::variant<Statement, AddedColumn, Migration>;

/// Everything that the two schema files do not contain, in the order in which it is applied.
const QList<Step>& steps();

extern const char* const aiRequestsTable;

/// Rebuilds an `ai_requests` table whose status constraint predates claiming.
void migrateAIRequestsSchemaIfNeeded(LocalDB& db);

}
