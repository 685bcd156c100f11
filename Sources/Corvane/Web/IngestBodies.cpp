#include "Web/IngestBodies.h"

#include "Foundation/Json.h"
#include "Foundation/Literals.h"

#include <QDateTime>
#include <QJsonArray>
#include <algorithm>

namespace corvane {

namespace {

constexpr qint64 lastMsOfFourDigitYears = 253'402'300'799'999;
const QString whatsApp = u"WHATSAPP"_s;

QString isoTimeWithMs(qint64 ms)
{
    return QDateTime::fromMSecsSinceEpoch(std::clamp(ms, qint64(0), lastMsOfFourDigitYears), Qt::UTC)
        .toString(Qt::ISODateWithMs);
}

/// Who reacted is not stored: in a direct chat only the account can have reacted to the person's messages, and only
/// the person to the account's. In a group it is unknown.
QString reactor(const CloudMessage& message, const IngestChat& chat)
{
    const bool byAccount = !chat.isGroup && message.direction != "OUT"_L1;
    return byAccount ? chat.accountSlug : chat.externalId;
}

QJsonObject objectAt(const QJsonObject& object, const QString& key)
{
    const QJsonValue inner = object[key];
    return inner.isObject() ? inner.toObject() : object;
}

}

QJsonObject mapAccount(const QString& slug)
{
    return { { u"account_type"_s, whatsApp }, { u"provider_id"_s, slug } };
}

QJsonObject mapThread(const CloudThread& thread, const QString& accountId)
{
    return {
        { u"object"_s, u"Chat"_s },
        { u"account_id"_s, accountId },
        { u"account_type"_s, whatsApp },
        { u"provider_id"_s, thread.externalId },
        { u"type"_s, thread.isGroup() ? 1 : 0 },
        { u"timestamp"_s, isoTimeWithMs(thread.lastTs) },
        { u"unread_count"_s, thread.unread },
        { u"archived"_s, thread.archived },
        { u"muted_until"_s, thread.muted ? QJsonValue(u"9999-12-31T23:59:59Z"_s) : QJsonValue(QJsonValue::Null) },
        { u"read_only"_s, false },
        { u"pinned"_s, false },
    };
}

QJsonObject mapMessage(const CloudMessage& message, const IngestChat& chat)
{
    const bool isOutgoing = message.direction == "OUT"_L1;
    const QString sender = message.sender.value_or(QString());
    QJsonObject mapped {
        { u"id"_s, message.id },
        { u"chat_id"_s, chat.chatId },
        { u"account_id"_s, chat.accountId },
        { u"sender_id"_s,
            isOutgoing             ? chat.accountSlug
                : sender.isEmpty() ? chat.externalId
                                   : sender },
        { u"timestamp"_s, isoTimeWithMs(message.ts) },
        { u"is_outgoing"_s, isOutgoing },
        { u"text"_s, message.body },
    };
    if (!message.reaction.isEmpty())
        mapped[u"reactions"_s]
            = QJsonArray { QJsonObject { { u"type"_s, message.reaction }, { u"actor_id"_s, reactor(message, chat) } } };
    return mapped;
}

std::optional<QString> decodeId(const QByteArray& answer)
{
    const QJsonObject document = jsonObject(answer).value_or(QJsonObject());
    const auto id = textValue(objectAt(objectAt(document, u"data"_s), u"chat"_s), "id"_L1);
    return id && !id->isEmpty() ? id : std::nullopt;
}

MessageBodies messageBodies(const QList<CloudMessage>& messages, const IngestChat& chat, Batching batching)
{
    MessageBodies result;
    if (messages.isEmpty())
        return result;
    QJsonArray all;
    for (const CloudMessage& message : messages) {
        const QJsonObject mapped = mapMessage(message, chat);
        if (batching == Batching::AllInOne)
            all.append(mapped);
        else
            result.bodies.append(compactJson(mapped));
    }
    if (batching == Batching::AllInOne)
        result.bodies.append(compactJson({ { u"messages"_s, all } }));
    result.messages = messages.size();
    result.lastId = messages.last().id;
    result.lastMs = messages.last().ts;
    return result;
}

}
