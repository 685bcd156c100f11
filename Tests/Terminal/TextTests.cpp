#include "Terminal/Text/Base64.h"
#include "Terminal/Text/Graphemes.h"
#include "Terminal/Text/Utf8.h"

#include <fstream>
#include <gtest/gtest.h>
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
