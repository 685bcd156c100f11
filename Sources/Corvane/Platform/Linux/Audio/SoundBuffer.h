#pragma once

#include "Platform/MediaDecoder.h"

#include <algorithm>
#include <deque>
#include <span>

namespace corvane {

/// Decoded sound between its decoder and its player. Both hold one lock while they call.
class SoundBuffer {
public:
    void append(const SoundPiece& piece)
    {
        m_samples.insert(m_samples.end(), piece.samples.begin(), piece.samples.end());
        m_isWhole = piece.isLast;
    }

    void clear()
    {
        m_samples.clear();
        m_isWhole = false;
    }

    /// Reads what is available; returns the number of samples.
    size_t read(std::span<float> samples)
    {
        const size_t count = std::min(samples.size(), m_samples.size());
        std::copy_n(m_samples.begin(), count, samples.begin());
        m_samples.erase(m_samples.begin(), m_samples.begin() + std::ptrdiff_t(count));
        return count;
    }

    bool isWhole() const { return m_isWhole; } ///< nothing follows
    bool isEmpty() const { return m_samples.empty(); }
    qint64 ms() const { return qint64(m_samples.size()) * 1000 / (SoundPiece::rate * SoundPiece::channels); }

private:
    std::deque<float> m_samples;
    bool m_isWhole = false;
};

}
