#pragma once

#include <cstdint>

namespace corvane::terminal {

/// The parameters of a control sequence. An omitted one is absent, which most functions treat as 1 or 0.
class Params {
public:
    static constexpr int max = 32;
    static constexpr int absent = -1;
    static constexpr int maxValue = 0xffffff;

    int count() const { return m_count; }
    /// `fallback` if the parameter is absent.
    int at(int index, int fallback = 0) const
    {
        return index < m_count && m_values[index] != absent ? m_values[index] : fallback;
    }
    /// For counts: absent and 0 mean 1.
    int amount(int index) const
    {
        const int value = at(index, 1);
        return value == 0 ? 1 : value;
    }
    bool has(int index) const { return index < m_count && m_values[index] != absent; }
    /// Whether it is a sub-parameter (preceded by a colon).
    bool isSub(int index) const { return index < m_count && m_subs >> index & 1; }
    /// The index of the next parameter after `index` that is not a sub-parameter.
    int next(int index) const
    {
        ++index;
        while (isSub(index))
            ++index;
        return index;
    }

    void clear()
    {
        m_count = 0;
        m_subs = 0;
    }
    void add(int value, bool sub)
    {
        if (m_count == max)
            return;
        m_subs |= uint32_t(sub) << m_count;
        m_values[m_count++] = value;
    }

private:
    int m_values[max];
    uint32_t m_subs = 0;
    int m_count = 0;
};

/// An escape or control sequence, or the introducer of a device control string.
struct Sequence {
    Params params;
    char leader = 0; ///< one of < = > ? or 0
    char intermediates[2] = {};
    uint8_t intermediateCount = 0; ///< counts also those beyond 2, which are not stored
    char final = 0;

    void clear()
    {
        params.clear();
        leader = final = 0;
        intermediates[0] = intermediates[1] = 0;
        intermediateCount = 0;
    }
    void addIntermediate(char byte)
    {
        if (intermediateCount < 2)
            intermediates[intermediateCount] = byte;
        if (intermediateCount < 3)
            ++intermediateCount;
    }
};

}
