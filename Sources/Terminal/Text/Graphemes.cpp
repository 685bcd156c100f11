#include "Terminal/Text/Graphemes.h"

namespace corvane::terminal {

using enum GraphemeBreak;

bool Graphemes::breaks(GraphemeBreak next) const
{
    if (m_last == CR)
        return next != LF;
    if (m_last == LF || m_last == Control || next == CR || next == LF || next == Control)
        return true;
    if (next == Extend || next == ZWJ || next == SpacingMark || m_last == Prepend)
        return false;
    switch (next) {
    case L:
        return m_last != L;
    case V:
        return m_last != L && m_last != V && m_last != LV;
    case T:
        return m_last != V && m_last != T && m_last != LV && m_last != LVT;
    case LV:
    case LVT:
        return m_last != L;
    case Pictographic:
        return !m_joined;
    case RegionalIndicator:
        return !m_oddIndicator;
    default:
        return true;
    }
}

}
