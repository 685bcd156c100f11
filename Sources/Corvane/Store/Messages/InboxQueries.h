#pragma once

#include "Store/Core/LocalDB.h"

#include <QStringList>

namespace corvane {

enum class InboxFilter { NeedsMe, Today, All, Archived };

/// One person of the inbox, over all of their conversations.
struct ContactRow {
    QString id;
    QString name; ///< empty if none
    QStringList platforms; ///< distinct channels, such as "WHATSAPP"
    QString snippet; ///< body of the newest message
    qint64 lastTs = 0; ///< milliseconds since the epoch
    int unread = 0;
    QString account; ///< the smallest account slug among the conversations
    bool isGroup = false;
    QString avatarPath;
    bool isMuted = false;

    bool operator==(const ContactRow&) const = default;
};

/// A message that a search found.
struct MessageHit {
    QString id;
    QString contactId;
    QString contactName;
    QString channel;
    QString snippet;
    qint64 ts = 0;
    QString direction; ///< "IN" or "OUT"

    bool operator==(const MessageHit&) const = default;
};

/// A conversation to which a reply goes.
struct ReplyTarget {
    QString account; ///< slug
    QString chatId;
};

/// Newest first, by id where times are equal. An empty `account` means every account.
QList<ContactRow> fetchContacts(LocalDB& db, InboxFilter filter, const QString& account, int limit);

/// Those of the named people who stand under the filter, in the same order.
QList<ContactRow> fetchContacts(LocalDB& db, InboxFilter filter, const QStringList& contactIds);

/// The same row, whichever filter the person stands under; nothing for one without a conversation.
std::optional<ContactRow> fetchContact(LocalDB& db, const QString& contactId);

/// How many people stand under a filter.
struct InboxCounts {
    int needsMe = 0;
    int today = 0;
};

InboxCounts fetchInboxCounts(LocalDB& db);

/// The medium of the contact's newest message; empty where it has none.
QString newestMediaType(LocalDB& db, const QString& contactId);

/// Messages and transcripts that contain the text, newest first, over all workspaces.
QList<MessageHit> searchMessages(SqlConnection& db, const QString& query, int limit);

int totalUnread(LocalDB& db);
void markRead(LocalDB& db, const QString& contactId);
void markAllRead(LocalDB& db);
void archiveContact(LocalDB& db, const QString& contactId);
void unarchiveContact(LocalDB& db, const QString& contactId);
void setMuted(LocalDB& db, const QString& contactId, bool muted);
bool isMuted(LocalDB& db, const QString& contactId);

/// The newest conversation of the contact on that channel.
std::optional<ReplyTarget> replyTarget(LocalDB& db, const QString& contactId, const QString& platform);

/// Where a message to the contact goes when nothing else is said.
std::optional<QString> newestConversation(LocalDB& db, const QString& contactId);

/// Whom the message was exchanged with; empty where the message is not known.
QString contactOfMessage(LocalDB& db, const QString& providerMsgId);

/// Stores a reaction made here on the message of that row id.
void setReaction(LocalDB& db, const QString& messageId, const QString& emoji);

}
