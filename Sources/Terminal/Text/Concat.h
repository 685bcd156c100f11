#pragma once

#include <charconv>
#include <concepts>
#include <string>
#include <string_view>

namespace corvane::terminal {

inline void appendPart(std::string& text, std::string_view part)
{
    text.append(part);
}

inline void appendPart(std::string& text, char part)
{
    text.push_back(part);
}

template <std::integral Number> void appendPart(std::string& text, Number number)
{
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    text.append(digits, end);
}

/// Concatenates texts, characters and decimal numbers.
template <typename... Parts> std::string concat(const Parts&... parts)
{
    std::string text;
    (appendPart(text, parts), ...);
    return text;
}

/// Hexadecimal with at least `width` digits.
inline std::string toHex(uint64_t value, size_t width, bool upper = false)
{
    std::string digits;
    for (; value || digits.size() < width; value >>= 4)
        digits.insert(digits.begin(), (upper ? "0123456789ABCDEF" : "0123456789abcdef")[value & 15]);
    return digits;
}

inline std::string hexOfBytes(std::string_view bytes)
{
    std::string digits;
    digits.reserve(bytes.size() * 2);
    for (const char byte : bytes) {
        digits.push_back("0123456789abcdef"[uint8_t(byte) >> 4]);
        digits.push_back("0123456789abcdef"[uint8_t(byte) & 15]);
    }
    return digits;
}

/// False if there are other characters or an odd number of digits; what was decoded before is kept.
inline bool bytesOfHex(std::string_view digits, std::string& bytes)
{
    for (size_t at = 0; at + 2 <= digits.size(); at += 2) {
        unsigned value = 0;
        const auto [end, error] = std::from_chars(digits.data() + at, digits.data() + at + 2, value, 16);
        if (error != std::errc() || end != digits.data() + at + 2)
            return false;
        bytes.push_back(char(value));
    }
    return digits.size() % 2 == 0;
}

}
