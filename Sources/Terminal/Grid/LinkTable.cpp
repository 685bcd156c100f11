#include "Terminal/Grid/LinkTable.h"

#include <algorithm>
#include <cstring>

namespace corvane::terminal {

namespace {

constexpr size_t maxId = 250;

uint64_t wordAt(const char* text)
{
    uint64_t word;
    std::memcpy(&word, text, sizeof word);
    return word;
}

/// Weak but fast: links with the same hash only evict each other from the cache.
uint32_t hashOf(std::string_view text)
{
    constexpr size_t step = 2 * sizeof(uint64_t);
    uint64_t hash = text.size();
    const auto mix = [&hash](uint64_t first, uint64_t second) {
        hash = (hash ^ first ^ second * 0xbf58476d1ce4e5b9) * 0x9e3779b97f4a7c15;
        hash ^= hash >> 32;
    };
    const auto mixAt = [&](const char* at) {
        mix(wordAt(at), wordAt(at + sizeof(uint64_t)));
    };
    for (size_t at = 0; at + step <= text.size(); at += step)
        mixAt(text.data() + at);
    if (text.size() >= step)
        mixAt(text.data() + text.size() - step);
    else
        std::for_each(text.begin(), text.end(), [&](char letter) { mix(uint8_t(letter), 0); });
    return uint32_t(hash);
}

}

uint32_t LinkTable::intern(std::string_view id, std::string_view address)
{
    if (address.empty() || address.size() > maxAddress)
        return 0;
    id = id.substr(0, maxId);
    const uint32_t hash = hashOf(address) ^ hashOf(id);
    Recent& recent = m_recent[hash % m_recent.size()];
    if (recent.link && recent.hash == hash && this->address(recent.link) == address && this->id(recent.link) == id)
        return recent.link;
    ++m_added;
    if (bytes() > maxBytes)
        return 0;
    if (m_free.empty()) {
        m_entries.emplace_back();
        m_free.push_back(uint32_t(m_entries.size()));
    }
    recent = { hash, m_free.back() };
    m_free.pop_back();
    m_entries[recent.link - 1] = { uint32_t(m_text.size()), uint16_t(id.size()), uint16_t(address.size()) };
    if (!id.empty())
        m_text.append(id);
    m_text.append(address);
    return recent.link;
}

std::string_view LinkTable::address(uint32_t link) const
{
    if (link == 0)
        return {};
    const Entry& entry = m_entries[link - 1];
    return std::string_view(m_text).substr(entry.begin + entry.idLength, entry.addressLength);
}

std::string_view LinkTable::id(uint32_t link) const
{
    if (link == 0)
        return {};
    const Entry& entry = m_entries[link - 1];
    return std::string_view(m_text).substr(entry.begin, entry.idLength);
}

void LinkTable::collect(const std::vector<bool>& used)
{
    std::string kept;
    kept.reserve(m_text.size());
    m_free.clear();
    m_recent = {};
    for (uint32_t link = uint32_t(m_entries.size()); link > 0; --link) {
        Entry& entry = m_entries[link - 1];
        if (entry.addressLength == 0 || !used[link]) {
            entry = {};
            m_free.push_back(link);
            continue;
        }
        const auto begin = uint32_t(kept.size());
        kept.append(m_text, entry.begin, size_t(entry.idLength) + entry.addressLength);
        entry.begin = begin;
    }
    m_text = std::move(kept);
    m_kept = m_text.size();
    m_added = 0;
    m_allowance = std::max(fewest, 2 * (m_entries.size() - m_free.size()));
}

}
