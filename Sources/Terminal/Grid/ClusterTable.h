#pragma once

#include "Terminal/Grid/Cell.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace corvane::terminal {

/// Numbers the texts of cells with more than one code point. Unused ones are collected like styles.
class ClusterTable {
public:
    /// Further code points in a cell are dropped.
    static constexpr size_t maxLength = 32;

    uint32_t intern(std::u32string_view text);
    /// The text of the cell plus one code point. A cluster in it is shorter than `maxLength`.
    uint32_t join(Cell cell, char32_t point);
    std::u32string_view operator[](uint32_t number) const { return *m_texts[number]; }

    bool isFull() const { return m_numbers.size() >= m_threshold; }
    void collect(const std::vector<bool>& used);
    size_t capacity() const { return m_texts.size(); }
    size_t bytes() const;

private:
    struct Hash {
        using is_transparent = void;
        size_t operator()(std::u32string_view text) const { return std::hash<std::u32string_view>()(text); }
    };

    /// Cache: an emoji grows code point by code point, usually one of the last few.
    struct Joined {
        uint64_t key = 0;
        uint32_t number = 0;
    };

    std::array<Joined, 256> m_joined;
    std::unordered_map<std::u32string, uint32_t, Hash, std::equal_to<>> m_numbers;
    std::vector<const std::u32string*> m_texts; // keys of the map
    std::vector<uint32_t> m_free;
    size_t m_threshold = 4096;
};

}
