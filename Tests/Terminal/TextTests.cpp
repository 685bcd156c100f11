#include "Terminal/Grid/TextKernels.h"
#include "Terminal/Text/Base64.h"
#include "Terminal/Text/Graphemes.h"
#include "Terminal/Text/Utf8.h"

#include <bit>
#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <sstream>

namespace corvane::terminal {

TEST(Text, clustersBreakWhereTheUnicodeTestsSay)
{
    std::ifstream tests(CORVANE_UNICODE "/auxiliary/GraphemeBreakTest.txt");
    ASSERT_TRUE(tests) << "unicode-data is not installed";
    int cases = 0;
    for (std::string line; std::getline(tests, line);) {
        std::istringstream words(line.substr(0, line.find('#')));
        Graphemes graphemes;
        bool expected = true;
        for (std::string word; words >> word;) {
            if (word == "÷" || word == "×") {
                expected = word == "÷";
                continue;
            }
            const auto point = char32_t(std::stoul(word, nullptr, 16));
            EXPECT_EQ(graphemes.startsCluster(CodePointTable::instance()[point]), expected) << line;
        }
        ++cases;
    }
    EXPECT_GT(cases, 600);
}

TEST(Text, widthsFollowTheTables)
{
    const auto& table = CodePointTable::instance();
    EXPECT_EQ(table[U'a'].width(), 1);
    EXPECT_EQ(table[U'漢'].width(), 2);
    EXPECT_EQ(table[0x1f600].width(), 2);
    EXPECT_EQ(table[0x301].width(), 0);
    EXPECT_EQ(table[0x200d].width(), 0);
    EXPECT_EQ(table[0x2fffd].width(), 2);
    EXPECT_TRUE(table[U'α'].ambiguous());
    EXPECT_TRUE(table[0x2764].emojiVariation());
}

TEST(Text, malformedUtf8IsReplacedPartByPart)
{
    EXPECT_EQ(decodeUtf8("a\xc3(\xf0\x9f\x98\xe2\x82\xac\xff\xc0\x80"), U"a\ufffd(\ufffd€\ufffd\ufffd\ufffd");
    EXPECT_EQ(decodeUtf8("\xed\xa0\x80\xf4\x90\x80\x80"), std::u32string(7, 0xfffd));
    EXPECT_EQ(decodeUtf8("\xf4\x8f\xbf\xbf\xe0\xa0\x80"), U"\U0010ffff\u0800");
}

TEST(Text, everyProcessorDecodesPlacesAndPacksAlike)
{
    std::mt19937 randomness(5);
    const TextKernels portable = TextKernels::portable();
    const TextKernels& chosen = TextKernels::instance();
    for (int round = 0; round < 3000; ++round) {
        std::u32string text;
        while (text.size() < 10 + randomness() % 20) {
            constexpr char32_t ends[] = { 0x7f, 0x7ff, 0xffff, 0x10ffff };
            text.push_back(randomness() % ends[randomness() % std::size(ends)]);
        }
        std::string bytes = encodeUtf8(text).substr(0, 64);
        bytes.resize(67);
        uint64_t starts = 1;
        for (size_t i = 1; i < 64; ++i)
            starts |= uint64_t((bytes[i] & 0xc0) != 0x80) << i;
        const auto* const from = reinterpret_cast<const uint8_t*>(bytes.data());
        char32_t one[64];
        char32_t other[64];
        size_t count = 0;
        size_t otherCount = 0;
        const size_t taken = portable.decode(from, starts, one, count);
        ASSERT_EQ(chosen.decode(from, starts, other, otherCount), taken);
        const std::u32string_view decoded(one, count);
        ASSERT_EQ(std::u32string_view(other, otherCount), decoded);
        ASSERT_EQ(decoded, decodeUtf8(bytes.substr(0, taken)));

        const uint64_t wide = randomness() & ((uint64_t(1) << count) - 1);
        const size_t columns = count + size_t(std::popcount(wide));
        std::vector<Cell> cells(130, Cell::character('x', 7));
        std::vector<Cell> otherCells = cells;
        portable.place(cells.data(), one, count, wide, 9);
        chosen.place(otherCells.data(), one, count, wide, 9);
        ASSERT_EQ(otherCells, cells);
        ASSERT_EQ(cells[columns], Cell::character('x', 7));
        const size_t packed = std::min(columns, size_t(64));
        std::string utf8(400, 0);
        std::string otherUtf8 = utf8;
        const PackedText text1 = portable.pack(cells.data(), packed, utf8.data());
        const PackedText text2 = chosen.pack(cells.data(), packed, otherUtf8.data());
        ASSERT_EQ(text2, text1);
        ASSERT_EQ(utf8.substr(0, text1.bytes), encodeUtf8(decoded.substr(0, text1.characters)));
        ASSERT_EQ(otherUtf8.substr(0, text1.bytes), utf8.substr(0, text1.bytes));
        if (count == 0)
            continue;
        ShapeRun runs[TextKernels::mostRuns];
        ShapeRun otherRuns[TextKernels::mostRuns];
        const size_t runCount = portable.shapes(text1, runs);
        ASSERT_EQ(chosen.shapes(text1, otherRuns), runCount);
        ASSERT_TRUE(std::equal(runs, runs + runCount, otherRuns));
    }
}

TEST(Text, base64ComesInPieces)
{
    const std::string text = "any carnal pleasure.";
    for (size_t cut = 0; cut < 28; ++cut) {
        const std::string_view encoded = "YW55IGNhcm5hbCBwbGVhc3VyZS4=";
        Base64Decoder decoder;
        std::string bytes;
        decoder.decode(encoded.substr(0, cut), bytes);
        decoder.decode(encoded.substr(cut), bytes);
        decoder.finish(bytes);
        EXPECT_EQ(bytes, text) << cut;
        EXPECT_TRUE(decoder.isValid());
    }
    EXPECT_EQ(decodeBase64("YQ"), "a");
}

}
