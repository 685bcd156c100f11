#include "Probe.h"

#include <random>

namespace corvane::terminal {

namespace {

/// Random sequences of valid, incomplete and invalid input.
std::string hostileStream(unsigned seed)
{
    constexpr std::string_view pieces[] = { "hello ", "\r\n", "\x1b[31;1m", "\x1b[0m", "\x1b[5;7H", "漢字", "e\u0301",
        "👩‍🚀", "\x1b[38:2::1:2:3m", "\x1b]0;title\x07", "\x1b]8;;http://a.b/\x1b\\", "\x1b]8;;\x1b\\",
        "\x1bP$qm\x1b\\", "\x1b[2J", "\x1b[K", "\x1b[3L", "\x1b[2M", "\x1b[4P", "\x1b[3@", "\x1b[?1049h", "\x1b[?1049l",
        "\x1b[2;4r", "\x1b[r", "\x1b(0lqk\x1b(B", "\x1b#6", "\x1b#5", "\xc3", "\xff", "\x9b", "\x1b[", "\x1b", "\x18",
        "\x1b[?6h", "\x1b[?6l", "\t", "\x08", "\x1bM",
        "\x1b"
        "D",
        "\x1b[?69h\x1b[3;9s", "\x1b[?69l", "\x1b[1;1;3;5;2;2v", "\x1b[2;2;4;8$z", "\x1b[?2027h", "\x1b[4h", "\x1b[4l",
        "\x1b[12X", "\x1b[3S", "\x1b[2T", "\x1b[9b", "\x1b_Gi=1;AAAA\x1b\\", "\x1b[!p",
        "\x1b"
        "7",
        "\x1b"
        "8",
        "a long line of words that is wider than the page of this terminal" };
    std::mt19937 randomness(seed);
    std::string stream;
    for (int i = 0; i < 300; ++i)
        stream += pieces[randomness() % std::size(pieces)];
    return stream;
}

}

TEST(Parser, anySplitGivesTheSameState)
{
    for (unsigned seed = 1; seed <= 12; ++seed) {
        const std::string stream = hostileStream(seed);
        Probe whole(20, 6);
        whole << stream;
        for (const size_t chunk : { 1, 2, 3, 7, 64 }) {
            Probe parts(20, 6);
            for (size_t at = 0; at < stream.size(); at += chunk)
                parts << std::string_view(stream).substr(at, chunk);
            ASSERT_EQ(parts.json(), whole.json()) << "seed " << seed << ", chunk " << chunk;
            ASSERT_EQ(parts.replies(), whole.replies());
        }
    }
}

TEST(Parser, resizingInAnyOrderLeavesAWholeGrid)
{
    std::mt19937 randomness(7);
    for (unsigned seed = 20; seed < 32; ++seed) {
        Probe terminal(20, 6);
        const std::string stream = hostileStream(seed);
        for (size_t at = 0; at < stream.size(); at += 40) {
            terminal << std::string_view(stream).substr(at, 40);
            terminal.resize({ 1 + int(randomness() % 60), 1 + int(randomness() % 20) });
            ASSERT_EQ(terminal.fault(), nullptr) << "seed " << seed;
        }
    }
}

TEST(Parser, controlsInsideASequenceActAtOnce)
{
    Probe terminal;
    terminal << "ab\x1b[3\r1mX";
    EXPECT_EQ(terminal.line(0), "Xb");
    EXPECT_EQ(terminal.styleAt(0, 0).foreground, Color::indexed(1));
    terminal << "\x1b[3\x18" << "4mY";
    EXPECT_EQ(terminal.line(0), "X4mY");
}

TEST(Parser, eightBitControlsCountWhereTheyAreMeant)
{
    Probe terminal;
    terminal << "\xc2\x9b"
                "2CA\x9b";
    EXPECT_EQ(terminal.line(0), "  A\ufffd");
    terminal << "\x1b%@\x9b"
                "1;1H\xe9\x1b%G";
    EXPECT_EQ(terminal.line(0), "é A\ufffd");
    EXPECT_EQ(terminal.ask("\x1b G\x9b"
                           "6n\x1b F"),
        "\x9b"
        "1;2R");
}

TEST(Parser, stringsHaveCaps)
{
    Probe terminal;
    const std::string megabytes(3 << 20, 'x');
    terminal << "\x1b]0;" << megabytes << "\x07" << "\x1bP$q" << megabytes << "\x1b\\" << "\x1b_G" << megabytes
             << "\x1b\\ok";
    EXPECT_EQ(terminal.title(), "");
    EXPECT_EQ(terminal.line(0), "ok");
    terminal << "\x1b]2;broken\x1b[1mnew";
    EXPECT_EQ(terminal.title(), "");
    EXPECT_EQ(terminal.line(0), "oknew");
}

}
