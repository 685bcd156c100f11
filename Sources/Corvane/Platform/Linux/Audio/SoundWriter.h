#pragma once

#include "Foundation/Result.h"

#include <span>

namespace corvane {

/// A growing sound file. Used by one thread at a time.
class SoundWriter {
public:
    virtual ~SoundWriter() = default; ///< keeps what was written

    virtual Result<void> write(std::span<const float> samples) = 0; ///< interleaved, from -1 to 1
    virtual Result<void> finish() = 0; ///< finalises the file; nothing can be written after it
};

}
