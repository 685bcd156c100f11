#pragma once

#include "Store/Core/LocalDB.h"

#include <QStringList>

namespace corvane {

/// The memory for drafting, as the last section of the instructions: the business, the owner and, if given, the
/// contact. Empty if nothing is remembered.
QString memorySnapshot(LocalDB& db, const std::optional<QString>& contactId = std::nullopt);

/// How a draft that the user accepted was made; contains neither prompt nor text.
struct DraftMetadataRow {
    QString contactId;
    std::optional<QString> conversationId;
    QString intent;
    QString model;
    QString promptRef; ///< the prompt's fingerprint
    QString resultRef; ///< the result's id
    QStringList usedMessageIds;
    QStringList warnings;
};

bool insertDraftMetadata(LocalDB& db, const DraftMetadataRow& row);

}
