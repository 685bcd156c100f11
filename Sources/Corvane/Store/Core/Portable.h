#pragma once

#include "Store/Core/LocalDB.h"

#include <QJsonObject>

namespace corvane {

/// A kind of rows in an export.
struct PortableKind {
    QString name; ///< such as "people", as the files are called
    QString table;
};

/// In the order in which they must be imported.
const QList<PortableKind>& portableKinds();

QStringList portableColumns(SqlConnection& db, const PortableKind& kind);

/// Each row that is not deleted as a JSON object of its columns, until `visit` returns false.
void visitPortable(
    SqlConnection& db, const PortableKind& kind, const std::function<bool(const QByteArray& json)>& visit);

/// Adds an exported row; an existing one is left unchanged. Unknown columns are ignored. True if it was added.
bool addPortable(LocalDB& db, const PortableKind& kind, const QJsonObject& row);

}
