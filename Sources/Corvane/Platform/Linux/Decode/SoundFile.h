#pragma once

#include "Foundation/Result.h"
#include "Platform/Linux/Files/Descriptor.h"
#include "Platform/MediaDecoder.h"

#include <memory>
#include <span>

namespace corvane {

/// The sound of an open file in one format, decoded while reading. Undecodable parts are skipped.
class SoundFile {
public:
    static Result<std::unique_ptr<SoundFile>> open(Descriptor file, SampleFormat format);
    ~SoundFile();

    qint64 durationMs() const; ///< 0 if the file does not say

    /// Fills the samples; returns how many, less than requested only at the end.
    size_t read(std::span<float> samples);

    const SampleFormat& format() const;

    /// Seeks to a frame at the format's rate, sample-exact.
    void seek(qint64 frame);
    qint64 frame() const; ///< where the next read starts

private:
    struct State;
    explicit SoundFile(std::unique_ptr<State> state);

    std::unique_ptr<State> m_state;
};

/// Its length, and the peak of each of `count` parts; long sounds are sampled.
SoundShape shapeOf(SoundFile& file, int count);

}
