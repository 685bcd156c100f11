#pragma once

#include "Foundation/Literals.h"
#include "Store/Core/LocalDB.h"

namespace corvane {

// Reads and writes for the push to the web. Times are milliseconds since the epoch. The reads take any connection, so
// that they can run on a background thread.

/// A conversation with messages newer than its cursor.
struct CloudThread {
    QString conversationId;
    QString accountId; ///< the account's slug
    QString externalId;
    QString title;
    qint64 lastTs = 0;
    int unread = 0;
    bool archived = false;
    bool muted = false;
    std::optional<QString> cloudChatId;

    const QString& shownTitle() const { return title.isEmpty() ? externalId : title; }
    bool isGroup() const { return externalId.endsWith("@g.us"_L1); }
};

struct CloudMessage {
    QString id;
    QString providerMsgId;
    QString direction; ///< "IN" or "OUT"
    QString body;
    std::optional<QString> sender;
    qint64 ts = 0;
    QString attachmentsJson;
    QString reaction; ///< one emoji, or empty
    QString mediaType;
};

/// How far a conversation has been pushed.
struct CloudCursor {
    qint64 lastSyncedMs = 0;
    std::optional<QString> cloudChatId;
};

/// Messages of one conversation that a push skipped: those after a message, up to a time.
struct LeftOutRange {
    QString conversationId;
    qint64 fromMs = 0;
    QString fromId;
    qint64 toMs = 0;
};

/// A conversation in the next push, and how much of it.
struct DueThread {
    CloudThread thread;
    qint64 messages = 0; ///< newer than its cursor
    qint64 oldestMs = 0; ///< of them; 0 if there are none
};

/// The content of the next push.
struct PushReview {
    QList<DueThread> threads; ///< in one run, newest first
    qint64 waitingThreads = 0; ///< in later runs
    qint64 leftOutThreads = 0;
    qint64 leftOutMessages = 0; ///< skipped by earlier runs
};

/// A conversation, or a whole account, that never leaves this machine.
struct KeptLocal {
    QString conversationId; ///< empty for an account
    QString accountId; ///< the account's slug; set for a conversation, too
    QString title; ///< of the conversation, else its channel address; empty if it is gone

    bool operator==(const KeptLocal&) const = default;
};

/// Newest first, without what is kept local.
QList<CloudThread> cloudThreadsToSync(SqlConnection& db, const QString& workspaceId, int limit);

/// Ascending by time.
QList<CloudMessage> cloudMessagesToSync(SqlConnection& db, const QString& conversationId, qint64 sinceMs, int limit);
QList<CloudMessage> cloudMessagesLeftOut(SqlConnection& db, const LeftOutRange& range, int limit);

CloudCursor cloudCursor(SqlConnection& db, const QString& conversationId);

PushReview fetchPushReview(SqlConnection& db, const QString& workspaceId, int limit);

/// The conversation must still exist and must not be kept local.
std::optional<CloudThread> cloudThread(SqlConnection& db, const QString& conversationId);
QList<LeftOutRange> fetchLeftOut(SqlConnection& db, const QString& workspaceId);

/// Without `lastMessageId` no message was pushed.
void storeCloudCursor(LocalDB& db, const QString& conversationId, const QString& cloudChatId, qint64 lastSyncedMs,
    const std::optional<QString>& lastMessageId);
void storeLeftOut(LocalDB& db, const LeftOutRange& range);
void removeLeftOut(LocalDB& db, const LeftOutRange& range);

QStringList fetchCloudAccounts(SqlConnection& db); ///< the slugs of all accounts that a push may include

/// The next push starts with the first message again. What is kept local stays so.
void forgetCloudCursors(LocalDB& db);

void keepConversationLocal(LocalDB& db, const QString& conversationId);
void keepAccountLocal(LocalDB& db, const QString& accountId);
void stopKeepingLocal(LocalDB& db, const KeptLocal& kept);
QList<KeptLocal> fetchKeptLocal(SqlConnection& db);

}
