#include "Store/Messages/IngestQueries.h"

#include "Foundation/Ids.h"
#include "Foundation/Literals.h"
#include "Store/Core/Workspaces.h"
#include "Store/People/CrmQueue.h"
#include "Store/People/IdentityQueries.h"

#include <QJsonObject>
#include <algorithm>

namespace corvane {

namespace {

QString asciiDigits(QStringView text)
{
    QString digits;
    std::copy_if(text.begin(), text.end(), std::back_inserter(digits),
        [](QChar character) { return character >= u'0' && character <= u'9'; });
    return digits;
}

QString ensureContactIn(LocalDB& db, const QString& workspace, const QString& channel, const QString& handle,
    const std::optional<QString>& title)
{
    const QString id = contactId(channel, handle);
    const qint64 now = db.nowMs();
    db.run(R"(INSERT INTO contact(id, workspace_id, display_name, updated_at) VALUES(?,?,?,?)
ON CONFLICT(id) DO UPDATE SET
  display_name=COALESCE(NULLIF(excluded.display_name,''), contact.display_name),
  updated_at=excluded.updated_at;)",
        { id, workspace, title.value_or(handle), now });
    const MatchSignals implied = matchSignals(channel, handle);
    db.run(R"(INSERT INTO contact_identity(id, workspace_id, contact_id, channel, handle, email, phone, updated_at)
VALUES(?,?,?,?,?,?,?,?)
ON CONFLICT(id) DO UPDATE SET
  email=COALESCE(excluded.email, contact_identity.email),
  phone=COALESCE(excluded.phone, contact_identity.phone),
  updated_at=excluded.updated_at;)",
        { contactIdentityId(channel, handle), workspace, id, channel, handle, implied.email, implied.phone, now });
    return id;
}

QString ensureConversationIn(LocalDB& db, const QString& workspace, const QString& channel, const QString& accountSlug,
    const QString& externalId, const std::optional<QString>& title, qint64 lastTs)
{
    const QString id = conversationId(accountSlug, externalId);
    db.run(
        R"(INSERT INTO unified_conversation(id, workspace_id, channel, account_id, external_id, title, last_ts, unread, updated_at)
VALUES(?,?,?,?,?,?,?,0,?)
ON CONFLICT(id) DO UPDATE SET
  title=COALESCE(excluded.title, unified_conversation.title),
  last_ts=MAX(unified_conversation.last_ts, excluded.last_ts),
  updated_at=excluded.updated_at;)",
        { id, workspace, channel, accountSlug, externalId, title, lastTs, db.nowMs() });
    const QString contact = ensureContactIn(db, workspace, channel, externalId, title);
    // Usually linked already, and even a write that changes nothing syncs the disk.
    if (db.scalar("SELECT contact_id FROM unified_conversation WHERE id=?;", { id }) != contact)
        db.run("UPDATE unified_conversation SET contact_id=? WHERE id=?;", { contact, id });
    return id;
}

/// The account of a stored message; nothing if there is no such message.
std::optional<QString> ownerOf(LocalDB& db, const QString& id)
{
    return db.firstRow("SELECT c.account_id FROM unified_message m\n"
                       "LEFT JOIN unified_conversation c ON c.id=m.conversation_id WHERE m.id=?;",
        { id }, [](const SqlRow& row) { return row.text(0); });
}

const QString ofAccount
    = u"AND EXISTS (SELECT 1 FROM unified_conversation c WHERE c.id=unified_message.conversation_id AND c.account_id=?);"_s;

}

MatchSignals matchSignals(const QString& channel, const QString& handle)
{
    const QString trimmed = handle.trimmed();
    const QString whatsAppSuffix = u"@s.whatsapp.net"_s;
    MatchSignals found;
    if (channel == "EMAIL"_L1 || channel == "GMAIL"_L1) {
        if (trimmed.contains(u'@'))
            found.email = trimmed.toLower();
    } else if (channel == "WHATSAPP"_L1 && trimmed.endsWith(whatsAppSuffix)) {
        const QString digits = asciiDigits(QStringView(trimmed).chopped(whatsAppSuffix.size()));
        if (!digits.isEmpty())
            found.phone = digits;
    }
    return found;
}

QString ensureContactId(LocalDB& db, const QString& channel, const QString& handle, const std::optional<QString>& title)
{
    return ensureContactIn(db, activeWorkspaceId(db), channel, handle, title);
}

QString ensureConversation(LocalDB& db, const QString& channel, const QString& accountSlug, const QString& externalId,
    const std::optional<QString>& title, qint64 lastTs)
{
    return ensureConversationIn(db, activeWorkspaceId(db), channel, accountSlug, externalId, title, lastTs);
}

QString messageIdOf(LocalDB& db, const QString& accountSlug, const QString& providerMsgId)
{
    const QString id = messageId(providerMsgId);
    const auto owner = ownerOf(db, id);
    return !owner || *owner == accountSlug ? id : messageId(accountSlug + u':' + providerMsgId);
}

std::optional<StoredMessage> storeMessage(
    LocalDB& db, const QString& channel, const QString& accountSlug, const IncomingMessage& message)
{
    // Read once, so that a message and its conversation are in the same workspace.
    const QString workspace = activeWorkspaceId(db);
    const QString conversation = ensureConversationIn(
        db, workspace, channel, accountSlug, message.conversationExternalId, message.conversationTitle, message.ts);
    const QString id = messageIdOf(db, accountSlug, message.providerMsgId);
    const bool isNew = !ownerOf(db, id);
    const qint64 changed = db.changedRows(
        R"(INSERT INTO unified_message(id, workspace_id, conversation_id, direction, body, sender, ts, provider_msg_id, media_type, media_path, source, subject, updated_at)
VALUES(?,?,?,?,?,?,?,?,?,?,?,?,?)
ON CONFLICT(id) DO UPDATE SET body=excluded.body,
    media_type=COALESCE(excluded.media_type, unified_message.media_type),
    media_path=COALESCE(excluded.media_path, unified_message.media_path),
    source=COALESCE(unified_message.source, excluded.source),
    subject=COALESCE(excluded.subject, unified_message.subject),
    updated_at=excluded.updated_at
WHERE EXISTS (SELECT 1 FROM unified_conversation c WHERE c.id=unified_message.conversation_id AND c.account_id=?);)",
        { id, workspace, conversation, message.outgoing ? u"OUT"_s : u"IN"_s, message.body, message.sender, message.ts,
            message.providerMsgId, message.mediaType, message.mediaPath, u"local"_s, message.subject, db.nowMs(),
            accountSlug });
    if (changed == 0)
        return std::nullopt;
    return StoredMessage { conversation, isNew };
}

void raiseUnread(LocalDB& db, const QString& conversationId)
{
    db.run("UPDATE unified_conversation SET unread = unread + 1 WHERE id=?;", { conversationId });
}

void lowerUnread(LocalDB& db, const QString& conversationId, qint64 count)
{
    db.run("UPDATE unified_conversation SET unread=? WHERE id=? AND unread>?;", { count, conversationId, count });
}

void raiseMessageStatus(LocalDB& db, const QString& accountSlug, const QString& providerMsgId, qint64 status)
{
    db.run("UPDATE unified_message SET status=? WHERE provider_msg_id=? AND COALESCE(status,0) < ?\n" + ofAccount,
        { status, providerMsgId, status, accountSlug });
}

void setProviderReaction(LocalDB& db, const QString& accountSlug, const QString& providerMsgId, const QString& emoji)
{
    db.run("UPDATE unified_message SET reaction=?, updated_at=? WHERE provider_msg_id=?\n" + ofAccount,
        { emoji, db.nowMs(), providerMsgId, accountSlug });
}

void updateMessageMedia(LocalDB& db, const QString& accountSlug, const QString& providerMsgId,
    const std::optional<QString>& mediaType, const QString& path)
{
    db.run(R"(UPDATE unified_message
SET media_type=COALESCE(?, media_type), media_path=?, updated_at=?
WHERE provider_msg_id=?
)" + ofAccount,
        { mediaType, path, db.nowMs(), providerMsgId, accountSlug });
}

void setContactAvatar(LocalDB& db, const QString& contactId, const QString& path)
{
    db.run("UPDATE contact SET avatar_path=?, updated_at=? WHERE id=?;", { path, db.nowMs(), contactId });
    lendPicture(db, contactId);
}

void setContactName(LocalDB& db, const QString& contactId, const QString& name)
{
    db.run("UPDATE contact SET display_name=?, updated_at=? WHERE id=?;", { name, db.nowMs(), contactId });
    recordCRMMutation(
        db, u"contact"_s, contactId, u"update"_s, u"local-contact-name"_s, { { u"display_name"_s, name } });
}

qint64 newestConversationTimestamp(LocalDB& db, const QString& channel)
{
    if (!db.tableExists(u"unified_conversation"_s))
        return 0;
    return db
        .firstRow("SELECT MAX(last_ts) FROM unified_conversation\n"
                  "WHERE workspace_id=? AND channel=? AND deleted_at IS NULL;",
            { activeWorkspaceId(db), channel }, [](const SqlRow& row) { return row.integer(0); })
        .value_or(0);
}

}
