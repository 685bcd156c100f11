#include "Terminal/Grid/ClusterTable.h"

#include <algorithm>

namespace corvane::terminal {

uint32_t ClusterTable::intern(std::u32string_view text)
{
    if (const auto known = m_numbers.find(text); known != m_numbers.end())
        return known->second;
    uint32_t number;
    if (m_free.empty()) {
        number = uint32_t(m_texts.size());
        m_texts.push_back(nullptr);
    } else {
        number = m_free.back();
        m_free.pop_back();
    }
    m_texts[number] = &m_numbers.emplace(text, number).first->first;
    return number;
}

uint32_t ClusterTable::join(Cell cell, char32_t point)
{
    const uint64_t key = uint64_t(point) << 32 | uint64_t(cell.isCluster()) << 31 | cell.content();
    Joined& known = m_joined[key * 0x9e3779b97f4a7c15 >> 56];
    if (known.key == key)
        return known.number;
    char32_t text[maxLength];
    size_t length = 1;
    if (cell.isCluster())
        length = (*this)[cell.content()].copy(text, maxLength - 1);
    else
        text[0] = cell.content();
    text[length++] = point;
    known = { key, intern({ text, length }) };
    return known.number;
}

void ClusterTable::collect(const std::vector<bool>& used)
{
    m_joined = {};
    std::erase_if(m_numbers, [&](const auto& entry) {
        const bool gone = !used[entry.second];
        if (gone) {
            m_texts[entry.second] = nullptr;
            m_free.push_back(entry.second);
        }
        return gone;
    });
    m_threshold = std::max<size_t>(4096, m_numbers.size() * 2);
}

size_t ClusterTable::bytes() const
{
    return m_numbers.size() * 96 + m_texts.capacity() * sizeof(void*);
}

}
