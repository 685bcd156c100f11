#pragma once

#include <QDate>
#include <QStringList>
#include <optional>

namespace corvane {

/// The groups of search results.
enum class SearchGroup { People, Messages, Calls, Transcripts, Notes, Deals, Tasks, Events, Work };

QString groupLabel(SearchGroup group); ///< such as "Notes"
QString groupWord(SearchGroup group); ///< as typed after "in:", such as "notes"

/// What a message contains besides its text, as typed after "has:".
enum class MessageContent { File, Image, Video, Audio, Document, Link };

/// A word that filters a search, typed before a colon.
struct NarrowingWord {
    QString word;
    QString example;
    QString what; ///< a short explanation
};

const QList<NarrowingWord>& narrowingWords();

/// A parsed search. All parts must be met.
struct SearchQuery {
    SearchQuery() = default;
    SearchQuery(const QString& words) ///< a plain search for this text
        : text(words)
    {
    }

    QString text; ///< searched for verbatim
    bool fromMe = false;
    QStringList from; ///< parts of people's names
    std::optional<SearchGroup> group; ///< only this one
    QStringList channels; ///< raw words such as "EMAIL"
    QStringList places; ///< parts of the names of conversations, calendars and workspaces
    QList<MessageContent> has;
    std::optional<qint64> afterMs; ///< from this moment on
    std::optional<qint64> beforeMs; ///< earlier than this moment

    bool isUsable = true; ///< false: a value is invalid, so nothing can be found
    QString hint; ///< what a filter still needs, or why it is invalid; else empty

    bool isNarrowed() const;
    bool isEmpty() const { return text.isEmpty() && !isNarrowed(); }
    bool asksFor(SearchGroup group) const; ///< whether anything of the group can meet all parts

    bool operator==(const SearchQuery&) const = default;
};

/// Parses `from:ana in:"Winter market" kiln`. Unknown words before a colon are text, and so is a filter word without a
/// value that is followed by something else. `today` is in the user's time zone.
SearchQuery parseSearch(const QString& typed, const QDate& today);

}
