#include "Terminal/Grid/StyleTable.h"

#include <algorithm>

namespace corvane::terminal {

StyleTable::StyleTable()
{
    m_styles.push_back({});
    rebuild(256);
}

StyleId StyleTable::intern(const Style& style)
{
    if (style == Style())
        return 0;
    const size_t mask = m_slots.size() - 1;
    size_t slot = hashOf(style) & mask;
    for (; m_slots[slot]; slot = (slot + 1) & mask) {
        if (m_styles[m_slots[slot]] == style)
            return m_slots[slot];
    }
    StyleId id;
    if (m_free.empty()) {
        id = StyleId(m_styles.size());
        m_styles.push_back(style);
    } else {
        id = m_free.back();
        m_free.pop_back();
        m_styles[id] = style;
    }
    m_slots[slot] = id;
    // The number of live styles is at a new maximum, so no entry is free, as `rebuild` requires.
    if (++m_live * 2 > m_slots.size())
        rebuild(m_slots.size() * 2);
    return id;
}

void StyleTable::collect(const std::vector<bool>& used)
{
    m_free.clear();
    m_live = 0;
    m_slots.assign(m_slots.size(), 0);
    for (size_t id = m_styles.size(); --id > 0;) {
        if (used[id]) {
            ++m_live;
            insertSlot(StyleId(id));
        } else {
            m_styles[id].link = 0;
            m_free.push_back(StyleId(id));
        }
    }
    m_threshold = std::max<size_t>(4096, m_live * 2);
}

void StyleTable::insertSlot(StyleId id)
{
    const size_t mask = m_slots.size() - 1;
    size_t slot = hashOf(m_styles[id]) & mask;
    while (m_slots[slot])
        slot = (slot + 1) & mask;
    m_slots[slot] = id;
}

void StyleTable::rebuild(size_t slots)
{
    m_slots.assign(slots, 0);
    for (StyleId id = 1; id < m_styles.size(); ++id)
        insertSlot(id);
}

}
