#pragma once

#include "Terminal/Grid/Cell.h"
#include "Terminal/Grid/Style.h"

#include <vector>

namespace corvane::terminal {

/// Gives equal styles one number. Number 0 is the default style. Nothing is counted: when the table is full,
/// the owner marks what the screens still show, and the rest is free again.
class StyleTable {
public:
    StyleTable();

    StyleId intern(const Style& style);
    const Style& operator[](StyleId id) const { return m_styles[id]; }

    /// True when `collect` is due before more is interned.
    bool isFull() const { return m_live >= m_threshold; }
    /// Keeps the styles whose number is set in `used`, which has `capacity` places.
    void collect(const std::vector<bool>& used);
    size_t capacity() const { return m_styles.size(); }
    size_t live() const { return m_live; }
    size_t bytes() const { return m_styles.capacity() * sizeof(Style) + (m_slots.capacity() + m_free.capacity()) * 4; }

    template <typename Visit> void eachLink(Visit visit) const
    {
        for (const Style& style : m_styles) {
            if (style.link)
                visit(style.link);
        }
    }

private:
    void insertSlot(StyleId id);
    void rebuild(size_t slots); // where all styles are live

    std::vector<Style> m_styles;
    std::vector<StyleId> m_slots; // by hash; 0 is free
    std::vector<StyleId> m_free;
    size_t m_live = 0;
    size_t m_threshold = 4096;
};

}
