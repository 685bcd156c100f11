#include "Engines/Ingest.h"

#include "CRM/ContactsBridge.h"
#include "Engines/LineGroup.h"
#include "Engines/MediaPlaces.h"
#include "Foundation/Ids.h"
#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Foundation/Text.h"
#include "Foundation/WAName.h"
#include "Notifications/Notifier.h"
#include "Store/Approvals/DraftApprovals.h"
#include "Store/Approvals/DraftStatus.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Messages/ChannelFeatures.h"
#include "Store/Messages/InboxQueries.h"
#include "Store/Messages/IngestQueries.h"
#include "Store/People/IdentityQueries.h"

#include <QDir>
#include <QRegularExpression>
#include <QSaveFile>

namespace corvane {

namespace {

constexpr int longestSubject = 998;

std::optional<QString> text(const QJsonObject& event, const char* key)
{
    return textValue(event, QLatin1StringView(key));
}

/// A valid path of an engine's file; any other counts as absent.
std::optional<QString> mediaPath(const EventSource& source, const QJsonObject& event, const char* key)
{
    const auto path = text(event, key);
    if (!path || isMediaPath(source.mediaPlaces, *path))
        return path;
    log(u"Ingest: %1: not a file in its own folders: %2"_s.arg(source.slug, *path));
    return std::nullopt;
}

}

Ingest::Ingest(LocalDB& db, LineGroup& group, Notifier& notifier, const QString& applicationSupport)
    : m_db(db)
    , m_group(group)
    , m_notifier(notifier)
    , m_applicationSupport(applicationSupport)
{
}

void Ingest::setContactsBridge(ContactsBridge* contacts)
{
    m_contacts = contacts;
}

Ingest::Handler Ingest::handlerOf(const QString& type)
{
    static const QHash<QString, Handler> handlers {
        { u"message"_s, &Ingest::handleMessage },
        { u"avatar"_s, &Ingest::handleAvatar },
        { u"msgStatus"_s, &Ingest::handleMessageStatus },
        { u"sendAck"_s, &Ingest::handleSendAck },
        { u"reaction"_s, &Ingest::handleReaction },
        { u"media"_s, &Ingest::handleMedia },
        { u"unread"_s, &Ingest::handleUnread },
        { u"features"_s, &Ingest::handleFeatures },
        { u"contactName"_s, &Ingest::handleContactName },
        { u"phone"_s, &Ingest::handlePhone },
    };
    return handlers.value(type);
}

bool Ingest::storesRows(const QString& type)
{
    return handlerOf(type) != nullptr;
}

bool Ingest::store(const EventSource& source, const QString& type, const QJsonObject& event)
{
    return (this->*handlerOf(type))(source, event);
}

void Ingest::tellInboxChanged(const QString& contactId)
{
    m_group.afterCommit([this, contactId] { Q_EMIT inboxChanged(contactId); });
}

void Ingest::tellMessageChanged(const EventSource& source, const QString& providerMsgId)
{
    tellInboxChanged(contactOfMessage(m_db, messageIdOf(m_db, source.slug, providerMsgId)));
}

void Ingest::tellMediaDownload(const QString& messageId, const std::optional<MediaDownloadStatus>& status)
{
    m_group.afterCommit([this, messageId, status] { Q_EMIT mediaDownloadChanged(messageId, status); });
}

bool Ingest::handleMessage(const EventSource& source, const QJsonObject& event)
{
    const auto externalId = text(event, "convExternalId");
    const auto body = text(event, "body");
    const auto providerMsgId = text(event, "providerMsgId");
    if (!externalId || !body || !providerMsgId)
        return false;

    IncomingMessage message;
    message.conversationExternalId = *externalId;
    message.providerMsgId = *providerMsgId;
    message.body = *body;
    message.outgoing = text(event, "direction") == u"OUT"_s;
    message.ts = truncatedNumber(event, "ts"_L1).value_or(m_db.nowMs());
    message.conversationTitle = text(event, "convTitle");
    message.sender = text(event, "sender");
    message.mediaType = text(event, "mediaType");
    message.mediaPath = mediaPath(source, event, "mediaPath");
    if (const auto subject = text(event, "subject"))
        message.subject = firstCharacters(singleLine(*subject), longestSubject);
    const auto stored = storeMessage(m_db, source.channel, source.slug, message);
    if (!stored)
        return false;
    if (message.mediaPath)
        tellMediaDownload(messageIdOf(m_db, source.slug, *providerMsgId), std::nullopt);

    const bool historical = event.value("historical"_L1).toBool();
    if (stored->isNew && !message.outgoing && !historical) {
        raiseUnread(m_db, stored->conversationId);
        announce(source, message);
    }
    tellInboxChanged(contactId(source.channel, *externalId));
    return true;
}

void Ingest::announce(const EventSource& source, const IncomingMessage& message)
{
    // For a merged contact, the person is someone else; the conversation returns to them shortly afterwards.
    const QString contact = contactId(source.channel, message.conversationExternalId);
    const QString person = personBehind(m_db, contact);
    if (m_openContactId == person || !m_notifier.wouldNotify(person) || isMuted(m_db, person)
        || (person != contact && isMuted(m_db, contact)))
        return;
    const QString name = message.conversationTitle.value_or(message.sender.value_or(message.conversationExternalId));
    m_group.afterCommit([this, person, name = WAName::pretty(name), channel = source.channel, body = message.body] {
        m_notifier.notifyMessage(person, name, channel, body);
    });
}

bool Ingest::handleAvatar(const EventSource& source, const QJsonObject& event)
{
    const auto jid = text(event, "jid");
    const auto path = mediaPath(source, event, "path");
    if (!jid || !path)
        return false;
    setContactAvatar(m_db, contactId(source.channel, *jid), *path);
    tellInboxChanged(contactId(source.channel, *jid));
    return true;
}

bool Ingest::handleMessageStatus(const EventSource& source, const QJsonObject& event)
{
    const auto providerMsgId = text(event, "providerMsgId");
    const auto status = wholeNumber(event, "status"_L1);
    if (!providerMsgId || !status)
        return false;
    raiseMessageStatus(m_db, source.slug, *providerMsgId, *status);
    tellMessageChanged(source, *providerMsgId);
    return true;
}

bool Ingest::handleSendAck(const EventSource& source, const QJsonObject& event)
{
    const auto draftId = text(event, "draftId");
    if (!draftId)
        return false;
    const QString status = text(event, "status").value_or(QString());
    const auto said = text(event, "error");
    const QString error = status == u"uncertain" ? describe(DraftFailure::Uncertain, said.value_or(QString()))
                                                 : said.value_or(u"Send failed"_s);
    acknowledgeDraft(m_db, source.slug, *draftId, status, text(event, "providerMsgId"), error);
    m_group.afterCommit([this] { m_db.watch().tell(StoreSubject::Drafts); });
    return true;
}

bool Ingest::handleReaction(const EventSource& source, const QJsonObject& event)
{
    const auto target = text(event, "targetProviderMsgId");
    if (!target)
        return false;
    setProviderReaction(m_db, source.slug, *target, text(event, "emoji").value_or(u""_s));
    tellMessageChanged(source, *target);
    return true;
}

bool Ingest::handleMedia(const EventSource& source, const QJsonObject& event)
{
    const auto providerMsgId = text(event, "providerMsgId");
    if (!providerMsgId)
        return false;
    const QString key = messageIdOf(m_db, source.slug, *providerMsgId);
    const QString state = text(event, "state").value_or(QString());
    if (state == u"requested") {
        tellMediaDownload(key, MediaDownloadStatus { MediaDownloadStatus::Kind::Downloading, {} });
        return true;
    }
    if (state == u"failed") {
        const QString reason = text(event, "error").value_or(u"Couldn't fetch this media from WhatsApp."_s);
        tellMediaDownload(key, MediaDownloadStatus { MediaDownloadStatus::Kind::Failed, reason });
    } else if (state == u"success") {
        if (const auto path = mediaPath(source, event, "mediaPath"))
            updateMessageMedia(m_db, source.slug, *providerMsgId, text(event, "mediaType"), *path);
        tellMediaDownload(key, std::nullopt);
    } else {
        return false;
    }
    tellMessageChanged(source, *providerMsgId);
    return true;
}

bool Ingest::handleUnread(const EventSource& source, const QJsonObject& event)
{
    const auto externalId = text(event, "convExternalId");
    const auto count = wholeNumber(event, "count"_L1);
    if (!externalId || !count || *count < 0)
        return false;
    const QString conversation = conversationId(source.slug, *externalId);
    lowerUnread(m_db, conversation, *count);
    tellInboxChanged(contactOfConversation(m_db, conversation));
    return true;
}

bool Ingest::handleFeatures(const EventSource& source, const QJsonObject& event)
{
    const auto flag = [&](const char* key) {
        return event.value(QLatin1StringView(key));
    };
    const auto isFlag = [](const QJsonValue& value) {
        return value.isUndefined() || value.isBool();
    };
    const auto maxBytes = wholeNumber(event, "maxBytes"_L1);
    if (!isFlag(flag("files")) || !isFlag(flag("subject"))
        || (event.contains("maxBytes"_L1) && maxBytes.value_or(0) <= 0))
        return false;
    if (rememberFeatures(m_db, source.slug, { flag("files").toBool(), maxBytes, flag("subject").toBool() }))
        m_group.afterCommit([this, slug = source.slug] { Q_EMIT featuresChanged(slug); });
    return true;
}

bool Ingest::handleContactName(const EventSource& source, const QJsonObject& event)
{
    const auto jid = text(event, "jid");
    const auto name = text(event, "name");
    if (!jid || !name || name->isEmpty())
        return false;
    setContactName(m_db, contactId(source.channel, *jid), *name);
    tellInboxChanged(contactId(source.channel, *jid));
    return true;
}

bool Ingest::handlePhone(const EventSource& source, const QJsonObject& event)
{
    const auto jid = text(event, "jid");
    const auto phone = text(event, "phone");
    if (!jid || !phone || !m_contacts)
        return false;
    const auto person = m_contacts->match(*phone);
    if (!person)
        return false;
    const QString contact = contactId(source.channel, *jid);
    setContactName(m_db, contact, person->name);
    if (!person->image.isEmpty()) {
        if (const auto path = writeAddressBookPhoto(*jid, source, person->image))
            setContactAvatar(m_db, contact, *path);
    }
    tellInboxChanged(contact);
    return true;
}

std::optional<QString> Ingest::writeAddressBookPhoto(
    const QString& jid, const EventSource& source, const QByteArray& photo) const
{
    static const QRegularExpression others(u"[^A-Za-z0-9_-]"_s);
    const QString folder = m_applicationSupport + u"/media/"_s + source.mediaFolder + u"/avatars"_s;
    QDir().mkpath(folder);
    const QString path = folder + u'/' + QString(jid).remove(others) + u"-ab.jpg"_s;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(photo) != photo.size() || !file.flush() || !file.commit())
        return std::nullopt;
    return path;
}

}
