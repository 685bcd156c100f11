#include "Calls/CallTranscriptChunker.h"

#include "Support/Print.h"

#include <gtest/gtest.h>

using namespace corvane;
using CallTranscriptChunker::characterCount;
using CallTranscriptChunker::chunks;

namespace {

QList<qsizetype> lengths(const QStringList& texts)
{
    QList<qsizetype> counts;
    for (const QString& text : texts)
        counts.append(characterCount(text));
    return counts;
}

}

TEST(CallTranscriptChunker, aTextIsCutWhereItHurtsLeast)
{
    EXPECT_TRUE(chunks(" \n ", 10).isEmpty());
    EXPECT_EQ(chunks(" a: b\nc: d ", 10), QStringList("a: b\nc: d")) << "what fits whole is not cut";
    EXPECT_EQ(chunks("Ana: one two\nhttp://x.org\n12:30 five\nBo: three", 40),
        QStringList({ "Ana: one two\nhttp://x.org\n12:30 five", "Bo: three" }))
        << "an address and a clock time begin no turn";
    const QString strange = "Ana: one\nA.b: x\n\\d: y\n12: z\n : w";
    EXPECT_EQ(chunks(strange + "\nBo: f", 36), QStringList({ strange, "Bo: f" })) << "none of them is a name";
    const QString name(48, u'x');
    const QString next = ": c\nd: " + QString(50, u'y');
    EXPECT_EQ(chunks("a: b\n" + name + next, 60).first(), "a: b\n\n" + name + ": c");
    EXPECT_EQ(chunks("a: b\n" + name + 'x' + next, 60).first(), "a: b\n" + name + "x: c") << "no name is that long";
    EXPECT_EQ(chunks("Ana: one\nBo: two\nCy: three", 18), QStringList({ "Ana: one\n\nBo: two", "Cy: three" }));
}

TEST(CallTranscriptChunker, turnsThatAreTooLongAreCutByLineSentenceWordAndCharacter)
{
    EXPECT_EQ(chunks("line one\nline two\nline three", 17), QStringList({ "line one\nline two", "line three" }));
    EXPECT_EQ(chunks("One is 1.5 long. Two! Three? Four", 17), QStringList({ "One is 1.5 long.", "Two! Three? Four" }));
    EXPECT_EQ(chunks("One two three. Four five six.", 20), QStringList({ "One two three.", "Four five six." }))
        << "two sentences are not cut";
    EXPECT_EQ(chunks("aaa bbb ccc ddd.", 7), QStringList({ "aaa bbb", "ccc", "ddd." })) << "one is";
    EXPECT_EQ(chunks("ab. cd", 3), QStringList({ "ab.", "cd" }));
    EXPECT_EQ(chunks("aaa  bbb\nccc dddd", 8), QStringList({ "aaa  bbb", "ccc dddd" })) << "exactly as long";
    EXPECT_EQ(chunks("aaa bbb ccc ddd", 7), QStringList({ "aaa bbb", "ccc ddd" }));
    EXPECT_EQ(lengths(chunks(QString(20'000, u'x'), 6000)), QList<qsizetype>({ 6000, 6000, 6000, 2000 }));
    const QString family = QString::fromUtf8("👩‍👩‍👧‍👦");
    EXPECT_EQ(lengths(chunks(family.repeated(5), 2)), QList<qsizetype>({ 2, 2, 1 })) << "no character is cut";
}
