#pragma once

#include "Platform/Linux/Audio/SoundWriter.h"

#include <memory>

namespace corvane {

struct SoundFormat {
    int rate = 44'100; ///< samples a second
    int channels = 1;
    int bitRate = 96'000; ///< bits a second of the file, all channels together
};

/// Sound into an .m4a file (AAC). While it grows it stands in pieces of half a second, each of which plays without the
/// next: a program that is killed loses the last of them.
class M4aWriter final : public SoundWriter {
public:
    /// Makes the file, of mode 0600; fails if one stands there already.
    static Result<std::unique_ptr<M4aWriter>> create(const QString& path, SoundFormat format);
    ~M4aWriter() override;

    Result<void> write(std::span<const float> samples) override;
    Result<void> close(); ///< writes what waits; the file stays in pieces, and takes nothing more
    Result<void> finish() override; ///< closes and joins

    /// Makes one piece of the file, which costs as much as to copy it. Where that fails it is left as it is.
    static Result<void> join(const QString& path);

private:
    struct State;
    explicit M4aWriter(std::unique_ptr<State> state);

    std::unique_ptr<State> m_state;
};

}
