#pragma once

#include "Foundation/Result.h"
#include "Platform/Linux/Files/Descriptor.h"
#include "Platform/MediaDecoder.h"

#include <memory>
#include <span>

namespace corvane {

/// The sound of an open file in one format, decoded as it is read. What cannot be decoded is left out.
class SoundFile {
public:
    static Result<std::unique_ptr<SoundFile>> open(Descriptor file, SampleFormat format);
    ~SoundFile();

    qint64 durationMs() const; ///< 0 where the file does not say

    /// Fills the samples; returns how many, fewer than asked for only at the end.
    size_t read(std::span<float> samples);

    const SampleFormat& format() const;

    /// To a moment at the format's rate, to the very sample.
    void seek(qint64 frame);
    qint64 frame() const; ///< where the next read begins

private:
    struct State;
    explicit SoundFile(std::unique_ptr<State> state);

    std::unique_ptr<State> m_state;
};

/// Its length, and the loudest of each of `count` parts; a long one is looked at in places.
SoundShape shapeOf(SoundFile& file, int count);

}
