#include "Probe.h"

namespace corvane::terminal {

namespace {

std::string selected(Probe& terminal, SelectionMode mode, Position from, Position to)
{
    terminal.selection().set(mode, from, to);
    return terminal.selection().text();
}

std::vector<SearchMatch> found(Probe& terminal, std::string_view text, Pattern::Kind kind = Pattern::Kind::Literal,
    Pattern::Case sensitivity = Pattern::Case::Insensitive)
{
    auto pattern = Pattern::make(text, kind, sensitivity);
    EXPECT_TRUE(pattern) << text;
    return pattern ? terminal.search(*pattern, 1000) : std::vector<SearchMatch>();
}

std::string firstOf(std::string_view expression, std::string_view text)
{
    auto pattern = Pattern::make(expression, Pattern::Kind::Regex, Pattern::Case::Insensitive);
    if (!pattern)
        return "malformed";
    const auto match = pattern->find(text);
    return match ? std::string(text.substr(match->first, match->second - match->first)) : "none";
}

}

TEST(Selection, wrappedRowsAreJoinedAndPaddingIsLeftOut)
{
    Probe terminal(10, 5);
    terminal << "a line that wraps\r\nend  \r\n\x1b[5Cx";
    EXPECT_EQ(selected(terminal, SelectionMode::Character, { 0, 2 }, { 2, 9 }), "line that wraps\nend  ");
    EXPECT_EQ(selected(terminal, SelectionMode::Word, { 1, 0 }, { 1, 0 }), "that");
    EXPECT_EQ(selected(terminal, SelectionMode::Line, { 1, 3 }, { 1, 3 }), "a line that wraps");
    EXPECT_EQ(selected(terminal, SelectionMode::Block, { 2, 2 }, { 0, 0 }), "a l\nt w\nend");
    EXPECT_EQ(selected(terminal, SelectionMode::Line, { 3, 0 }, { 3, 0 }), "     x");
}

TEST(Selection, itStaysOnItsTextAndGoesWithIt)
{
    Probe terminal(20, 4);
    terminal << "one\r\nsome words here\r\n";
    EXPECT_EQ(selected(terminal, SelectionMode::Character, { 1, 5 }, { 1, 9 }), "words");
    terminal << "a\r\nb\r\nc\r\nd\r\ne\r\n";
    EXPECT_EQ(terminal.selection().text(), "words");
    terminal.resize({ 7, 3 });
    EXPECT_EQ(terminal.selection().text(), "words");
    terminal << "\x1b[3J";
    EXPECT_FALSE(terminal.selection().range());
}

TEST(Search, matchesAreFoundAcrossWrapsAndInTheHistory)
{
    Probe terminal(10, 3);
    terminal << "needle one\r\nthere is Needle in it\r\n漢字needle\r\nx\r\ny needle";
    const auto matches = found(terminal, "needle");
    ASSERT_EQ(matches.size(), 4u);
    EXPECT_EQ(terminal.line(matches[0].row), "needle one");
    EXPECT_EQ(matches[1].endRow, matches[1].row + 1);
    EXPECT_EQ(matches[2].column, 4);
    EXPECT_EQ(matches[3].row, 2);
    EXPECT_EQ(matches[3].column, 2);
    EXPECT_EQ(matches[3].endColumn, 8);
    EXPECT_EQ(found(terminal, "Needle", Pattern::Kind::Literal, Pattern::Case::Sensitive).size(), 1u);
    EXPECT_EQ(found(terminal, "n[a-e]+dle$", Pattern::Kind::Regex).size(), 2u);
}

TEST(Search, outputBetweenItsStepsMovesTheMatches)
{
    constexpr size_t lines = 5000;
    Probe terminal(60, 3);
    for (size_t i = 0; i < lines; ++i)
        terminal.feed("needle " + std::to_string(i) + " of so many that they fill pages\r\n");
    SearchRun run(*Pattern::make("needle", Pattern::Kind::Literal, Pattern::Case::Sensitive), 100'000);
    size_t steps = 0;
    for (; terminal.search(run); ++steps)
        terminal << "needle of another hundred and sixty characters, so that " << std::string(110, '-') << "\r\n";
    EXPECT_GT(steps, 3u);
    ASSERT_EQ(run.matches().size(), lines + steps);
    for (const SearchMatch& match : run.matches())
        ASSERT_TRUE(terminal.line(match.row).starts_with("needle")) << match.row;
    EXPECT_EQ(terminal.line(run.matches()[0].row), "needle 0 of so many that they fill pages");
    const auto newest = terminal.search(*Pattern::make("needle", Pattern::Kind::Regex, Pattern::Case::Sensitive), 2);
    ASSERT_EQ(newest.size(), 2u);
    EXPECT_EQ(newest[1].row, run.matches().back().row);
}

TEST(Search, expressionsMatchTheLongest)
{
    EXPECT_EQ(firstOf("a(b|bc)d*", "xabcdd"), "abcdd");
    EXPECT_EQ(firstOf("^x?\\d{2,3}$", "1234"), "none");
    EXPECT_EQ(firstOf("\\w+@\\w+\\.(org|com)", "to ana@mail.org."), "ana@mail.org");
    EXPECT_EQ(firstOf("[^a-c]+", "abcxéyabc"), "xéy");
    EXPECT_EQ(firstOf(".ü.", "GRÜßÜx"), "none");
    EXPECT_EQ(firstOf("r.ß", "GRÜß"), "RÜß");
    EXPECT_EQ(firstOf("(a*)*b", std::string(5000, 'a')), "none");
    for (const char* bad : { "(", "a)", "[a", "*a", "a{3", "a{5,2}", "\\", "a{9999}", "((((a{200}){200}){200}){200})" })
        EXPECT_EQ(firstOf(bad, "a"), "malformed") << bad;
}

}
