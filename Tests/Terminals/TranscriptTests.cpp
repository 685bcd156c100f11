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

}
