#include "Probe.h"

#include "Terminal/Core/Emulator.h"

namespace corvane::terminal {

TEST(Screen, theLastColumnHoldsItsWrapUntilTheNextCharacter)
{
    Probe terminal(5, 3);
    terminal << "abcde";
    EXPECT_EQ(terminal.where(), "0,4");
    EXPECT_TRUE(terminal.cursor().pendingWrap);
    terminal << "\r\nf\x1b[1;5Hx\x1b[KyZ";
    EXPECT_EQ(terminal.lines(0, 1), "abcdy|Z|");
    terminal << "\x1b[?7l\x1b[3;4Hpqrs";
    EXPECT_EQ(terminal.line(2), "   ps");
}

TEST(Screen, wideCharactersAreNeverHalved)
{
    Probe terminal(6, 3);
    terminal << "漢字x\x1b[1;2Hy";
    EXPECT_EQ(terminal.line(0), " y字x");
    terminal << "\x1b[1;4H\x1b[P";
    EXPECT_EQ(terminal.line(0), " y x");
    terminal << "\x1b[2;1Habcde漢";
    EXPECT_EQ(terminal.lines(1, 2), "abcde|漢|");
    RowView row;
    terminal.readRow(2, row);
    EXPECT_TRUE(row.continued);
}

TEST(Screen, clustersTakeOneCellWhereTheModeIsSet)
{
    Probe terminal;
    terminal << "e\u0301|👩‍🚀|\u2764\ufe0f|🇩🇪|";
    EXPECT_EQ(terminal.where(), "0,12");
    terminal << "\r\n\x1b[?2027he\u0301|👩‍🚀|\u2764\ufe0f|🇩🇪|";
    EXPECT_EQ(terminal.line(1), "e\u0301|👩‍🚀|\u2764\ufe0f|🇩🇪|");
    EXPECT_EQ(terminal.where(), "1,11");
    EXPECT_EQ(terminal.ask("\x1b[?2027$p\x1b[62;1\"p\x1b[?2027$p\x1b[65;1\"p"), "\x1b[?2027;1$y");
    Probe first; // as the first cluster
    first << "\x1b[?2027h👩‍🚀|";
    EXPECT_EQ(first.where(), "0,3");
}

TEST(Screen, marginsHoldWhatIsInsertedAndDeleted)
{
    Probe terminal(8, 5);
    terminal << "aaaaaaaa\r\nbbbbbbbb\r\ncccccccc\r\ndddddddd\r\neeeeeeee\x1b[?69h\x1b[3;6s\x1b[2;4r";
    terminal << "\x1b[2;3H\x1b[L";
    EXPECT_EQ(terminal.lines(0, 4), "aaaaaaaa|bb    bb|ccbbbbcc|ddccccdd|eeeeeeee|");
    terminal << "\x1b[3;4H\x1b[@\x1b[4;6H\n";
    EXPECT_EQ(terminal.lines(0, 4), "aaaaaaaa|bbb bbbb|cccccccc|dd    dd|eeeeeeee|");
    terminal << "\x1b[?6h\x1b[HX\x1b[?6l";
    EXPECT_EQ(terminal.line(1), "bbX bbbb");
    EXPECT_EQ(terminal.ask("\x1bP$qs\x1b\\\x1bP$qr\x1b\\"), "\x1bP1$r3;6s\x1b\\\x1bP1$r2;4r\x1b\\");
}

TEST(Screen, aLineOfDoubleWidthHidesItsRightHalfUntilItIsSingleAgain)
{
    Probe terminal(8, 3);
    terminal << "abc漢efg\x1b#6";
    EXPECT_EQ(terminal.line(0), "abc");
    EXPECT_EQ(terminal.where(), "0,3");
    terminal << "\x1b#5";
    EXPECT_EQ(terminal.line(0), "abc  efg");
    terminal << "\x1b#6\x1b[3;1H\r\n";
    EXPECT_EQ(terminal.line(-1), "abc");
}

TEST(Screen, theCursorStaysInARowOfDoubleWidthThatComesToIt)
{
    // By DECFI, by scrolling up and down, by reverse wrap, and by returning from the other screen, also with side
    // margins.
    for (const char* bytes : { "\x1b#6\x1b[1;4H\x1b"
                               "9",
             "\x1b[2;1H\x1b#6\x1b[1;8H\x1b[S", "\x1b#6\x1b[2;8H\x1b[T", "\x1b#6\x1b[2;1H\x1b[?45h\b",
             "\x1b#6\x1b[?47h\x1b[1;8H\x1b[?47l", "\x1b#6\x1b[?47h\x1b[?69h\x1b[6;8s\x1b[1;8H\x1b[?47l\r" }) {
        Probe terminal(8, 3);
        terminal << bytes << "abcdefghijklm";
        EXPECT_EQ(terminal.fault(), nullptr) << bytes + 1;
    }
    Probe terminal(20, 3);
    terminal << "\x1b#6\x1b[1;10H";
    terminal.resize({ 12, 3 });
    terminal << "abcdefghijklm";
    EXPECT_EQ(terminal.fault(), nullptr);
}

TEST(Screen, protectedTextOutlivesSelectiveErasing)
{
    Probe terminal(10, 2);
    terminal << "\x1b[1\"qab\x1b[0\"qcd\x1b[?2K";
    EXPECT_EQ(terminal.line(0), "ab");
    terminal << "\x1b[2K\x1b[H\x1bVxy\x1bWz\x1b[2K";
    EXPECT_EQ(terminal.line(0), "xy");
    terminal << "\x1b[1;1;1;1$z";
    EXPECT_EQ(terminal.line(0), " y");
}

TEST(Screen, renditionsTakeColonsAndSemicolons)
{
    Probe terminal;
    terminal << "\x1b[38;5;99;48:2::10:20:30;4:3;58:5:7;1;3;9;53mx\x1b[0;21my\x1b[38;2;1;2;3mz";
    const Style style = terminal.styleAt(0, 0);
    EXPECT_EQ(style.foreground, Color::indexed(99));
    EXPECT_EQ(style.background, Color::rgb(10, 20, 30));
    EXPECT_EQ(style.underline, Underline::Curly);
    EXPECT_EQ(style.underlineColor, Color::indexed(7));
    EXPECT_EQ(style.attributes, Style::Bold | Style::Italic | Style::Strike | Style::Overline);
    EXPECT_EQ(terminal.styleAt(0, 1).underline, Underline::Double);
    EXPECT_EQ(terminal.styleAt(0, 2).foreground, Color::rgb(1, 2, 3));
    EXPECT_EQ(
        terminal.ask("\x1b[0;1;38:5:99;48:2::10:20:30m\x1bP$qm\x1b\\"), "\x1bP1$r0;1;38:5:99;48:2::10:20:30m\x1b\\");
}

TEST(Screen, erasingLeavesTheBackground)
{
    Probe terminal(6, 3);
    terminal << "\x1b[44mab\x1b[K\n";
    EXPECT_EQ(terminal.styleAt(0, 5).background, Color::indexed(4));
    terminal << "\x1b[3;1H\n";
    EXPECT_EQ(terminal.styleAt(2, 3).background, Color::indexed(4));
}

TEST(Screen, rectanglesAreFilledCopiedAndSummedUp)
{
    Probe terminal(8, 4);
    terminal << "\x1b[65;1;1;2;3$x\x1b[1;1;2;3;1;3;5;1$v";
    EXPECT_EQ(terminal.lines(0, 3), "AAA|AAA|    AAA|    AAA|");
    EXPECT_EQ(terminal.ask("\x1b[10#y\x1b[7;1;1;1;1;2*y"), "\x1bP7!~FF7E\x1b\\");
    EXPECT_EQ(terminal.ask("\x1b[8;1;4;4;4;4*y"), "\x1bP8!~0000\x1b\\");
    EXPECT_EQ(terminal.ask("\x1b[1#y\x1b[9;1;1;1;1;1*y"), "\x1bP9!~0041\x1b\\");
    terminal << "\x1b[2*x\x1b[1;1;1;2;1$r\x1b[1;1;1;1;7$t\x1b[0#y";
    EXPECT_EQ(terminal.styleAt(0, 0).attributes, Style::Bold | Style::Reverse);
    EXPECT_EQ(terminal.ask("\x1b[1;1;1;1;1;1*y"), "\x1bP1!~FF1F\x1b\\");
}

TEST(Screen, reportsAnswerExactly)
{
    Probe terminal;
    terminal << "\x1b[3;7H";
    EXPECT_EQ(terminal.ask("\x1b[6n\x1b[?6n\x1b[5n"), "\x1b[3;7R\x1b[?3;7;1R\x1b[0n");
    EXPECT_EQ(terminal.ask("\x1b[c\x1b[>c\x1b[=c"),
        "\x1b[?65;1;2;4;6;9;15;16;17;18;21;22;28;29;52c\x1b[>65;380;0c\x1bP!|00000000\x1b\\");
    EXPECT_EQ(
        terminal.ask("\x1b[?7$p\x1b[?9999$p\x1b[4$p\x1b[?60$p"), "\x1b[?7;1$y\x1b[?9999;0$y\x1b[4;2$y\x1b[?60;4$y");
    EXPECT_EQ(
        terminal.ask("\x1bP+q544e;5858\x1b\\"), "\x1bP1+r544e=787465726d2d323536636f6c6f72\x1b\\\x1bP0+r5858\x1b\\");
    EXPECT_EQ(terminal.ask("\x1b[18t\x1b[16t"), "\x1b[8;5;20t\x1b[6;20;10t");
    EXPECT_EQ(terminal.ask("\x1b[21t"), "");
    EXPECT_EQ(terminal.ask("\x1b]4;1;?\x07\x1b]11;#102030\x1b\\\x1b]11;?\x1b\\"),
        "\x1b]4;1;rgb:cdcd/0000/0000\x07\x1b]11;rgb:1010/2020/3030\x1b\\");
    EXPECT_EQ(terminal.ask("\x1b[2$w"), "\x1bP2$u9/17\x1b\\");
    EXPECT_EQ(terminal.ask("\x1b[1$w"), "\x1bP1$u3;7;1;@;@;@;0;2;L;BBAA\x1b\\");
}

TEST(Screen, theAlternateScreenLeavesTheOtherAsItWas)
{
    Probe terminal;
    terminal << "shell\x1b[?1049h\x1b[2J\x1b[HTUI\r\n\n\n\n\n\n\x1b[?1049l";
    EXPECT_EQ(terminal.line(0), "shell");
    EXPECT_EQ(terminal.where(), "0,5");
    EXPECT_EQ(terminal.historyRows(), 0u);
}

TEST(Screen, titlesAreCleanedAndKept)
{
    Probe terminal;
    terminal << "\x1b]2;one\x1b\\\x1b[22t\x1b]2;t\xc2\x9bw\xff\x01o\x07";
    EXPECT_EQ(terminal.title(), "tw\ufffdo");
    terminal << "\x1b[23t";
    EXPECT_EQ(terminal.title(), "one");
}

TEST(Screen, nationalSetsAndGraphicsTranslate)
{
    Probe terminal;
    terminal << "\x1b(0lqk\x1b(B\x1b)0\x0eq\x0fq\r\n\x1b[?42h\x1b(K[]\x1b(B[]";
    EXPECT_EQ(terminal.line(0), "┌─┐─q");
    EXPECT_EQ(terminal.line(1), "ÄÜ[]");
}

TEST(Screen, manyStylesAreCollectedWithoutLosingThoseInSight)
{
    Probe terminal(20, 4);
    for (int i = 0; i < 30'000; ++i)
        terminal.feed("\x1b[38;2;" + std::to_string(i % 256) + ';' + std::to_string(i / 256) + ";9mx");
    EXPECT_EQ(terminal.fault(), nullptr);
    EXPECT_LT(terminal.emulator().styles.live(), 12'000u);
    terminal << "\x1b[1;1H\x1b[38;2;7;8;9mA\x1b[m";
    EXPECT_EQ(terminal.styleAt(0, 0).foreground, Color::rgb(7, 8, 9));
}

}
