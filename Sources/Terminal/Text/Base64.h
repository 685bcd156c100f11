#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::terminal {

/// A streaming decoder. Padding may be missing; other characters are skipped.
class Base64Decoder {
public:
    template <typename Container> void decode(std::string_view text, Container& out)
    {
        const size_t before = out.size();
        out.resize(before + (text.size() + m_count) / 4 * 3 + 3);
        auto* const begin = reinterpret_cast<uint8_t*>(out.data()) + before;
        out.resize(before + size_t(run(text, begin) - begin));
    }
    /// Decodes an incomplete last group.
    template <typename Container> void finish(Container& out)
    {
        if (m_count >= 2)
            out.push_back(typename Container::value_type(m_bits >> (m_count == 2 ? 4 : 10)));
        if (m_count == 3)
            out.push_back(typename Container::value_type(m_bits >> 2));
        m_count = 0;
        m_bits = 0;
    }
    bool isValid() const { return m_valid; }

private:
    uint8_t* run(std::string_view text, uint8_t* out);

    uint32_t m_bits = 0;
    unsigned m_count = 0;
    bool m_valid = true;
};

std::string decodeBase64(std::string_view text);

}
