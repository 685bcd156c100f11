#pragma once

#include <cstdint>

namespace corvane::terminal {

/// The grapheme break classes of UAX 29, with one added for pictographs that have no other class.
enum class GraphemeBreak : uint8_t {
    Other,
    CR,
    LF,
    Control,
    Extend,
    ZWJ,
    RegionalIndicator,
    Prepend,
    SpacingMark,
    L,
    V,
    T,
    LV,
    LVT,
    Pictographic
};

/// The properties of a code point that the terminal needs, in one byte.
struct CodePoint {
    uint8_t bits = 1;

    /// Columns by UAX 11: 0 if combining, 2 if wide. Ambiguous characters count as 1.
    constexpr int width() const { return bits & 3; }
    constexpr bool ambiguous() const { return bits & 4; }
    /// Becomes an emoji of two columns if VS16 follows.
    constexpr bool emojiVariation() const { return bits & 8; }
    constexpr GraphemeBreak graphemeBreak() const { return GraphemeBreak(bits >> 4); }
};

/// A two-level table, built once from the ranges of Debian's unicode-data.
class CodePointTable {
public:
    static const CodePointTable& instance();

    /// `point` is below 0x110000.
    CodePoint operator[](char32_t point) const { return { m_blocks[m_beginOfBlock[point >> 8] + (point & 0xff)] }; }

private:
    CodePointTable();
    static constexpr int maxBlocks = 256;
    uint16_t m_beginOfBlock[0x1100] = {};
    uint8_t m_blocks[maxBlocks * 256];
};

constexpr char32_t replacementCharacter = 0xfffd;
constexpr char32_t variationSelector16 = 0xfe0f;

}
