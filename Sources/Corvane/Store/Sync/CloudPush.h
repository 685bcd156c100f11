#pragma once

#include "Foundation/Literals.h"
#include "Store/Core/LocalDB.h"

namespace corvane {

// What the push to the web reads and writes. Times are milliseconds since the epoch. The reads take any connection, so
// that they can run away from the main thread.

/// A conversation with something newer than its cursor.
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

/// How far a conversation was pushed.
struct CloudCursor {
    qint64 lastSyncedMs = 0;
    std::optional<QString> cloudChatId;
};

/// Messages of one conversation that a push passed over: those behind a message, up to a time.
struct LeftOutRange {
    QString conversationId;
    qint64 fromMs = 0;
    QString fromId;
    qint64 toMs = 0;
};

/// A conversation that a push would take, and what of it.
struct DueThread {
    CloudThread thread;
    qint64 messages = 0; ///< newer than its cursor
    qint64 oldestMs = 0; ///< of them; 0 where there are none
};

/// What a push would take now.
struct PushReview {
    QList<DueThread> threads; ///< of one run, newest first
    qint64 waitingThreads = 0; ///< of later runs
    qint64 leftOutThreads = 0;
    qint64 leftOutMessages = 0; ///< by earlier runs
};

/// A conversation, or every one of an account, that never leaves this machine.
struct KeptLocal {
    QString conversationId; ///< empty for an account
    QString accountId; ///< the account's slug; of a conversation, too
    QString title; ///< of the conversation, else what its channel calls it; empty where it is gone

    bool operator==(const KeptLocal&) const = default;
};

/// Newest first; what is kept local is not among them.
QList<CloudThread> cloudThreadsToSync(SqlConnection& db, const QString& workspaceId, int limit);

/// Ascending by time.
QList<CloudMessage> cloudMessagesToSync(SqlConnection& db, const QString& conversationId, qint64 sinceMs, int limit);
QList<CloudMessage> cloudMessagesLeftOut(SqlConnection& db, const LeftOutRange& range, int limit);

CloudCursor cloudCursor(SqlConnection& db, const QString& conversationId);

PushReview fetchPushReview(SqlConnection& db, const QString& workspaceId, int limit);

/// The conversation has to be there still, and not kept local.
std::optional<CloudThread> cloudThread(SqlConnection& db, const QString& conversationId);
QList<LeftOutRange> fetchLeftOut(SqlConnection& db, const QString& workspaceId);

/// No `lastMessageId`: no message was pushed.
void storeCloudCursor(LocalDB& db, const QString& conversationId, const QString& cloudChatId, qint64 lastSyncedMs,
    const std::optional<QString>& lastMessageId);
void storeLeftOut(LocalDB& db, const LeftOutRange& range);
void removeLeftOut(LocalDB& db, const LeftOutRange& range);

QStringList fetchCloudAccounts(SqlConnection& db); ///< the slugs of every account that a push may name

/// The next push begins at the first message again. What is kept local stays so.
void forgetCloudCursors(LocalDB& db);

void keepConversationLocal(LocalDB& db, const QString& conversationId);
void keepAccountLocal(LocalDB& db, const QString& accountId);
void stopKeepingLocal(LocalDB& db, const KeptLocal& kept);
QList<KeptLocal> fetchKeptLocal(SqlConnection& db);

}
