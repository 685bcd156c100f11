#include "Foundation/Literals.h"
#include "Support/Print.h"
#include "Terminals/TerminalTranscriptBuffer.h"

#include <gtest/gtest.h>

namespace corvane {

TEST(Transcript, theLastCharactersStayWhateverCameBeforeThem)
{
    TerminalTranscriptBuffer transcript;
    transcript.received(std::string(6000, 'a'));
    transcript.received(std::string(24'000, 'b'));
    EXPECT_EQ(transcript.snapshot(24'000), QString(24'000, u'b'));
    transcript.received("c");
    EXPECT_EQ(transcript.snapshot(24'000), QString(23'999, u'b') + u'c');
    EXPECT_EQ(transcript.snapshot(10).size(), 500);

    // A flood of output is truncated now and then, without changing the remaining text. A cluster counts as one
    // character.
    TerminalTranscriptBuffer flooded;
    const QString family = u"👩‍👩‍👧"_s;
    for (int i = 0; i < 40; ++i)
        flooded.received(std::string(64'000, 'x'));
    for (int i = 0; i < 24'000; ++i)
        flooded.received(family.toStdString());
    EXPECT_EQ(flooded.snapshot(24'000), family.repeated(24'000));
}

TEST(Transcript, whatMovesTheCursorIsLeftOutAndSoIsWhatIsNoText)
{
    EXPECT_EQ(cleanTranscript(u"\x1b[31mred\x1b[0m a\bb\a\x1b~c"_s), u"red abc"_s);
    TerminalTranscriptBuffer transcript;
    transcript.received("good ");
    transcript.received("bad \xff\xfe");
    transcript.received("gr\xc3"); // split between two reads
    transcript.received("\xbc\xc3\x9f\r\n");
    EXPECT_EQ(transcript.snapshot(500), u"good grüß"_s);
}

TEST(Transcript, aTypedLineStandsOnceWhetherTheShellShowsItOrNot)
{
    TerminalTranscriptBuffer transcript;
    transcript.received("$ ");
    for (const char letter : std::string_view("ls")) {
        transcript.sent(std::string(1, letter), false);
        transcript.received(std::string(1, letter));
    }
    transcript.sent("\r", false);
    transcript.received("\r\nfile\r\n$ ");
    transcript.sent("quiet", false);
    EXPECT_EQ(transcript.snapshot(500), u"$ ls\r\nfile\r\n$ quiet"_s);
    transcript.sent("\r", false);
    EXPECT_EQ(transcript.snapshot(500), u"$ ls\r\nfile\r\n$ quiet"_s);
}

TEST(Transcript, aPasswordIsHiddenWhereTheTerminalHidesItAndBehindAQuestionForOne)
{
    TerminalTranscriptBuffer transcript;
    transcript.received("Name: ");
    transcript.sent("hunter1\r", true);
    transcript.received("\r\n[sudo] password for ana: ");
    transcript.sent("hunter", false);
    EXPECT_EQ(transcript.snapshot(500), u"Name: [hidden]\r\r\n[sudo] password for ana: [hidden]"_s);
    transcript.sent("2\r", false);
    transcript.received("\r\n\x1b[1mPassphrase for key 'a':\x1b[0m **");
    transcript.sent("hunter3\r", false);
    transcript.received("\r\n$ ");
    transcript.sent("whoami\r", false);
    const QString text = transcript.snapshot(500);
    EXPECT_FALSE(text.contains(u"hunter"_s)) << text.toStdString();
    EXPECT_EQ(text.count(u"[hidden]"_s), 3);
    EXPECT_TRUE(text.endsWith(u"whoami"_s));
}

TEST(Transcript, aCharacterThatComesInPiecesIsWhole)
{
    for (const std::string whole : { "\xc3\xbc", "\xe2\x82\xac", "\xf0\x9f\x98\x80" }) {
        for (size_t cut = 1; cut < whole.size(); ++cut) {
            TerminalTranscriptBuffer transcript;
            transcript.received("a" + whole.substr(0, cut));
            transcript.received({});
            transcript.received(whole.substr(cut) + "b");
            EXPECT_EQ(transcript.snapshot(500), "a" + QString::fromStdString(whole) + "b") << cut;
        }
    }
    for (const std::string wrong : { "\x80", "\x80\x80\x80\x80", "\xf5", "\xff\x80" }) {
        TerminalTranscriptBuffer transcript;
        transcript.received(wrong);
        transcript.received("next");
        EXPECT_EQ(transcript.snapshot(500), u"next"_s) << "it is not waited for";
    }
    EXPECT_EQ(TerminalTranscriptBuffer().snapshot(500), QString());
}

TEST(Transcript, aSnapshotHasAtLeastFiveHundredCharactersAndNoMoreThanAreKept)
{
    const auto size = [](qsizetype kept, qsizetype wanted) {
        TerminalTranscriptBuffer transcript(kept);
        transcript.received(std::string(2000, 'x'));
        return transcript.snapshot(wanted).size();
    };
    EXPECT_EQ(size(1000, 499), 500);
    EXPECT_EQ(size(1000, 501), 501);
    EXPECT_EQ(size(1000, 1001), 1000);
    EXPECT_EQ(size(100, 1), 100);
    TerminalTranscriptBuffer lines(600);
    for (int n = 0; n < 700; ++n)
        lines.received("\r\n");
    lines.received("end");
    EXPECT_EQ(lines.snapshot(600), u"end"_s) << "a line end is one character";
    TerminalTranscriptBuffer pairs(500);
    pairs.received("first");
    for (int n = 0; n < 498; ++n)
        pairs.received("\r\n");
    EXPECT_EQ(pairs.snapshot(500), u"st"_s);
    TerminalTranscriptBuffer whole(500);
    whole.received("a");
    for (int n = 0; n < 300; ++n)
        whole.received("\r\n");
    whole.received("z");
    EXPECT_EQ(whole.snapshot(500), u'a' + u"\r\n"_s.repeated(300) + u'z');
}

TEST(Transcript, aLineEndsWithItsKeyAndWhatIsTypedAheadIsNoPassword)
{
    for (const char* end : { "\r", "\n", "\x03", "\x04" }) {
        TerminalTranscriptBuffer transcript;
        transcript.received("Password: ");
        transcript.sent(std::string("one") + end + "two", false);
        EXPECT_EQ(transcript.snapshot(500), u"Password: [hidden]"_s + QLatin1StringView(end) + u"two"_s);
    }
    TerminalTranscriptBuffer late;
    late.sent("ab", false);
    EXPECT_EQ(late.snapshot(500), u"ab"_s);
    late.sent("cd", true);
    EXPECT_EQ(late.snapshot(500), u"[hidden]"_s) << "of the whole line";
    late.sent("ef\r", false);
    late.received("\r\n$ ");
    late.sent("gh\rij", false);
    EXPECT_EQ(late.snapshot(500), u"[hidden]\r\r\n$ gh\rij"_s);

    TerminalTranscriptBuffer far;
    far.received("Password: " + std::string(300, '*'));
    far.sent("shown\r", false);
    EXPECT_TRUE(far.snapshot(500).endsWith(u"*shown"_s)) << "only the end of the output can be the question";
    TerminalTranscriptBuffer endless;
    endless.sent(std::string(4096, 'x'), false);
    endless.received(std::string(4096, 'x'));
    endless.sent("\r", false);
    EXPECT_EQ(endless.snapshot(24'000).size(), 8192) << "a line without an end is taken before its echo";
    for (const auto& [text, asks] : { std::pair("Enter PIN:", true), std::pair("pin", false), std::pair("spin:", false),
             std::pair("Passwort? ***", true), std::pair("token:\n", false), std::pair("verification code: ", true) })
        EXPECT_EQ(endsInPasswordPrompt(QString::fromLatin1(text)), asks) << text;
}

}
