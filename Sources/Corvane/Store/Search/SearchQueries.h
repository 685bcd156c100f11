#pragma once

#include "Store/Core/SqlConnection.h"
#include "Store/Search/SearchQuery.h"

namespace corvane {

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
    QString mediaType = {}; ///< such as "image"; empty for text alone

    bool operator==(const MessageHit&) const = default;
};

/// The messages whose body, transcript or subject contains the text and that meet the other parts of the search, newest
/// first; reads all messages until it has enough. % and _ in the text are wildcards. A search without a text also
/// finds messages without one.
QList<MessageHit> searchMessages(SqlConnection& db, const SearchQuery& query, int limit);

/// The rows of `searchMessages` at these times, in the same order.
QList<MessageHit> searchMessagesAt(SqlConnection& db, const SearchQuery& query, const QList<qint64>& times, int limit);

/// A range of messages, by rowid.
struct MessageRange {
    qint64 after = 0; ///< rowid of unified_message
    QList<qint64> messages; ///< rowids of unified_message
    QList<qint64> transcripts; ///< rowids of audio_transcript
};

/// The times of the messages that `searchMessages` would find in the range.
QList<qint64> timesOfMatches(SqlConnection& db, const SearchQuery& query, const MessageRange& range);

/// The ids of at most `limit` conversations that can meet a part of a search: those on a channel, those whose own name
/// or person's name contains a text, and those with one person whose name contains it.
QStringList conversationsOn(SqlConnection& db, const QString& channel, int limit);
QStringList conversationsNamed(SqlConnection& db, const QString& name, int limit);
QStringList conversationsWith(SqlConnection& db, const QString& name, int limit);

/// The LIKE pattern for the media type of messages with such a file.
QString mediaPattern(MessageContent file);

/// The values as a JSON array, for json_each.
QString jsonNumbers(const QList<qint64>& values);

}
