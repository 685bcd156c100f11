#pragma once

#include "Terminal/Text/CodePoint.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace corvane::terminal {

/// UTF-8 forms by length in bytes, taken as one big-endian number. Controls are excluded.
struct Utf8Forms {
    uint32_t leadMask[16];
    uint32_t lead[16];
    uint32_t valueMask[16];
    uint32_t first[16];
    uint32_t span[16];
};
inline constexpr Utf8Forms utf8Forms {
    .leadMask = { 0, 0x80, 0xe000, 0xf00000, 0xf8000000 },
    .lead = { 0, 0, 0xc000, 0xe00000, 0xf0000000 },
    .valueMask = { 0, 0x7f, 0x7ff, 0xffff, 0x1fffff },
    .first = { 0, 0x20, 0xa0, 0x800, 0x10000 },
    .span = { 0, 0x7e - 0x20, 0x7ff - 0xa0, 0xffff - 0x800, 0x10ffff - 0x10000 },
};
/// The marker bits of the bytes, by length.
inline constexpr uint32_t utf8Marks[] = { 0, 0, 0xc080, 0xe08080, 0xf0808080 };

/// Always writes 4 bytes to `out`; returns how many of them the code point takes.
inline size_t encodeUtf8(char32_t point, char* out)
{
    // The same steps for all lengths, because the next length is unpredictable.
    const size_t length = size_t(1) + (point >= 0x80) + (point >= 0x800) + (point >= 0x10000);
    const uint32_t spread
        = (point & 0x3f) | (point & 0xfc0) << 2 | (point & 0x3f000) << 4 | (point & 0x1c0000) << 6 | utf8Marks[length];
    uint32_t bytes = (length == 1 ? uint32_t(point) : spread) << (32 - 8 * length);
    if constexpr (std::endian::native == std::endian::little)
        bytes = std::byteswap(bytes);
    std::memcpy(out, &bytes, sizeof bytes);
    return length;
}

inline void appendUtf8(std::string& text, char32_t point)
{
    char bytes[4];
    text.append(bytes, encodeUtf8(point, bytes));
}

/// Decodes a stream that may be split anywhere. Each maximal malformed part becomes one replacement character.
class Utf8Decoder {
public:
    enum class Result : uint8_t {
        More, ///< the byte was consumed, the character is incomplete
        Character, ///< `character` is complete
        Malformed, ///< the byte was consumed and yields a replacement character
        MalformedBefore ///< the bytes before yield a replacement character; pass this byte again
    };

    Result take(uint8_t byte)
    {
        if (m_needed == 0)
            return begin(byte);
        if (byte < m_lower || byte > m_upper) {
            m_needed = 0;
            return Result::MalformedBefore;
        }
        m_lower = 0x80;
        m_upper = 0xbf;
        m_character = m_character << 6 | (byte & 0x3f);
        return --m_needed == 0 ? Result::Character : Result::More;
    }

    char32_t character() const { return m_character; }
    bool isMidway() const { return m_needed > 0; }
    void restart() { m_needed = 0; }

private:
    Result begin(uint8_t byte)
    {
        m_lower = 0x80;
        m_upper = 0xbf;
        if (byte < 0x80) {
            m_character = byte;
            return Result::Character;
        }
        if (byte >= 0xc2 && byte <= 0xdf) {
            m_needed = 1;
            m_character = byte & 0x1f;
        } else if (byte >= 0xe0 && byte <= 0xef) {
            m_needed = 2;
            m_character = byte & 0x0f;
            if (byte == 0xe0)
                m_lower = 0xa0;
            if (byte == 0xed)
                m_upper = 0x9f;
        } else if (byte >= 0xf0 && byte <= 0xf4) {
            m_needed = 3;
            m_character = byte & 0x07;
            if (byte == 0xf0)
                m_lower = 0x90;
            if (byte == 0xf4)
                m_upper = 0x8f;
        } else {
            return Result::Malformed;
        }
        return Result::More;
    }

    char32_t m_character = 0;
    uint8_t m_needed = 0;
    uint8_t m_lower = 0x80;
    uint8_t m_upper = 0xbf;
};

/// The code points of the text; malformed parts are replaced.
std::u32string decodeUtf8(std::string_view text);
std::string encodeUtf8(std::u32string_view text);

}
