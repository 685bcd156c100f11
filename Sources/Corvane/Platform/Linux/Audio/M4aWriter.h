#pragma once

#include "Foundation/Result.h"

#include <memory>
#include <span>

namespace corvane {

struct SoundFormat {
    int rate = 44'100; ///< samples a second
    int channels = 1;
};

/// Sound into an .m4a file (AAC). While it grows it stands in pieces of a second, each of which plays without the
/// next: a program that is killed loses the last of them. `finish` makes one piece of it. Used by one thread at a
/// time.
class M4aWriter {
public:
    /// Makes the file, of mode 0600; fails where one stands there already.
    static Result<std::unique_ptr<M4aWriter>> create(const QString& path, SoundFormat format);
    ~M4aWriter(); ///< leaves what was written

    Result<void> write(std::span<const float> samples); ///< interleaved, from -1 to 1
    Result<void> finish();

private:
    struct State;
    explicit M4aWriter(std::unique_ptr<State> state);

    std::unique_ptr<State> m_state;
};

}
