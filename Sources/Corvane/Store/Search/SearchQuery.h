#pragma once

#include <QDate>
#include <QStringList>
#include <optional>

namespace corvane {

/// What a search finds, in groups.
enum class SearchGroup { People, Messages, Calls, Transcripts, Notes, Deals, Tasks, Events, Work };

QString groupLabel(SearchGroup group); ///< such as "Notes"
QString groupWord(SearchGroup group); ///< as typed after "in:", such as "notes"

/// What a message holds besides its text, as typed after "has:".
enum class MessageContent { File, Image, Video, Audio, Document, Link };

/// A word that narrows a search, typed before a colon.
struct NarrowingWord {
    QString word;
    QString example;
    QString what; ///< in a few words, for people
};

const QList<NarrowingWord>& narrowingWords();

/// A search, taken apart. All parts must be met.
struct SearchQuery {
    SearchQuery() = default;
    SearchQuery(const QString& words) ///< a search for this text, whatever it is
        : text(words)
    {
    }

    QString text; ///< to be found as it stands
    bool fromMe = false;
    QStringList from; ///< parts of people's names
    std::optional<SearchGroup> group; ///< only this one
    QStringList channels; ///< raw words such as "EMAIL"
    QStringList places; ///< parts of the names of conversations, calendars and workspaces
    QList<MessageContent> has;
    std::optional<qint64> afterMs; ///< from this moment on
    std::optional<qint64> beforeMs; ///< earlier than this moment

    bool isUsable = true; ///< false: a value is not understood, so that nothing can be found
    QString hint; ///< what a narrowing word still needs, or why it is not understood; else empty

    bool isNarrowed() const;
    bool isEmpty() const { return text.isEmpty() && !isNarrowed(); }
    bool asksFor(SearchGroup group) const; ///< whether anything of the group can meet all parts

    bool operator==(const SearchQuery&) const = default;
};

/// Takes `from:ana in:"Winter market" kiln` apart. Words before a colon that narrow nothing are text, and so is a
/// narrowing word without a value that is followed by something else. `today` is the user's.
SearchQuery parseSearch(const QString& typed, const QDate& today);

}
