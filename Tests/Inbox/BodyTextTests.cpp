#include "Foundation/Literals.h"
#include "Presentation/BodyText.h"

#include "Inbox/Thread/ThreadRow.h"
#include "Inbox/Thread/UnifiedBubble.h"
#include "Support/Print.h"

#include <gtest/gtest.h>

using namespace corvane;

namespace {

ThreadRow rowOf(const QString& body, const ThreadSurroundings& surroundings = {})
{
    UnifiedMsgRow message;
    message.id = "wa:msg:1";
    message.direction = "IN";
    message.ts = 1'760'000'000'000;
    message.body = body;
    return threadRows(ThreadBuilder::build({ message }, 0), surroundings).last();
}

}

TEST(BodyText, controlCharactersAndBrokenOnesAreNotShown)
{
    EXPECT_EQ(BodyText::printable(u"a\tb\nc"_s), "a\tb\nc");
    EXPECT_EQ(BodyText::printable(u"a\r\nb\rc\u2028d\u2029e\u0085f"_s), "a\nb\nc\nd\ne\nf");
    EXPECT_EQ(BodyText::printable(QString::fromUtf16(u"a\0b\x1b[31mc\x7f\x9b d", 13)), "ab[31mc d");
    EXPECT_EQ(BodyText::printable(QString(QChar(0xd83d)) + "x" + QChar(0xde00)), "\uFFFDx\uFFFD");
    EXPECT_EQ(BodyText::printable(u"grin 😀 family 👩‍👩‍👧 e\u0301"_s),
        u"grin 😀 family 👩‍👩‍👧 e\u0301"_s);
}

TEST(BodyText, bothDirectionsAreKeptAndOnlyForcedOnesAreTakenOut)
{
    const QString mixed = u"price \u05E2\u05D1\u05E8\u05D9\u05EA 12 \u2067\u0627\u0644\u0633\u0639\u0631\u2069 ok"_s;
    EXPECT_EQ(BodyText::printable(mixed), mixed);
    EXPECT_EQ(BodyText::printable(u"invoice\u202Efdp.exe"_s), "invoicefdp.exe");
    UnifiedMsgRow document;
    document.mediaType = "document";
    document.mediaPath = u"/x/offer\u202Efdp.exe"_s;
    EXPECT_EQ(UnifiedBubble::mediaTitle(document), "offerfdp.exe") << "a name that hides what the file is";
}

TEST(BodyText, markupIsTextLikeAnyOther)
{
    const QString html = u"<b>hi</b> <img src=\"http://x/a.png\"> &amp; <script>alert(1)</script>"_s;
    EXPECT_EQ(rowOf(html).body, html);
    EXPECT_TRUE(rowOf(html).spoken.endsWith(": " + html));
}

TEST(BodyText, aLongTextIsCutBetweenCharactersAndTheRestIsAPressAway)
{
    EXPECT_EQ(BodyText::shown("short", 5).hidden, 0);
    for (qsizetype length = 3; length < 40; ++length) {
        const auto cut = BodyText::shown(u"👩‍👩‍👧"_s.repeated(10), length);
        EXPECT_EQ(cut.text, u"👩‍👩‍👧"_s.repeated(cut.text.size() / 8)) << length;
        EXPECT_EQ(cut.text.size() + cut.hidden, 80);
    }
    const QString strokes = u"a"_s + u"\u0301"_s.repeated(10'000);
    EXPECT_GT(BodyText::shown(strokes, 5000).text.size(), 4000) << "one character without an end";

    const QString book = u"many words "_s.repeated(100'000);
    const ThreadRow first = rowOf(book);
    EXPECT_EQ(first.body.size(), firstBodyLength);
    EXPECT_EQ(first.moreText, "Show more (1,090,000 characters)");
    EXPECT_LT(first.spoken.size(), 1100);
    ThreadSurroundings wide;
    wide.lengths.insert("wa:msg:1", book.size());
    EXPECT_EQ(rowOf(book, wide).body, book);
    EXPECT_EQ(rowOf(book, wide).moreText, "");
    EXPECT_EQ(rowOf("short").moreText, "");
}
