#pragma once

#include "Terminal/Text/CodePoint.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace corvane::terminal {

/// Writes the code point to `out`, which has room for 4 bytes; answers how many it took.
inline size_t encodeUtf8(char32_t point, char* out)
{
    if (point < 0x80) {
        out[0] = char(point);
        return 1;
    }
    if (point < 0x800) {
        out[0] = char(0xc0 | point >> 6);
        out[1] = char(0x80 | (point & 0x3f));
        return 2;
    }
    if (point < 0x10000) {
        out[0] = char(0xe0 | point >> 12);
        out[1] = char(0x80 | (point >> 6 & 0x3f));
        out[2] = char(0x80 | (point & 0x3f));
        return 3;
    }
    out[0] = char(0xf0 | point >> 18);
    out[1] = char(0x80 | (point >> 12 & 0x3f));
    out[2] = char(0x80 | (point >> 6 & 0x3f));
    out[3] = char(0x80 | (point & 0x3f));
    return 4;
}

/// The first and the last code point that take as many bytes as this one.
inline std::pair<char32_t, char32_t> utf8Range(char32_t point)
{
    if (point < 0x80)
        return { 0, 0x7f };
    if (point < 0x800)
        return { 0x80, 0x7ff };
    if (point < 0x10000)
        return { 0x800, 0xffff };
    return { 0x10000, 0x10ffff };
}

inline void appendUtf8(std::string& text, char32_t point)
{
    char bytes[4];
    text.append(bytes, encodeUtf8(point, bytes));
}

/// Decodes a stream that may be cut anywhere. What is malformed becomes one replacement character for each longest
/// part that could have begun a character.
class Utf8Decoder {
public:
    enum class Result : uint8_t {
        More, ///< the byte was taken, the character is not complete
        Character, ///< `character` is complete
        Malformed, ///< the byte was taken, and stands for a replacement character
        MalformedBefore ///< a replacement character for what came before; give the byte again
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

/// The text's code points; what is malformed is replaced.
std::u32string decodeUtf8(std::string_view text);
std::string encodeUtf8(std::u32string_view text);

}
