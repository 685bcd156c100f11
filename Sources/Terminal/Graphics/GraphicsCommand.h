#pragma once

#include <cstdint>
#include <string_view>

namespace corvane::terminal {

/// The keys of a Kitty graphics command, by letter; omitted ones are 0.
class GraphicsCommand {
public:
    /// Parses "a=T,f=24,..."; unknown keys are ignored.
    static GraphicsCommand parse(std::string_view control);

    /// The value of a key that takes a letter, such as a, t, o and d.
    char letter(char key, char fallback) const { return m_letters[index(key)] ? m_letters[index(key)] : fallback; }
    uint32_t number(char key) const { return uint32_t(m_numbers[index(key)]); }
    int integer(char key) const { return int(m_numbers[index(key)]); }
    /// A size or position in pixels or cells, clamped to a small non-negative number.
    int amount(char key) const;
    bool has(char key) const { return m_present >> index(key) & 1; }

private:
    static int index(char key) { return (key | 0x20) - 'a' + (key < 'a' ? 26 : 0); }
    static bool isKey(char key) { return (key >= 'a' && key <= 'z') || (key >= 'A' && key <= 'Z'); }

    int64_t m_numbers[52] = {};
    char m_letters[52] = {};
    uint64_t m_present = 0;
};

}
