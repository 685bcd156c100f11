#pragma once

#include "Store/Core/LocalDB.h"

#include <limits>

namespace corvane {

/// A message of a person's thread, on any channel.
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
    QString subject; ///< empty if the channel has none

    bool operator==(const UnifiedMsgRow&) const = default;
};

/// A position in a thread. Messages of the same millisecond are in the order in which they were stored.
struct ThreadPlace {
    qint64 ts = 0; ///< milliseconds since the epoch
    QString messageId; ///< empty: before every message of that time
};

inline const ThreadPlace threadBeginning { std::numeric_limits<qint64>::min(), {} };
inline const ThreadPlace threadEnd { std::numeric_limits<qint64>::max(), {} };

enum class Towards { Older, Newer };

/// The messages of the contact after a position in the given direction, without the one at the position: at most
/// `limit`, oldest first. The cost of a page does not depend on the length of the thread.
QList<UnifiedMsgRow> fetchThreadPage(
    LocalDB& db, const QString& contactId, Towards towards, const ThreadPlace& from, int limit);

/// The newest `limit` messages of the contact, oldest first.
QList<UnifiedMsgRow> fetchUnifiedThread(LocalDB& db, const QString& contactId, int limit);

/// Nothing for a message that is not in the contact's thread.
std::optional<ThreadPlace> placeInThread(LocalDB& db, const QString& contactId, const QString& messageId);

/// Hides the message in the local copy, or shows it again; the provider is not told.
void deleteMessageLocal(LocalDB& db, const QString& messageId);
void restoreMessageLocal(LocalDB& db, const QString& messageId);

/// The primary contact if a live merge exists, else the given id.
QString effectiveContactId(LocalDB& db, const QString& id);

}
