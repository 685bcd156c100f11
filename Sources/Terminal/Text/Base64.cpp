#include "Terminal/Text/Base64.h"

#include <array>

namespace corvane::terminal {

namespace {

constexpr uint32_t bad = 0xff000000;

// For each position in a group of four, the shifted bits of a character.
constexpr auto tables = [] {
    std::array<std::array<uint32_t, 256>, 4> table {};
    for (auto& place : table)
        place.fill(bad);
    constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (uint32_t value = 0; value < 64; ++value) {
        for (size_t place = 0; place < 4; ++place)
            table[place][uint8_t(alphabet[value])] = value << (18 - 6 * place);
    }
    return table;
}();

}

uint8_t* Base64Decoder::run(std::string_view text, uint8_t* out)
{
    const auto* at = reinterpret_cast<const uint8_t*>(text.data());
    const auto* const end = at + text.size();
    while (at < end) {
        if (m_count == 0) {
            for (; end - at >= 4; at += 4) {
                const uint32_t group = tables[0][at[0]] | tables[1][at[1]] | tables[2][at[2]] | tables[3][at[3]];
                if (group & bad)
                    break;
                *out++ = uint8_t(group >> 16);
                *out++ = uint8_t(group >> 8);
                *out++ = uint8_t(group);
            }
            if (at == end)
                break;
        }
        const uint8_t byte = *at++;
        const uint32_t value = tables[3][byte];
        if (value & bad) {
            // Skips padding and line breaks.
            m_valid &= byte == '=' || byte == '\r' || byte == '\n' || byte == ' ';
            continue;
        }
        m_bits = m_bits << 6 | value;
        if (++m_count == 4) {
            *out++ = uint8_t(m_bits >> 16);
            *out++ = uint8_t(m_bits >> 8);
            *out++ = uint8_t(m_bits);
            m_count = 0;
            m_bits = 0;
        }
    }
    return out;
}

std::string decodeBase64(std::string_view text)
{
    std::string bytes;
    Base64Decoder decoder;
    decoder.decode(text, bytes);
    decoder.finish(bytes);
    return bytes;
}

}
