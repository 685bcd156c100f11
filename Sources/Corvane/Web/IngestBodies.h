#pragma once

#include "Store/Sync/CloudPush.h"

#include <QJsonObject>

namespace corvane {

// The request bodies of a push, and parsing of the responses.

/// The ids of a new chat, repeated in each of its messages.
struct IngestChat {
    QString accountId; ///< as the web gave it
    QString chatId; ///< as the web gave it
    QString accountSlug;
    QString externalId;
    bool isGroup = false;
};

QJsonObject mapAccount(const QString& slug);
QJsonObject mapThread(const CloudThread& thread, const QString& accountId);
QJsonObject mapMessage(const CloudMessage& message, const IngestChat& chat);

/// The id in a response, bare or under "data", "chat" or both; nothing if there is none.
std::optional<QString> decodeId(const QByteArray& answer);

/// Messages as the bodies of requests.
struct MessageBodies {
    QList<QByteArray> bodies; ///< one per message, or one for all
    qint64 messages = 0;
    QString lastId;
    qint64 lastMs = 0;
};

enum class Batching { EachAlone, AllInOne };

MessageBodies messageBodies(const QList<CloudMessage>& messages, const IngestChat& chat, Batching batching);

}
