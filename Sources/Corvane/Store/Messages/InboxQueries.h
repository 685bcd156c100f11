#pragma once

#include "Store/Core/LocalDB.h"

#include <QHash>
#include <QSet>
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
    QString avatarPath;

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

/// Who stands under the filters that are counted.
struct CountedPeople {
    QSet<QString> needsMe;
    QSet<QString> today;
};

/// Among the named people, or among all.
CountedPeople fetchCountedPeople(LocalDB& db, const std::optional<QStringList>& contactIds = std::nullopt);

/// What a list says of a person's newest message beside its text.
struct LastMessage {
    QString direction; ///< "IN" or "OUT"
    QString channel;
    int status = 0;
    QString mediaType; ///< empty where it has no medium
};

/// By contact id; nobody stands there without a message.
QHash<QString, LastMessage> fetchLastMessages(LocalDB& db, const QStringList& contactIds);

/// Messages and transcripts that contain the text, newest first, over all workspaces.
QList<MessageHit> searchMessages(SqlConnection& db, const QString& query, int limit);

std::optional<int> unreadOf(LocalDB& db, const QString& contactId); ///< nothing where nobody of that id has written
int totalUnread(LocalDB& db);
void markRead(LocalDB& db, const QString& contactId);
void markAllRead(LocalDB& db);
void markUnread(LocalDB& db, const QString& contactId); ///< the newest conversation, where none is unread
void archiveContact(LocalDB& db, const QString& contactId);
void unarchiveContact(LocalDB& db, const QString& contactId);
bool setArchived(LocalDB& db, const QStringList& contactIds, bool archived); ///< all of them or none

/// When a conversation was archived; nothing for one that is not.
struct ArchivedConversation {
    QString id;
    std::optional<qint64> archivedAt;
};

/// Of every conversation of these people: what `restoreArchived` needs to take an archive back.
QList<ArchivedConversation> fetchArchived(LocalDB& db, const QStringList& contactIds);
bool restoreArchived(LocalDB& db, const QList<ArchivedConversation>& conversations);
void setMuted(LocalDB& db, const QString& contactId, bool muted);
bool isMuted(LocalDB& db, const QString& contactId);

/// The newest conversation of the contact on that channel.
std::optional<ReplyTarget> replyTarget(LocalDB& db, const QString& contactId, const QString& platform);

/// Where a message to the contact goes when nothing else is said.
std::optional<QString> newestConversation(LocalDB& db, const QString& contactId);

/// Whom the conversation or message is exchanged with; empty where it is not known.
QString contactOfConversation(LocalDB& db, const QString& conversationId);
QString contactOfMessage(LocalDB& db, const QString& messageId);

/// Stores a reaction made here on the message of that row id.
void setReaction(LocalDB& db, const QString& messageId, const QString& emoji);

}
