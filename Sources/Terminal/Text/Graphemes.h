#pragma once

#include "Terminal/Text/CodePoint.h"

namespace corvane::terminal {

/// Tells, code point after code point, where one grapheme cluster ends and the next begins (UAX 29).
class Graphemes {
public:
    /// Takes the next code point; true if a new cluster begins with it.
    bool startsCluster(CodePoint next)
    {
        const GraphemeBreak kind = next.graphemeBreak();
        const bool plain = kind == GraphemeBreak::Other && m_last != GraphemeBreak::Prepend;
        const bool starts = plain || breaks(kind);
        advance(kind, starts);
        return starts;
    }

    /// Begins a cluster behind any other of its kind. As bits, by class.
    static constexpr uint32_t standalone = 1u << int(GraphemeBreak::Other) | 1u << int(GraphemeBreak::LV)
        | 1u << int(GraphemeBreak::LVT) | 1u << int(GraphemeBreak::Pictographic);
    static constexpr bool isStandalone(CodePoint point) { return standalone >> int(point.graphemeBreak()) & 1; }
    /// What came before joins nothing that stands alone.
    bool isDone() const
    {
        return !m_joined && m_last != GraphemeBreak::Prepend && m_last != GraphemeBreak::L
            && m_last != GraphemeBreak::CR;
    }
    /// As after startsCluster with the last of a run of those that stand alone.
    void afterStandalone(CodePoint last)
    {
        *this = {};
        m_last = last.graphemeBreak();
        m_emoji = m_last == GraphemeBreak::Pictographic;
    }

    void restart() { *this = {}; }
    /// As after a letter that joins nothing.
    void afterPlainText()
    {
        m_last = GraphemeBreak::Other;
        m_emoji = m_joined = m_oddIndicator = false;
    }
    bool mayJoinPlainText() const { return m_last == GraphemeBreak::Prepend; }

private:
    bool breaks(GraphemeBreak next) const;
    void advance(GraphemeBreak next, bool starts)
    {
        m_joined = m_emoji && next == GraphemeBreak::ZWJ;
        m_emoji = next == GraphemeBreak::Pictographic || (m_emoji && next == GraphemeBreak::Extend);
        m_oddIndicator = next == GraphemeBreak::RegionalIndicator && (starts || !m_oddIndicator);
        m_last = next;
    }

    GraphemeBreak m_last = GraphemeBreak::Control; // as at the start of text
    bool m_emoji = false; // a pictograph, and nothing but extenders since
    bool m_joined = false; // and then a joiner
    bool m_oddIndicator = false; // an indicator that waits for its second half
};

}
