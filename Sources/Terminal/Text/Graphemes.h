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

    /// As startsCluster, where that is told at a glance; otherwise false, and nothing is taken.
    bool surelyStarts(CodePoint next)
    {
        const GraphemeBreak kind = next.graphemeBreak();
        const bool alone = kind == GraphemeBreak::Other || kind == GraphemeBreak::LV || kind == GraphemeBreak::LVT
            || (kind == GraphemeBreak::Pictographic && !m_joined);
        if (!alone || m_last == GraphemeBreak::Prepend || m_last == GraphemeBreak::L || m_last == GraphemeBreak::CR)
            return false;
        m_last = kind;
        m_emoji = kind == GraphemeBreak::Pictographic;
        m_joined = m_oddIndicator = false;
        return true;
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
    void advance(GraphemeBreak next, bool starts);

    GraphemeBreak m_last = GraphemeBreak::Control; // as at the start of text
    bool m_emoji = false; // a pictograph, and nothing but extenders since
    bool m_joined = false; // and then a joiner
    bool m_oddIndicator = false; // an indicator that waits for its second half
};

}
