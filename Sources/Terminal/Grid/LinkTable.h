#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::terminal {

/// The hyperlinks that styles refer to. A recently used address and id map to the same link again, so that a link
/// written in parts remains one.
class LinkTable {
public:
    static constexpr size_t maxAddress = 2083;

    /// 0 if the address is too long or the table is full.
    uint32_t intern(std::string_view id, std::string_view address);
    /// Empty for 0. The views are valid until the next link is added.
    std::string_view address(uint32_t link) const;
    std::string_view id(uint32_t link) const;

    /// True when `collect` is due.
    bool isFull() const { return m_added >= m_allowance || m_text.size() >= m_kept + maxBytes / 4; }
    /// Frees the links that are not set in `used`, which has `capacity` entries.
    void collect(const std::vector<bool>& used);
    size_t capacity() const { return m_entries.size() + 1; }
    size_t bytes() const { return m_text.size() + m_entries.size() * sizeof(Entry); }

private:
    static constexpr size_t maxBytes = 16 << 20;
    static constexpr size_t fewest = 16384; ///< links added between collections
    /// The address follows the id. An entry is free if both are empty.
    struct Entry {
        uint32_t begin = 0;
        uint16_t idLength = 0;
        uint16_t addressLength = 0;
    };
    struct Recent {
        uint32_t hash = 0;
        uint32_t link = 0;
    };

    std::string m_text;
    std::vector<Entry> m_entries; // of link 1, 2, ...
    std::vector<uint32_t> m_free;
    std::array<Recent, 1024> m_recent; // by hash
    size_t m_added = 0; // since the last collection
    size_t m_allowance = fewest;
    size_t m_kept = 0; // bytes of text left by the last collection
};

}
