#include "Engines/Ingest.h"

#include "CRM/ContactsBridge.h"
#include "Foundation/Ids.h"
#include "Foundation/Json.h"
#include "Notifications/Notifier.h"
#include "Presentation/WAName.h"
#include "Store/Approvals/DraftApprovals.h"
#include "Store/Messages/InboxQueries.h"
#include "Store/Messages/IngestQueries.h"
#include "Store/People/IdentityQueries.h"

#include <QDir>
#include <QRegularExpression>
#include <QSaveFile>
#include <cmath>

namespace corvane {

namespace {

std::optional<QString> text(const QJsonObject& event, const char* key)
{
    return textValue(event, QLatin1StringView(key));
}

/// A number without its fraction; nothing where it is none, or none that 64 bits hold.
std::optional<qint64> truncated(const QJsonValue& value)
{
    if (!value.isDouble())
        return std::nullopt;
    const QVariant number = value.toVariant();
    if (number.typeId() == QMetaType::LongLong)
        return number.toLongLong();
    constexpr double limit = 9223372036854775808.0;
    const double real = number.toDouble();
    return real >= -limit && real < limit ? std::optional(static_cast<qint64>(real)) : std::nullopt;
}

std::optional<qint64> integer(const QJsonValue& value)
{
    const double real = value.toDouble();
    return std::trunc(real) == real ? truncated(value) : std::nullopt;
}

}

Ingest::Ingest(LocalDB& db, Notifier& notifier, const QString& applicationSupport)
    : m_db(db)
    , m_notifier(notifier)
    , m_applicationSupport(applicationSupport)
{
}

void Ingest::setContactsBridge(ContactsBridge* contacts)
{
    m_contacts = contacts;
}

void Ingest::handle(const EventSource& source, const QString& type, const QJsonObject& event)
{
    using Handler = void (Ingest::*)(const EventSource&, const QJsonObject&);
    static const QHash<QString, Handler> handlers {
        { QStringLiteral("message"), &Ingest::handleMessage },
        { QStringLiteral("avatar"), &Ingest::handleAvatar },
        { QStringLiteral("msgStatus"), &Ingest::handleMessageStatus },
        { QStringLiteral("sendAck"), &Ingest::handleSendAck },
        { QStringLiteral("reaction"), &Ingest::handleReaction },
        { QStringLiteral("media"), &Ingest::handleMedia },
        { QStringLiteral("contactName"), &Ingest::handleContactName },
        { QStringLiteral("phone"), &Ingest::handlePhone },
    };
    if (const Handler handler = handlers.value(type))
        (this->*handler)(source, event);
}

void Ingest::handleMessage(const EventSource& source, const QJsonObject& event)
{
    const auto externalId = text(event, "convExternalId");
    const auto body = text(event, "body");
    const auto providerMsgId = text(event, "providerMsgId");
    if (!externalId || !body || !providerMsgId)
        return;

    IncomingMessage message;
    message.conversationExternalId = *externalId;
    message.providerMsgId = *providerMsgId;
    message.body = *body;
    message.outgoing = text(event, "direction") == QStringLiteral("OUT");
    message.ts = truncated(event.value(QLatin1StringView("ts"))).value_or(m_db.nowMs());
    message.conversationTitle = text(event, "convTitle");
    message.sender = text(event, "sender");
    message.mediaType = text(event, "mediaType");
    message.mediaPath = text(event, "mediaPath");
    const QString conversation = storeMessage(m_db, source.channel, source.slug, message);
    if (message.mediaPath)
        Q_EMIT mediaDownloadChanged(messageId(*providerMsgId), std::nullopt);

    const QString contact = contactId(source.channel, *externalId);
    const bool historical = event.value(QLatin1StringView("historical")).toBool();
    if (!message.outgoing && !historical) {
        raiseUnread(m_db, conversation);
        // Of a contact that was merged, the person is another; the conversation comes back to them a moment later.
        const QString person = personBehind(m_db, contact);
        if (m_openContactId != person && m_notifier.wouldNotify(person) && !isMuted(m_db, person)
            && (person == contact || !isMuted(m_db, contact))) {
            const QString name = message.conversationTitle.value_or(message.sender.value_or(*externalId));
            m_notifier.notifyMessage(person, WAName::pretty(name), source.channel, *body);
        }
    }
    Q_EMIT inboxChanged(contact);
}

void Ingest::handleAvatar(const EventSource& source, const QJsonObject& event)
{
    const auto jid = text(event, "jid");
    const auto path = text(event, "path");
    if (!jid || !path)
        return;
    setContactAvatar(m_db, contactId(source.channel, *jid), *path);
    Q_EMIT inboxChanged(contactId(source.channel, *jid));
}

void Ingest::handleMessageStatus(const EventSource&, const QJsonObject& event)
{
    const auto providerMsgId = text(event, "providerMsgId");
    const auto status = integer(event.value(QLatin1StringView("status")));
    if (!providerMsgId || !status)
        return;
    raiseMessageStatus(m_db, *providerMsgId, *status);
    Q_EMIT inboxChanged(contactOfMessage(m_db, *providerMsgId));
}

void Ingest::handleSendAck(const EventSource&, const QJsonObject& event)
{
    const auto draftId = text(event, "draftId");
    if (!draftId)
        return;
    acknowledgeDraft(m_db, *draftId, text(event, "status").value_or(QString()), text(event, "providerMsgId"),
        text(event, "error").value_or(QStringLiteral("Send failed")));
    Q_EMIT draftAcknowledged();
}

void Ingest::handleReaction(const EventSource&, const QJsonObject& event)
{
    const auto target = text(event, "targetProviderMsgId");
    if (!target)
        return;
    setProviderReaction(m_db, *target, text(event, "emoji").value_or(QStringLiteral("")));
    Q_EMIT inboxChanged(contactOfMessage(m_db, *target));
}

void Ingest::handleMedia(const EventSource&, const QJsonObject& event)
{
    const auto providerMsgId = text(event, "providerMsgId");
    if (!providerMsgId)
        return;
    const QString key = messageId(*providerMsgId);
    const QString state = text(event, "state").value_or(QString());
    if (state == u"requested") {
        Q_EMIT mediaDownloadChanged(key, MediaDownloadStatus { MediaDownloadStatus::Kind::Downloading, {} });
    } else if (state == u"failed") {
        const QString reason
            = text(event, "error").value_or(QStringLiteral("Couldn't fetch this media from WhatsApp."));
        Q_EMIT mediaDownloadChanged(key, MediaDownloadStatus { MediaDownloadStatus::Kind::Failed, reason });
        Q_EMIT inboxChanged(contactOfMessage(m_db, *providerMsgId));
    } else if (state == u"success") {
        if (const auto path = text(event, "mediaPath"))
            updateMessageMedia(m_db, *providerMsgId, text(event, "mediaType"), *path);
        Q_EMIT mediaDownloadChanged(key, std::nullopt);
        Q_EMIT inboxChanged(contactOfMessage(m_db, *providerMsgId));
    }
}

void Ingest::handleContactName(const EventSource& source, const QJsonObject& event)
{
    const auto jid = text(event, "jid");
    const auto name = text(event, "name");
    if (!jid || !name || name->isEmpty())
        return;
    setContactName(m_db, contactId(source.channel, *jid), *name);
    Q_EMIT inboxChanged(contactId(source.channel, *jid));
}

void Ingest::handlePhone(const EventSource& source, const QJsonObject& event)
{
    const auto jid = text(event, "jid");
    const auto phone = text(event, "phone");
    if (!jid || !phone || !m_contacts)
        return;
    const auto person = m_contacts->match(*phone);
    if (!person)
        return;
    const QString contact = contactId(source.channel, *jid);
    setContactName(m_db, contact, person->name);
    if (!person->image.isEmpty()) {
        if (const auto path = writeAddressBookPhoto(*jid, source, person->image))
            setContactAvatar(m_db, contact, *path);
    }
    Q_EMIT inboxChanged(contact);
}

std::optional<QString> Ingest::writeAddressBookPhoto(
    const QString& jid, const EventSource& source, const QByteArray& photo) const
{
    static const QRegularExpression others(QStringLiteral("[^A-Za-z0-9_-]"));
    const QString folder
        = m_applicationSupport + QStringLiteral("/media/") + source.mediaFolder + QStringLiteral("/avatars");
    QDir().mkpath(folder);
    const QString path = folder + u'/' + QString(jid).remove(others) + QStringLiteral("-ab.jpg");
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(photo) != photo.size() || !file.flush() || !file.commit())
        return std::nullopt;
    return path;
}

}
