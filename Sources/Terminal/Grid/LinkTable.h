#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace corvane::terminal {

/// The hyperlinks that styles name. Two places with the same address and the same id are one link.
class LinkTable {
public:
    static constexpr size_t maxAddress = 2083;

    /// 0 if the address is longer than allowed or the table cannot hold more.
    uint32_t intern(std::string_view id, std::string_view address);
    /// Empty for 0.
    std::string_view address(uint32_t link) const;
    std::string_view id(uint32_t link) const;

    bool isFull() const { return m_numbers.size() >= m_threshold || m_bytes > maxBytes; }
    /// Keeps the links whose number is set in `used`, which has `capacity` places.
    void collect(const std::vector<bool>& used);
    size_t capacity() const { return m_keys.size() + 1; }
    size_t bytes() const { return m_bytes; }

private:
    static constexpr size_t maxBytes = 8 << 20;
    std::unordered_map<std::string, uint32_t> m_numbers; // id, a zero, address
    std::vector<const std::string*> m_keys;
    std::vector<uint32_t> m_free;
    std::string m_key;
    size_t m_bytes = 0;
    size_t m_threshold = 16384;
};

}
