#pragma once

#include <QString>

namespace corvane {

/// "{prefix}:{nowMs}:{rand}", where {rand} counts from 1000 to 9999 and wraps around, from a random start. Ids made by
/// one process within a millisecond therefore differ.
QString stampedId(const QString& prefix, qint64 nowMs);

/// A fresh lower-case UUID without braces.
QString uuidText();

QString contactId(const QString& channel, const QString& handle); ///< "ct:{channel}:{handle}"
QString contactIdentityId(const QString& channel, const QString& handle); ///< "id:{channel}:{handle}"

/// "wa:{accountSlug}:{externalId}", the prefix for every channel.
QString conversationId(const QString& accountSlug, const QString& externalId);

/// "wa:msg:{providerMsgId}", the prefix for every channel.
QString messageId(const QString& providerMsgId);

}
