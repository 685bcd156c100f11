#pragma once

#include "Store/Core/LocalDB.h"

namespace corvane {

/// What a handle reveals about its owner.
struct MatchSignals {
    std::optional<QString> email; ///< lower case
    std::optional<QString> phone; ///< digits only
};

/// A message as an engine reports it.
struct IncomingMessage {
    QString conversationExternalId;
    QString providerMsgId;
    QString body;
    bool outgoing = false;
    qint64 ts = 0; ///< milliseconds since the epoch
    std::optional<QString> conversationTitle;
    std::optional<QString> sender;
    std::optional<QString> mediaType;
    std::optional<QString> mediaPath;
    std::optional<QString> subject;
};

MatchSignals matchSignals(const QString& channel, const QString& handle);

/// Adds the contact of a handle with its identity, or updates both. Returns the contact's id.
QString ensureContactId(
    LocalDB& db, const QString& channel, const QString& handle, const std::optional<QString>& title);

/// Upserts the conversation and links its contact. Returns the conversation's id.
QString ensureConversation(LocalDB& db, const QString& channel, const QString& accountSlug, const QString& externalId,
    const std::optional<QString>& title, qint64 lastTs);

struct StoredMessage {
    QString conversationId;
    bool isNew = false; ///< the row did not exist before
};

/// `ensureConversation` and the upsert of the message: the first direction, sender and time are kept, the newest body
/// wins. Nothing if the row belongs to another account.
std::optional<StoredMessage> storeMessage(
    LocalDB& db, const QString& channel, const QString& accountSlug, const IncomingMessage& message);

/// The id of an account's message, stored or not: "wa:msg:{providerMsgId}", or "wa:msg:{slug}:{providerMsgId}" if
/// another account, such as a second one in the same group, has the first.
QString messageIdOf(LocalDB& db, const QString& accountSlug, const QString& providerMsgId);

void raiseUnread(LocalDB& db, const QString& conversationId);

/// Part of the conversation was read elsewhere: lowers its unread count to `count`, never raises it.
void lowerUnread(LocalDB& db, const QString& conversationId, qint64 count);

// An engine can change only messages of its own account.
void raiseMessageStatus(
    LocalDB& db, const QString& accountSlug, const QString& providerMsgId, qint64 status); ///< never lowers it
void setProviderReaction(LocalDB& db, const QString& accountSlug, const QString& providerMsgId, const QString& emoji);
void updateMessageMedia(LocalDB& db, const QString& accountSlug, const QString& providerMsgId,
    const std::optional<QString>& mediaType, const QString& path);
void setContactAvatar(LocalDB& db, const QString& contactId, const QString& path);

/// Overwrites the name and queues the change for the web.
void setContactName(LocalDB& db, const QString& contactId, const QString& name);

/// The newest message time among a channel's conversations, in milliseconds; 0 if there is none.
qint64 newestConversationTimestamp(LocalDB& db, const QString& channel);

}
