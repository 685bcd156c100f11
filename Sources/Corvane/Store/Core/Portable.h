#pragma once

#include "Store/Core/LocalDB.h"

#include <QJsonObject>

namespace corvane {

/// A kind of rows that a person takes along.
struct PortableKind {
    QString name; ///< such as "people", as the files are called
    QString table;
};

/// In an order in which they can be read back.
const QList<PortableKind>& portableKinds();

QStringList portableColumns(SqlConnection& db, const PortableKind& kind);

/// Each row that is not deleted as a JSON object of its columns, until `visit` returns false.
void visitPortable(
    SqlConnection& db, const PortableKind& kind, const std::function<bool(const QByteArray& json)>& visit);

/// Adds a row that was exported; one that is there stays as it is. Columns that this file lacks are left out. True
/// where it was added.
bool addPortable(LocalDB& db, const PortableKind& kind, const QJsonObject& row);

}
