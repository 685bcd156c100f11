#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace corvane::terminal {

/// The hyperlinks that styles name. Two places with the same address and the same id are one link.
class LinkTable {
public:
    static constexpr size_t maxAddress = 2083;

    LinkTable();

    /// 0 if the address is longer than allowed or the table cannot hold more.
    uint32_t intern(std::string_view id, std::string_view address);
    /// Empty for 0. The views hold until the next link is added.
    std::string_view address(uint32_t link) const;
    std::string_view id(uint32_t link) const;

    bool isFull() const { return m_live >= m_threshold || bytes() > maxBytes; }
    /// Keeps the links whose number is set in `used`, which has `capacity` places.
    void collect(const std::vector<bool>& used);
    size_t capacity() const { return m_entries.size() + 1; }
    size_t bytes() const { return m_text.size() + m_entries.size() * (sizeof(Entry) + sizeof(Slot)); }

private:
    static constexpr size_t maxBytes = 8 << 20;
    /// The address follows the id. Free where both are empty.
    struct Entry {
        uint32_t begin = 0;
        uint16_t idLength = 0;
        uint16_t addressLength = 0;
        uint32_t hash = 0;
    };
    /// The hash is kept here too, so that a look-up reads the entry of the link that it finds and no other.
    struct Slot {
        uint32_t hash = 0;
        uint32_t link = 0;
    };

    void insertSlot(Slot slot);
    void rebuild(size_t slots);

    std::string m_text;
    std::vector<Entry> m_entries; // of link 1, 2, ...
    std::vector<Slot> m_slots; // a power of two of them
    std::vector<uint32_t> m_free;
    size_t m_live = 0;
    size_t m_threshold = 16384;
};

}
