#include "Terminal/Grid/LinkTable.h"

#include <algorithm>

namespace corvane::terminal {

namespace {
constexpr size_t entryOverhead = 80;
constexpr size_t maxId = 250;
}

uint32_t LinkTable::intern(std::string_view id, std::string_view address)
{
    if (address.empty() || address.size() > maxAddress)
        return 0;
    m_key.assign(id.substr(0, maxId));
    m_key.push_back('\0');
    m_key.append(address);
    if (const auto known = m_numbers.find(m_key); known != m_numbers.end())
        return known->second;
    if (m_bytes > 2 * maxBytes)
        return 0;
    uint32_t link;
    if (m_free.empty()) {
        m_keys.push_back(nullptr);
        link = uint32_t(m_keys.size());
    } else {
        link = m_free.back();
        m_free.pop_back();
    }
    m_bytes += m_key.size() + entryOverhead;
    m_keys[link - 1] = &m_numbers.emplace(m_key, link).first->first;
    return link;
}

std::string_view LinkTable::address(uint32_t link) const
{
    if (link == 0)
        return {};
    const std::string_view key = *m_keys[link - 1];
    return key.substr(key.find('\0') + 1);
}

std::string_view LinkTable::id(uint32_t link) const
{
    if (link == 0)
        return {};
    const std::string_view key = *m_keys[link - 1];
    return key.substr(0, key.find('\0'));
}

void LinkTable::collect(const std::vector<bool>& used)
{
    std::erase_if(m_numbers, [&](const auto& entry) {
        const bool gone = !used[entry.second];
        if (gone) {
            m_bytes -= entry.first.size() + entryOverhead;
            m_keys[entry.second - 1] = nullptr;
            m_free.push_back(entry.second);
        }
        return gone;
    });
    m_threshold = std::max<size_t>(16384, m_numbers.size() * 2);
}

}
