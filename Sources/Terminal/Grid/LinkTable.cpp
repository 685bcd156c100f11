#include "Terminal/Grid/LinkTable.h"

#include <algorithm>
#include <functional>

namespace corvane::terminal {

namespace {

constexpr size_t maxId = 250;
constexpr size_t fewestSlots = 64;

uint32_t hashOf(std::string_view id, std::string_view address)
{
    const std::hash<std::string_view> hash;
    return uint32_t((hash(address) ^ (id.empty() ? 0 : hash(id) * 0x9e3779b97f4a7c15)) >> 32);
}

}

LinkTable::LinkTable()
    : m_slots(fewestSlots)
{
}

uint32_t LinkTable::intern(std::string_view id, std::string_view address)
{
    if (address.empty() || address.size() > maxAddress)
        return 0;
    id = id.substr(0, maxId);
    const uint32_t hash = hashOf(id, address);
    const size_t mask = m_slots.size() - 1;
    for (size_t slot = hash & mask; m_slots[slot].link; slot = (slot + 1) & mask) {
        const uint32_t link = m_slots[slot].link;
        if (m_slots[slot].hash == hash && this->address(link) == address && this->id(link) == id)
            return link;
    }
    if (bytes() > 2 * maxBytes)
        return 0;
    uint32_t link;
    if (m_free.empty()) {
        m_entries.emplace_back();
        link = uint32_t(m_entries.size());
    } else {
        link = m_free.back();
        m_free.pop_back();
    }
    m_entries[link - 1] = { uint32_t(m_text.size()), uint16_t(id.size()), uint16_t(address.size()), hash };
    m_text.append(id).append(address);
    if (++m_live * 2 > m_slots.size())
        rebuild(m_slots.size() * 2);
    else
        insertSlot({ hash, link });
    return link;
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
    m_free.clear();
    m_live = 0;
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
        ++m_live;
    }
    m_text = std::move(kept);
    m_threshold = std::max<size_t>(16384, m_live * 2);
    rebuild(m_slots.size());
}

void LinkTable::insertSlot(Slot entry)
{
    const size_t mask = m_slots.size() - 1;
    size_t slot = entry.hash & mask;
    while (m_slots[slot].link)
        slot = (slot + 1) & mask;
    m_slots[slot] = entry;
}

void LinkTable::rebuild(size_t slots)
{
    m_slots.assign(slots, {});
    for (uint32_t link = 1; link <= m_entries.size(); ++link) {
        if (m_entries[link - 1].addressLength > 0)
            insertSlot({ m_entries[link - 1].hash, link });
    }
}

}
