#pragma once

#include "Store/Core/LocalDB.h"

namespace corvane {

/// One message of a person's thread, whatever its channel.
struct UnifiedMsgRow {
    QString id;
    QString direction; ///< "IN" or "OUT"
    QString body;
    QString platform;
    QString accountId; ///< slug
    QString externalId;
    QString providerMsgId;
    qint64 ts = 0; ///< milliseconds since the epoch
    std::optional<QString> mediaType;
    std::optional<QString> mediaPath;
    QString sender;
    int status = 0;
    QString reaction;
    std::optional<QString> audioTranscript;

    bool operator==(const UnifiedMsgRow&) const = default;
};

/// All messages of the contact, oldest first, at most `limit`.
QList<UnifiedMsgRow> fetchUnifiedThread(LocalDB& db, const QString& contactId, int limit);

/// Takes the message out of the local copy, and back in; the provider hears of neither.
void deleteMessageLocal(LocalDB& db, const QString& messageId);
void restoreMessageLocal(LocalDB& db, const QString& messageId);

/// The primary contact where a live merge exists, else the id as given.
QString effectiveContactId(LocalDB& db, const QString& id);

}
