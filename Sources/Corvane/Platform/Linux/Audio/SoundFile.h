#pragma once

#include "Foundation/Result.h"

#include <memory>
#include <span>

namespace corvane {

/// The sound of a file, decoded piece by piece as it is read. What cannot be decoded is left out. Used by one thread
/// at a time.
class SoundFile {
public:
    static constexpr int rate = 48'000; ///< of what it gives, whatever the file holds
    static constexpr int channels = 2;

    static Result<std::unique_ptr<SoundFile>> open(const QString& path);
    ~SoundFile();

    qint64 durationMs() const; ///< 0 where the file does not say

    /// Fills the samples, interleaved and from -1 to 1; returns how many, fewer than asked for only at the end.
    size_t read(std::span<float> samples);
    void seek(qint64 ms);

private:
    struct State;
    explicit SoundFile(std::unique_ptr<State> state);

    std::unique_ptr<State> m_state;
};

}
