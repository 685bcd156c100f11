#include "Terminal/Grid/StyleTable.h"

#include <algorithm>

namespace corvane::terminal {

StyleTable::StyleTable()
{
    m_styles.push_back({});
    m_live = 1;
    rebuild(256);
}

StyleId StyleTable::intern(const Style& style)
{
    const size_t mask = m_slots.size() - 1;
    for (size_t slot = hashOf(style) & mask; m_slots[slot]; slot = (slot + 1) & mask) {
        if (m_styles[m_slots[slot] - 1] == style)
            return m_slots[slot] - 1;
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
    ++m_live;
    if (m_live * 2 > m_slots.size())
        rebuild(m_slots.size() * 2);
    else
        insertSlot(id);
    return id;
}

void StyleTable::collect(const std::vector<bool>& used)
{
    m_free.clear();
    m_live = 0;
    for (size_t id = m_styles.size(); id-- > 0;) {
        if (id == 0 || used[id]) {
            ++m_live;
        } else {
            m_styles[id] = {};
            m_free.push_back(StyleId(id));
        }
    }
    m_threshold = std::max<size_t>(4096, m_live * 2);
    rebuild(m_slots.size());
}

void StyleTable::insertSlot(StyleId id)
{
    const size_t mask = m_slots.size() - 1;
    size_t slot = hashOf(m_styles[id]) & mask;
    while (m_slots[slot])
        slot = (slot + 1) & mask;
    m_slots[slot] = id + 1;
}

void StyleTable::rebuild(size_t slots)
{
    m_slots.assign(slots, 0);
    insertSlot(0);
    for (StyleId id = 1; id < m_styles.size(); ++id) {
        if (m_styles[id] != Style())
            insertSlot(id);
    }
}

}
