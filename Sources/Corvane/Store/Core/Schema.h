#pragma once

#include "Store/Core/LocalDB.h"

namespace corvane {

/// Migrates a database of any earlier version to the current schema. Every statement is idempotent, and the whole list
/// runs at each start; there is no version number. See docs/database.md for the tables.
void applySchema(LocalDB& db, const LocalDB::SchemaFolders& folders);

}
