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

/// A column that came later than its table; the definition begins with the column's name.
struct AddedColumn {
    const char* table;
    const char* definition;
};

/// A change that neither of the two can express.
struct Migration {
    void (*migrate)(LocalDB&);
};

using Step = std::variant<Statement, AddedColumn, Migration>;

/// Everything that the two schema files do not hold, in the order in which it is applied.
const QList<Step>& steps();

extern const char* const aiRequestsTable;

/// Rebuilds an `ai_requests` whose status constraint is too old to let a request be claimed.
void migrateAIRequestsSchemaIfNeeded(LocalDB& db);

}
