#pragma once

#include "Platform/Linux/Audio/SoundWriter.h"

#include <memory>

namespace corvane {

struct SoundFormat {
    int rate = 44'100; ///< samples per second
    int channels = 1;
    int bitRate = 96'000; ///< bits per second, all channels together
};

/// Writes sound to an .m4a file (AAC), while recording as fragments of half a second, each playable without the next:
/// if the program is killed, only the last fragment is lost.
class M4aWriter final : public SoundWriter {
public:
    /// Creates the file with mode 0600; fails if it exists.
    static Result<std::unique_ptr<M4aWriter>> create(const QString& path, SoundFormat format);
    ~M4aWriter() override;

    Result<void> write(std::span<const float> samples) override;
    Result<void> close(); ///< flushes; the file stays fragmented, and nothing can be written after it
    Result<void> finish() override; ///< closes and joins

    /// Joins the fragments of the file; costs as much as copying it. On failure the file is unchanged.
    static Result<void> join(const QString& path);

private:
    struct State;
    explicit M4aWriter(std::unique_ptr<State> state);

    std::unique_ptr<State> m_state;
};

}
