#pragma once

#include "Foundation/Result.h"

#include <span>

namespace corvane {

/// A file of sound that grows. Used by one thread at a time.
class SoundWriter {
public:
    virtual ~SoundWriter() = default; ///< leaves what was written

    virtual Result<void> write(std::span<const float> samples) = 0; ///< interleaved, from -1 to 1
    virtual Result<void> finish() = 0; ///< makes the file whole; it takes nothing more
};

}
