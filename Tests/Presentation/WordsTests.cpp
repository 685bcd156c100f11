#include "Foundation/Literals.h"
#include "Presentation/BodyText.h"
#include "Presentation/ContactFace.h"
#include "Presentation/DateWords.h"
#include "Presentation/Downloads.h"
#include "Presentation/MailText.h"
#include "Presentation/PlayTime.h"
#include "Presentation/ShellWord.h"
#include "Presentation/SizeWords.h"
#include "Support/Environment.h"
#include "Support/Print.h"

#include <QDateTime>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

qint64 at(int year, int month, int day, int hour = 0, int minute = 0)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute)).toMSecsSinceEpoch();
}

}

TEST(ContactFace, initialsAreWhatAPersonWouldWrite)
{
    const std::pair<QString, QString> cases[] {
        { "Ana Ruiz", "AR" },
        { "ana maria de la cruz", "AC" },
        { "  Ana  ", "A" },
        { "(Ana) \"Ruiz\"", "AR" },
        { "🌸 Ana 🌸 Ruiz 🌸", "AR" },
        { "👩‍👩‍👧 ", "👩‍👩‍👧" },
        { "🎉🎉 🎂", "🎉" },
        { "e\u0301mile Zola", "E\u0301Z" },
        { "田中 太郎", "田太" },
        { "小林さくら", "小" },
        { "𠮷野 家", "𠮷家" },
        { "محمد علي", "م" },
        { "דוד לוי", "דל" },
        { "\u200fדוד לוי", "דל" },
        { "+49 171 1234567", "#" },
        { "24/7 Shop", "S" },
        { "5€ shop", "S" },
        { "5€", "#" },
        { "a1 2b", "A" },
        { "<\u00A9>", "\u00A9" },
        { "+", "?" },
        { "...", "?" },
        { "", "?" },
    };
    for (const auto& [name, face] : cases)
        EXPECT_EQ(initials(name), face) << name.toStdString();
    EXPECT_EQ(initials(QString(5'000'000, u'x') + u" y"_s), "XY");
}

TEST(ContactFace, aHueStaysWithItsId)
{
    EXPECT_EQ(hue("ct:WHATSAPP:1"), hue("ct:WHATSAPP:1"));
    QSet<int> hues;
    for (int i = 0; i < 200; ++i) {
        const int value = hue(u"ct:WHATSAPP:%1"_s.arg(i));
        ASSERT_TRUE(value >= 0 && value < 360);
        hues.insert(value);
    }
    EXPECT_GT(hues.size(), 120) << "faces of one list differ";
    EXPECT_EQ(hue(""), 61);
    EXPECT_EQ(hue("a"), 340) << "of the 32-bit FNV-1a hash, here and on every other machine";
}

TEST(DateWords, aTimeIsToldByHowLongAgoItsDayWas)
{
    const DateWords words(at(2025, 11, 21, 9, 30), QLocale(QLocale::English, QLocale::UnitedKingdom));
    EXPECT_EQ(words.listTime(at(2025, 11, 21)), "00:00");
    EXPECT_EQ(words.listTime(at(2025, 11, 20, 23, 59)), "Yesterday");
    EXPECT_EQ(words.listTime(at(2025, 11, 19, 14)), "Wednesday");
    EXPECT_EQ(words.listTime(at(2025, 11, 15)), "Saturday");
    EXPECT_EQ(words.listTime(at(2025, 11, 14, 23, 59)), "14/11/2025");
    EXPECT_EQ(words.listTime(at(2025, 11, 22, 1)), "22/11/2025") << "a day ahead is no weekday of the past";
    EXPECT_EQ(words.listTime(0), "");

    EXPECT_EQ(words.group(0), "No date");
    EXPECT_EQ(words.group(at(2025, 11, 21, 23, 59)), "Today");
    EXPECT_EQ(words.group(at(2025, 11, 20)), "Yesterday");
    EXPECT_EQ(words.group(at(2025, 11, 19)), "19 Nov 2025");
}

TEST(DateWords, howLongAgoIsToldInOneUnit)
{
    const qint64 now = at(2025, 11, 21, 9, 30);
    const DateWords words(now);
    const qint64 minute = 60'000;
    for (const auto& [ms, told] :
        { std::pair(-5 * minute, "just now"), std::pair(minute - 1, "just now"), std::pair(minute, "1 minute ago"),
            std::pair(60 * minute - 1, "59 minutes ago"), std::pair(60 * minute, "1 hour ago"),
            std::pair(48 * 60 * minute - 1, "47 hours ago"), std::pair(48 * 60 * minute, "2 days ago") })
        EXPECT_EQ(words.ago(now - ms), told);
    EXPECT_EQ(words.clockTime(at(2025, 1, 1, 7, 5)), "07:05");
    EXPECT_EQ(words.today(), QDate(2025, 11, 21));
    EXPECT_EQ(words.listTime(1).isEmpty(), false);
    EXPECT_EQ(words.group(-1), "No date");
}

TEST(DateWords, aMediumDateFollowsTheLocale)
{
    const auto medium = [](QLocale::Language language, QLocale::Country country) {
        return DateWords(0, QLocale(language, country)).mediumDate(QDate(2025, 3, 8));
    };
    EXPECT_EQ(DateWords(0, QLocale::c()).mediumDate(QDate(2025, 3, 8)), "8 Mar 2025");
    EXPECT_EQ(medium(QLocale::English, QLocale::UnitedStates), "Mar 8, 2025");
    EXPECT_EQ(medium(QLocale::Spanish, QLocale::Spain), "8 de mar de 2025");
    EXPECT_EQ(medium(QLocale::Japanese, QLocale::Japan), "2025年3月8日");
}

TEST(DateWords, theNextDayBeginsWhenTheClocksChangeToo)
{
    EXPECT_EQ(nextMidnightMs(at(2025, 3, 30, 0, 30)), at(2025, 3, 31)) << "a day of 23 hours";
    EXPECT_EQ(nextMidnightMs(at(2025, 10, 26)), at(2025, 10, 27)) << "a day of 25 hours";
}

TEST(MailText, aQuotedTailReachesToTheEndAndFollowsSomething)
{
    const std::tuple<QString, QString, QString> cases[] {
        { "Yes.\n\n> On Monday Ana wrote:\n> > older\n>\n> newer\n\n", "Yes.",
            "On Monday Ana wrote:\n> older\n\nnewer" },
        { "Yes.\n> asked\nand no.", "Yes.\n> asked\nand no.", "" },
        { "\n> all of it\n> is quoted", "\n> all of it\n> is quoted", "" },
        { "a > b\n", "a > b", "" },
        { "", "", "" },
    };
    for (const auto& [body, head, quote] : cases) {
        const qsizetype start = MailText::quoteStart(body);
        EXPECT_EQ(MailText::withoutQuote(body).trimmed(), head.trimmed());
        EXPECT_EQ(MailText::unquoted(body.sliced(start)), quote);
    }
}

TEST(MailText, subjectsAreComparedWithoutWhatRepliesPutBeforeThem)
{
    for (const QString& subject : { "Plan", "Re: Plan", " RE[2]:Fwd: AW:  Plan ", "Fw : Plan" })
        EXPECT_EQ(MailText::plainSubject(subject), "Plan");
    EXPECT_EQ(MailText::plainSubject("Recipe: Plan"), "Recipe: Plan");
    EXPECT_EQ(MailText::plainSubject("Re:"), "");
}

TEST(Downloads, aFileStandsBesideWhatIsThereUnderAPlainName)
{
    const QTemporaryDir home;
    const Environment places { { "HOME", home.path().toUtf8() }, { "XDG_CONFIG_HOME", home.path().toUtf8() } };
    EXPECT_EQ(saveDownload("../a/b: c", "txt", "one"), "Saved to " + home.filePath("Downloads/-a-b- c.txt"));
    EXPECT_EQ(saveDownload("../a/b: c", "txt", "two"), "Saved to " + home.filePath("Downloads/-a-b- c (2).txt"));
    EXPECT_EQ(fileNameOf(" ... "), "Untitled");
    qputenv("HOME", "/proc");
    EXPECT_TRUE(saveDownload("a", "txt", "one").startsWith("Couldn't save it: "));
}

TEST(BodyText, whatIsNotPrintedIsLeftOutAndLinesEndInOneWay)
{
    EXPECT_EQ(BodyText::printable(u"a\r\nb\rc\u2028d\u2029e\u0085f\tg"_s), "a\nb\nc\nd\ne\nf\tg");
    EXPECT_EQ(BodyText::printable(u"a\u202Ab\u202Dc\u202Ed\u0007\r"_s), u"a\u202Abcd\n"_s);
    EXPECT_EQ(BodyText::printable(QString(QChar(0xd83d)) + u"😀x"_s + QChar(0xde00)), u"\uFFFD😀x\uFFFD"_s);
}

TEST(BodyText, aTextIsCutBetweenCharactersAndTheRestIsCounted)
{
    const auto cut = [](const QString& text, qsizetype length) {
        const BodyText::Shown shown = BodyText::shown(text, length);
        return shown.text + '|' + QString::number(shown.hidden);
    };
    EXPECT_EQ(cut("abc", 3), "abc|0");
    EXPECT_EQ(cut("abcd", 3), "abc|1");
    EXPECT_EQ(cut(QString(1000, 'x'), 2), "xx|998");
    EXPECT_EQ(cut(u"ab😀c"_s, 3), "ab|3");
    EXPECT_EQ(cut(u"👩\u200D👩\u200D👧x"_s, 2), u"👩\u200D👩\u200D👧|1"_s) << "the first one is shown whole";
    EXPECT_EQ(cut(u'a' + QString(200, QChar(0x301)), 10), u'a' + QString(9, QChar(0x301)) + u"|191"_s);
    EXPECT_EQ(cut(QString(100, 'x') + u"é"_s.normalized(QString::NormalizationForm_D) + u'y', 101),
        QString(100, 'x') + u"|3"_s);
    EXPECT_EQ(BodyText::moreText(0), "");
    EXPECT_EQ(BodyText::moreText(1200), "Show more (1,200 characters)");
}

TEST(Words, timesAndSizesAreShort)
{
    for (const auto& [ms, told] : { std::pair(-5000, "0:00"), std::pair(7999, "0:07"), std::pair(80'000, "1:20"),
             std::pair(3'599'999, "59:59"), std::pair(3'600'000, "1:00:00"), std::pair(3'723'000, "1:02:03") })
        EXPECT_EQ(playTime(ms), told);
    EXPECT_EQ(sizeWords(340 * 1024), "340 kB");
    EXPECT_EQ(sizeWords(1024 * 1024 - 1), "1,024 kB");
    EXPECT_EQ(sizeWords(1024 * 1024), "1.0 MB");
    EXPECT_EQ(typedShellWord(u" it's\n\u202Eone  word "_s), R"('it'"'"'s one word')");
}
