#pragma once

#include "Store/Core/LocalDB.h"

#include <limits>

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
    QString subject; ///< empty where the channel knows none

    bool operator==(const UnifiedMsgRow&) const = default;
};

/// A place in a thread. Messages of the same millisecond stand in the order in which they were stored.
struct ThreadPlace {
    qint64 ts = 0; ///< milliseconds since the epoch
    QString messageId; ///< without one: before every message of that time
};

inline const ThreadPlace threadBeginning { std::numeric_limits<qint64>::min(), {} };
inline const ThreadPlace threadEnd { std::numeric_limits<qint64>::max(), {} };

enum class Towards { Older, Newer };

/// The messages of the contact that follow a place in that direction, without the one that stands there: at most
/// `limit`, oldest first. A page costs the same however long the thread is.
QList<UnifiedMsgRow> fetchThreadPage(
    LocalDB& db, const QString& contactId, Towards towards, const ThreadPlace& from, int limit);

/// The newest `limit` messages of the contact, oldest first.
QList<UnifiedMsgRow> fetchUnifiedThread(LocalDB& db, const QString& contactId, int limit);

/// Nothing for a message that is not in the contact's thread.
std::optional<ThreadPlace> placeInThread(LocalDB& db, const QString& contactId, const QString& messageId);

/// Takes the message out of the local copy, and back in; the provider hears of neither.
void deleteMessageLocal(LocalDB& db, const QString& messageId);
void restoreMessageLocal(LocalDB& db, const QString& messageId);

/// The primary contact where a live merge exists, else the id as given.
QString effectiveContactId(LocalDB& db, const QString& id);

}
