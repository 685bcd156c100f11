#pragma once

#include "Terminal/Grid/Cell.h"
#include "Terminal/Grid/Style.h"

#include <vector>

namespace corvane::terminal {

/// Gives equal styles one number; 0 is the default style. There are no reference counts: when the table is full, its
/// owner marks the styles in use, and the rest is freed.
class StyleTable {
public:
    StyleTable();

    StyleId intern(const Style& style);
    const Style& operator[](StyleId id) const { return m_styles[id]; }

    /// True if `collect` is due before more styles are added.
    bool isFull() const { return m_live >= m_threshold; }
    /// Frees the styles that are not set in `used`, which has `capacity` entries.
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
    void rebuild(size_t slots); // requires that all styles are live

    std::vector<Style> m_styles;
    std::vector<StyleId> m_slots; // by hash; 0 is free
    std::vector<StyleId> m_free;
    size_t m_live = 0;
    size_t m_threshold = 4096;
};

}
