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

/// Every message in whose body, transcript or subject the text occurs and that meets what narrows the search, newest
/// first; reads all messages until it has enough. % and _ of the text are wildcards. A search without a text finds
/// messages without one, too.
QList<MessageHit> searchMessages(SqlConnection& db, const SearchQuery& query, int limit);

/// Those of the rows above that have one of the times, in the same order.
QList<MessageHit> searchMessagesAt(SqlConnection& db, const SearchQuery& query, const QList<qint64>& times, int limit);

/// Messages by their place in the file.
struct MessageRange {
    qint64 after = 0; ///< rowid of unified_message
    QList<qint64> messages; ///< rowids of unified_message
    QList<qint64> transcripts; ///< rowids of audio_transcript
};

/// The times of those that `searchMessages` would find in the range.
QList<qint64> timesOfMatches(SqlConnection& db, const SearchQuery& query, const MessageRange& range);

/// Ids of conversations, at most `limit`, in which alone a part of a search can be met: those on a channel, those whose
/// own name or person's name holds a text, and those with one person whose name holds it.
QStringList conversationsOn(SqlConnection& db, const QString& channel, int limit);
QStringList conversationsNamed(SqlConnection& db, const QString& name, int limit);
QStringList conversationsWith(SqlConnection& db, const QString& name, int limit);

/// What the kind of file is LIKE in a message with such a file.
QString mediaPattern(MessageContent file);

/// The values as a JSON array, for json_each.
QString jsonNumbers(const QList<qint64>& values);

}
