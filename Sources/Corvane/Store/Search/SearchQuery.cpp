#include "Store/Search/SearchQuery.h"

#include "Foundation/Channel.h"
#include "Foundation/Literals.h"
#include "Foundation/Text.h"

#include <QDateTime>
#include <QHash>
#include <QRegularExpression>
#include <algorithm>

namespace corvane {

namespace {

struct GroupWords {
    SearchGroup group;
    QString word;
    QString label;
};

const QList<GroupWords>& groups()
{
    static const QList<GroupWords> all {
        { SearchGroup::People, u"people"_s, u"People"_s },
        { SearchGroup::Messages, u"messages"_s, u"Messages"_s },
        { SearchGroup::Calls, u"calls"_s, u"Calls"_s },
        { SearchGroup::Transcripts, u"transcripts"_s, u"Transcripts"_s },
        { SearchGroup::Notes, u"notes"_s, u"Notes"_s },
        { SearchGroup::Deals, u"deals"_s, u"Deals"_s },
        { SearchGroup::Tasks, u"tasks"_s, u"Tasks"_s },
        { SearchGroup::Events, u"events"_s, u"Events"_s },
        { SearchGroup::Work, u"work"_s, u"Work"_s },
    };
    return all;
}

const GroupWords& wordsOf(SearchGroup group)
{
    return *std::ranges::find(groups(), group, &GroupWords::group);
}

std::optional<MessageContent> contentOf(const QString& word)
{
    static const QHash<QString, MessageContent> contents { { u"file"_s, MessageContent::File },
        { u"image"_s, MessageContent::Image }, { u"video"_s, MessageContent::Video },
        { u"audio"_s, MessageContent::Audio }, { u"document"_s, MessageContent::Document },
        { u"link"_s, MessageContent::Link } };
    const auto found = contents.constFind(word.endsWith(u's') ? word.chopped(1) : word);
    return found == contents.cend() ? std::nullopt : std::optional(*found);
}

/// The start of a day, a month or a year.
std::optional<qint64> startOf(const QString& value, const QDate& today)
{
    QDate day = value == "today"_L1 ? today : value == "yesterday"_L1 ? today.addDays(-1) : QDate();
    for (const auto& format : { u"yyyy-M-d"_s, u"yyyy-M"_s, u"yyyy"_s }) {
        if (!day.isValid())
            day = QDate::fromString(value, format);
    }
    return day.isValid() ? std::optional(day.startOfDay().toMSecsSinceEpoch()) : std::nullopt;
}

bool takeFrom(SearchQuery& query, const QString& value, const QDate&)
{
    if (folded(value) == "me"_L1)
        query.fromMe = true;
    else
        query.from.append(value);
    return true;
}

bool takeIn(SearchQuery& query, const QString& value, const QDate&)
{
    const auto group = std::ranges::find(groups(), folded(value), &GroupWords::word);
    const QString channel = value.toUpper();
    if (group != groups().end())
        query.group = group->group;
    else if (channelRaw(channelFromRaw(channel)) == channel)
        query.channels.append(channel);
    else
        query.places.append(value);
    return true;
}

bool takeHas(SearchQuery& query, const QString& value, const QDate&)
{
    const auto content = contentOf(folded(value));
    if (content)
        query.has.append(*content);
    return content.has_value();
}

bool takeBefore(SearchQuery& query, const QString& value, const QDate& today)
{
    const auto start = startOf(folded(value), today);
    query.beforeMs = start && query.beforeMs ? std::min(*start, *query.beforeMs) : start;
    return start.has_value();
}

bool takeAfter(SearchQuery& query, const QString& value, const QDate& today)
{
    const auto start = startOf(folded(value), today);
    query.afterMs = start && query.afterMs ? std::max(*start, *query.afterMs) : start;
    return start.has_value();
}

struct Narrowing {
    NarrowingWord told;
    QString values; ///< for the hint
    bool (*take)(SearchQuery& query, const QString& value, const QDate& today); ///< false: not understood
};

const QList<Narrowing>& narrowings()
{
    const auto days = u"a day such as 2026-11-22, a month such as 2026-11, a year, today or yesterday"_s;
    static const QList<Narrowing> all {
        { { u"from"_s, u"from:ana"_s, u"What somebody wrote; from:me for your own messages"_s },
            u"a part of a name, or me"_s, takeFrom },
        { { u"in"_s, u"in:email"_s, u"In a channel, a conversation, or a group such as notes"_s },
            u"a channel, a part of a conversation's name, or a group such as notes or calls"_s, takeIn },
        { { u"has"_s, u"has:file"_s, u"With a file, image, video, audio, document or link"_s },
            u"file, image, video, audio, document or link"_s, takeHas },
        { { u"before"_s, u"before:2026-11-22"_s, u"Earlier than a day, a month or a year"_s }, days, takeBefore },
        { { u"after"_s, u"after:yesterday"_s, u"From a day, a month or a year on"_s }, days, takeAfter },
    };
    return all;
}

/// A filter word at the start of a word, a colon, and the value, which may be quoted.
const QRegularExpression& narrowingPattern()
{
    static const QRegularExpression pattern = [] {
        QStringList words;
        for (const Narrowing& narrowing : narrowings())
            words.append(narrowing.told.word);
        return QRegularExpression(uR"re((?<!\S)(%1):(?:"([^"]*)"?|(\S*)))re"_s.arg(words.join(u'|')),
            QRegularExpression::CaseInsensitiveOption);
    }();
    return pattern;
}

}

QString groupLabel(SearchGroup group)
{
    return wordsOf(group).label;
}

QString groupWord(SearchGroup group)
{
    return wordsOf(group).word;
}

const QList<NarrowingWord>& narrowingWords()
{
    static const QList<NarrowingWord> words = [] {
        QList<NarrowingWord> told;
        for (const Narrowing& narrowing : narrowings())
            told.append(narrowing.told);
        return told;
    }();
    return words;
}

bool SearchQuery::isNarrowed() const
{
    return fromMe || !from.isEmpty() || group || !channels.isEmpty() || !places.isEmpty() || !has.isEmpty() || afterMs
        || beforeMs || !isUsable;
}

bool SearchQuery::asksFor(SearchGroup asked) const
{
    if (!isUsable || isEmpty() || (group && *group != asked))
        return false;
    switch (asked) {
    case SearchGroup::Messages:
        return true;
    case SearchGroup::People:
        return !fromMe && has.isEmpty() && !afterMs && !beforeMs;
    default:
        return !fromMe && has.isEmpty() && channels.isEmpty();
    }
}

SearchQuery parseSearch(const QString& typed, const QDate& today)
{
    SearchQuery query;
    QStringList text;
    qsizetype textFrom = 0;
    const auto takeText = [&](qsizetype until) {
        if (const QString piece = typed.sliced(textFrom, until - textFrom).trimmed(); !piece.isEmpty())
            text.append(piece);
    };
    for (auto matches = narrowingPattern().globalMatch(typed); matches.hasNext();) {
        const QRegularExpressionMatch match = matches.next();
        const QString value = (match.captured(2) + match.captured(3)).trimmed();
        const bool isBeingTyped = value.isEmpty() && typed.sliced(match.capturedEnd()).trimmed().isEmpty();
        if (value.isEmpty() && !isBeingTyped)
            continue;
        takeText(match.capturedStart());
        textFrom = match.capturedEnd();
        const Narrowing& narrowing = *std::ranges::find_if(narrowings(),
            [word = match.captured(1).toLower()](const Narrowing& each) { return each.told.word == word; });
        if (isBeingTyped) {
            query.hint = u"After %1: comes %2."_s.arg(narrowing.told.word, narrowing.values);
        } else if (!narrowing.take(query, value, today)) {
            query.isUsable = false;
            query.hint = u"“%1” is not understood: after %2: comes %3."_s.arg(
                firstCharacters(value, 40), narrowing.told.word, narrowing.values);
        }
    }
    takeText(typed.size());
    query.text = text.join(u' ');
    return query;
}

}
