#include "Probe.h"

#include <random>

namespace corvane::terminal {

namespace {

/// The text of history and screen, with wrapped rows joined.
std::string everything(Probe& terminal)
{
    return dumpText(terminal);
}

}

TEST(History, linesThatLeaveComeBackWithTheirStylesAndShapes)
{
    Probe terminal(10, 2);
    terminal << "plain\r\n\x1b[31mred\x1b[0m end\r\n漢字 e\u0301\r\nlong line of words\r\nx\r\ny";
    EXPECT_EQ(terminal.historyRows(), 5u);
    EXPECT_EQ(terminal.lines(-5, -1), "plain|red end|漢字 e\u0301|long line|of words|");
    EXPECT_EQ(terminal.styleAt(-4, 0).foreground, Color::indexed(1));
    EXPECT_EQ(terminal.styleAt(-4, 4).foreground, Color());
    RowView row;
    terminal.readRow(-1, row);
    EXPECT_TRUE(row.continued);
    terminal.resize({ 30, 2 });
    EXPECT_EQ(terminal.historyRows(), 4u);
    EXPECT_EQ(terminal.line(-1), "long line of words");
}

TEST(History, resizingInAnyOrderLosesNoLine)
{
    std::mt19937 randomness(3);
    std::string expected;
    Probe terminal(40, 10);
    for (int line = 0; line < 120; ++line) {
        std::string text
            = "line " + std::to_string(line) + ' ' + std::string(randomness() % 150, char('a' + line % 26));
        if (line % 7 == 0)
            text += "漢字かな";
        expected += text + '\n';
        terminal << text + "\r\n";
    }
    for (int i = 0; i < 60; ++i) {
        terminal.resize({ i % 7 ? 1 + int(randomness() % 120) : 1, 1 + int(randomness() % 50) });
        ASSERT_EQ(terminal.fault(), nullptr);
        ASSERT_EQ(everything(terminal), expected) << "after resize " << i;
        size_t rows = 0;
        terminal.eachHistoryRow([&](const RowView&) { ++rows; });
        ASSERT_EQ(terminal.historyRows(), rows);
    }
    terminal.resize({ 1000, 500 });
    terminal << "last";
    EXPECT_EQ(everything(terminal), expected + "last\n");
    terminal.resize({ 1, 1 });
    terminal << "漢 at last";
    terminal.resize({ 80, 5 });
    EXPECT_EQ(everything(terminal), expected + "last漢 at last\n");
}

TEST(History, theCursorStaysWithItsText)
{
    Probe terminal(20, 4);
    terminal << "some words that wrap around\x1b[1D";
    terminal.resize({ 9, 4 });
    terminal << "X";
    EXPECT_EQ(everything(terminal), "some words that wrap arounX\n");
    terminal.resize({ 40, 4 });
    EXPECT_EQ(terminal.where(), "0,27");
}

TEST(History, limitsHoldInLinesAndBytes)
{
    Config config;
    config.scrollbackLines = 100;
    Probe terminal(20, 2, config);
    for (int line = 0; line < 5000; ++line)
        terminal.feed(std::to_string(line) + "\r\n");
    EXPECT_EQ(terminal.historyRows(), 100u);
    EXPECT_EQ(terminal.line(-1), "4998");
    EXPECT_EQ(terminal.line(-100), "4899");
    config.scrollbackLines = 1'000'000;
    config.scrollbackBytes = 1 << 20;
    Probe small(200, 2, config);
    for (int line = 0; line < 4000; ++line)
        small.feed(std::string(1000, 'x') + "\r\n");
    EXPECT_LE(small.memory().history, size_t(1 << 20));
    EXPECT_GT(small.memory().history, size_t(900'000));
}

TEST(History, anEndlessLineIsKeptInParts)
{
    Probe terminal(50, 3);
    std::string text;
    for (int i = 0; i < 30'000; ++i)
        text += char('a' + i % 26);
    terminal << text;
    EXPECT_EQ(everything(terminal), text + '\n');
    terminal.resize({ 31, 5 });
    EXPECT_EQ(everything(terminal), text + '\n');
}

TEST(History, coldPagesReadLikeWarmOnes)
{
    Probe terminal(60, 2);
    for (int line = 0; line < 6000; ++line)
        terminal.feed(
            "\x1b[3" + std::to_string(line % 8) + "mline number " + std::to_string(line) + " of the history\r\n");
    const std::string warm = everything(terminal);
    const size_t bytes = terminal.memory().history;
    while (terminal.compressHistory(1)) { }
    EXPECT_LT(terminal.memory().history, bytes / 2);
    EXPECT_EQ(everything(terminal), warm);
    EXPECT_EQ(terminal.line(-5000), "line number 999 of the history");
}

TEST(History, promptMarksFollowTheirText)
{
    Probe terminal(20, 4);
    terminal << "\x1b]133;A\x07$ \x1b]133;B\x07ls\r\n\x1b]133;C\x07one\r\ntwo\r\n\x1b]133;D;3\x07\x1b]133;A\x07$ "
                "\x1b]133;B\x07";
    auto marks = terminal.marks();
    ASSERT_EQ(marks.size(), 5u);
    EXPECT_EQ(marks[1].kind, PromptMark::Input);
    EXPECT_EQ(marks[1].column, 2);
    EXPECT_EQ(marks[2].exitCode, 3);
    terminal << "a\r\n\x1b]133;C\x07"
                "b\r\nc\r\nd";
    Snapshot shown;
    terminal.snapshot(-4, shown);
    ASSERT_EQ(shown.prompts.size(), 1u);
    EXPECT_EQ(terminal.line(shown.top + shown.prompts[0].row), "$ ls");
    EXPECT_EQ(shown.prompts[0].exitCode, 3);
    terminal.snapshot(0, shown);
    EXPECT_TRUE(shown.prompts.empty());
    terminal.resize({ 3, 4 });
    marks = terminal.marks();
    ASSERT_EQ(marks.size(), 6u);
    EXPECT_EQ(terminal.line(marks[2].row), "one");
    EXPECT_EQ(terminal.line(marks[3].row), "$ a");
}

TEST(History, aPromptThatTheShellDrawsAnewDoesNotWrap)
{
    Probe terminal(20, 5);
    terminal << "out\r\n\x1b]133;A\x07~/some/folder\r\n$ \x1b]133;B\x07typed words";
    terminal.resize({ 8, 5 });
    EXPECT_EQ(terminal.lines(0, 4), "out|||||");
    EXPECT_EQ(terminal.where(), "2,7");
    Probe other(20, 5);
    other << "\x1b]133;A;redraw=0\x07$ \x1b]133;B\x07typed";
    other.resize({ 5, 5 });
    EXPECT_EQ(other.lines(0, 1), "$ typ|ed|");
}

}
