#pragma once

#include "Terminal/Text/CodePoint.h"

namespace corvane::terminal {

/// Finds the boundaries of grapheme clusters (UAX 29), one code point at a time.
class Graphemes {
public:
    /// Takes the next code point; true if it starts a new cluster.
    bool startsCluster(CodePoint next)
    {
        const GraphemeBreak kind = next.graphemeBreak();
        const bool plain = kind == GraphemeBreak::Other && m_last != GraphemeBreak::Prepend;
        const bool starts = plain || breaks(kind);
        advance(kind, starts);
        return starts;
    }

    /// The classes that start a new cluster after any other standalone one, as bits.
    static constexpr uint32_t standalone = 1u << int(GraphemeBreak::Other) | 1u << int(GraphemeBreak::LV)
        | 1u << int(GraphemeBreak::LVT) | 1u << int(GraphemeBreak::Pictographic);
    static constexpr bool isStandalone(CodePoint point) { return standalone >> int(point.graphemeBreak()) & 1; }
    /// The text so far does not join a standalone code point.
    bool isDone() const
    {
        return !m_joined && m_last != GraphemeBreak::Prepend && m_last != GraphemeBreak::L
            && m_last != GraphemeBreak::CR;
    }
    /// The state after a run of standalone code points that ends with `last`.
    void afterStandalone(CodePoint last)
    {
        *this = {};
        m_last = last.graphemeBreak();
        m_emoji = m_last == GraphemeBreak::Pictographic;
    }

    void restart() { *this = {}; }
    /// The state after a letter that joins nothing.
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

    GraphemeBreak m_last = GraphemeBreak::Control; // the state at the start of text
    bool m_emoji = false; // a pictograph, followed only by extenders
    bool m_joined = false; // the same, and then a joiner
    bool m_oddIndicator = false; // a regional indicator that is still unpaired
};

}
