#include "Store/Search/SearchQuery.h"

#include "Foundation/Literals.h"
#include "Support/Print.h"

#include <QDateTime>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

const QDate today(2026, 11, 22);

SearchQuery parsed(const QString& typed)
{
    return parseSearch(typed, today);
}

qint64 startOf(int year, int month, int day)
{
    return QDate(year, month, day).startOfDay().toMSecsSinceEpoch();
}

}

TEST(SearchQuery, takesNarrowingWordsOutOfTheText)
{
    const SearchQuery query
        = parsed(u" the kiln FROM:\"Ana Ruiz\" from:me in:email in:\"Winter market\" has:files is  hot in:notes"_s);
    EXPECT_EQ(query.text, u"the kiln is  hot"_s);
    EXPECT_EQ(query.from, QStringList(u"Ana Ruiz"_s));
    EXPECT_TRUE(query.fromMe);
    EXPECT_EQ(query.channels, QStringList(u"EMAIL"_s));
    EXPECT_EQ(query.places, QStringList(u"Winter market"_s));
    EXPECT_EQ(query.has, QList { MessageContent::File });
    EXPECT_EQ(query.group, SearchGroup::Notes);
    EXPECT_EQ(query.hint, QString());
}

TEST(SearchQuery, leavesEverythingElseAsItWasTyped)
{
    for (const auto& typed : { u"re: the from: line"_s, u"https://a.example/?in:x"_s, u"therefrom:ana"_s,
             u"\"from:ana\""_s, u"two  spaces"_s }) {
        EXPECT_EQ(parsed(typed).text, typed);
        EXPECT_FALSE(parsed(typed).isNarrowed());
    }
}

TEST(SearchQuery, takesDaysMonthsAndYearsAndTheTightestOfThem)
{
    EXPECT_EQ(parsed(u"before:2026-11-3"_s).beforeMs, startOf(2026, 11, 3));
    EXPECT_EQ(parsed(u"after:2026-11"_s).afterMs, startOf(2026, 11, 1));
    EXPECT_EQ(parsed(u"before:2026 before:2025"_s).beforeMs, startOf(2025, 1, 1));
    EXPECT_EQ(parsed(u"after:2025 after:Yesterday"_s).afterMs, startOf(2026, 11, 21));
    EXPECT_EQ(parsed(u"before:today"_s).beforeMs, startOf(2026, 11, 22));
    EXPECT_EQ(parsed(u"before:2025 before:2026"_s).beforeMs, startOf(2025, 1, 1));
}

TEST(SearchQuery, saysWhatAValueShouldBe)
{
    const SearchQuery wrong = parsed(u"kiln before:2026-13-40"_s);
    EXPECT_FALSE(wrong.isUsable);
    EXPECT_FALSE(wrong.asksFor(SearchGroup::Messages));
    EXPECT_TRUE(wrong.hint.startsWith(u"“2026-13-40” is not understood: after before: comes a day such as"_s));
    EXPECT_FALSE(parsed(u"has:wings"_s).isUsable);

    const SearchQuery begun = parsed(u"kiln from:"_s);
    EXPECT_TRUE(begun.isUsable && !begun.isNarrowed());
    EXPECT_EQ(begun.text, u"kiln"_s);
    EXPECT_EQ(begun.hint, u"After from: comes a part of a name, or me."_s);
}

TEST(SearchQuery, asksOnlyForWhatCanMeetAllParts)
{
    EXPECT_TRUE(parsed(u"kiln"_s).asksFor(SearchGroup::Work));
    EXPECT_FALSE(parsed(u"has:link"_s).asksFor(SearchGroup::Notes));
    EXPECT_FALSE(parsed(u"in:sms"_s).asksFor(SearchGroup::Events));
    EXPECT_TRUE(parsed(u"in:sms"_s).asksFor(SearchGroup::People));
    EXPECT_FALSE(parsed(u"in:notes x"_s).asksFor(SearchGroup::Messages));
    EXPECT_FALSE(parsed(QString()).asksFor(SearchGroup::Messages));
    for (const auto& typed : { u"x from:me"_s, u"x has:link"_s, u"x after:2025"_s, u"x before:2025"_s })
        EXPECT_FALSE(parsed(typed).asksFor(SearchGroup::People)) << typed.toStdString();
    EXPECT_TRUE(parsed(u"x after:2025"_s).asksFor(SearchGroup::Notes));
    EXPECT_FALSE(parsed(u"x from:me"_s).asksFor(SearchGroup::Notes));
    EXPECT_TRUE(parsed(u"x from:ana"_s).asksFor(SearchGroup::People));
    for (const auto& typed : { u"from:me"_s, u"from:ana"_s, u"in:notes"_s, u"in:sms"_s, u"in:x"_s, u"has:link"_s,
             u"after:2025"_s, u"before:2025"_s, u"has:wings"_s })
        EXPECT_TRUE(parsed(typed).isNarrowed()) << typed.toStdString();
    EXPECT_EQ(groupLabel(SearchGroup::Deals) + groupWord(SearchGroup::Events), "Dealsevents");
    QStringList words;
    for (const NarrowingWord& told : narrowingWords())
        words.append(told.word);
    EXPECT_EQ(words, (QStringList { "from", "in", "has", "before", "after" }));
}
