#pragma once

#include "Store/Core/LocalDB.h"

#include <QHash>
#include <QSet>
#include <QStringList>

namespace corvane {

enum class InboxFilter { NeedsMe, Today, All, Archived };

/// A person in the inbox, over all of their conversations.
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

/// A conversation to which a reply goes.
struct ReplyTarget {
    QString account; ///< slug
    QString chatId;
};

/// Newest first, then by id. An empty `account` means every account.
QList<ContactRow> fetchContacts(LocalDB& db, InboxFilter filter, const QString& account, int limit);

/// Those of the given people who match the filter, in the same order.
QList<ContactRow> fetchContacts(LocalDB& db, InboxFilter filter, const QStringList& contactIds);

/// The same row, whichever filter the person matches; nothing for someone without a conversation.
std::optional<ContactRow> fetchContact(LocalDB& db, const QString& contactId);

/// Who matches the filters that are counted.
struct CountedPeople {
    QSet<QString> needsMe;
    QSet<QString> today;
};

/// Among the given people, or among all.
CountedPeople fetchCountedPeople(LocalDB& db, const std::optional<QStringList>& contactIds = std::nullopt);

/// What a list shows of a person's newest message besides its text.
struct LastMessage {
    QString direction; ///< "IN" or "OUT"
    QString channel;
    int status = 0;
    QString mediaType; ///< empty if it has no media
};

/// By contact id; people without a message are missing.
QHash<QString, LastMessage> fetchLastMessages(LocalDB& db, const QStringList& contactIds);

std::optional<int> unreadOf(LocalDB& db, const QString& contactId); ///< nothing if nobody with that id has written
int totalUnread(LocalDB& db);

/// What each conversation of the workspace, by rowid, adds to `totalUnread`: all that add something, or every one of
/// the given people.
QHash<qint64, int> unreadByConversation(
    LocalDB& db, const QString& workspace, const std::optional<QStringList>& contactIds = std::nullopt);
void markRead(LocalDB& db, const QString& contactId);
void markAllRead(LocalDB& db);
void markUnread(LocalDB& db, const QString& contactId); ///< the newest conversation, if none is unread
void archiveContact(LocalDB& db, const QString& contactId);
void unarchiveContact(LocalDB& db, const QString& contactId);
bool setArchived(LocalDB& db, const QStringList& contactIds, bool archived); ///< all of them or none

/// When a conversation was archived; nothing for one that is not.
struct ArchivedConversation {
    QString id;
    std::optional<qint64> archivedAt;
};

/// Of all conversations of these people: what `restoreArchived` needs to undo an archive.
QList<ArchivedConversation> fetchArchived(LocalDB& db, const QStringList& contactIds);
bool restoreArchived(LocalDB& db, const QList<ArchivedConversation>& conversations);
void setMuted(LocalDB& db, const QString& contactId, bool muted);
bool isMuted(LocalDB& db, const QString& contactId);

/// The newest conversation of the contact on that channel.
std::optional<ReplyTarget> replyTarget(LocalDB& db, const QString& contactId, const QString& platform);

/// The default conversation for a message to the contact.
std::optional<QString> newestConversation(LocalDB& db, const QString& contactId);

/// The other side of the conversation or message; empty if unknown.
QString contactOfConversation(LocalDB& db, const QString& conversationId);
QString contactOfMessage(LocalDB& db, const QString& messageId);

/// Stores the user's own reaction to the message with that row id.
void setReaction(LocalDB& db, const QString& messageId, const QString& emoji);

}
