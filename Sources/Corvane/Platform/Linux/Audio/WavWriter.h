#pragma once

#include "Platform/Linux/Audio/SoundWriter.h"

#include <QFile>
#include <memory>

namespace corvane {

/// The WAV header for that many bytes of mono 16-bit samples.
QByteArray wavHeader(int samplesPerSecond, quint32 size);

/// Writes mono 16-bit PCM into a .wav file.
class WavWriter final : public SoundWriter {
public:
    /// Creates the file with mode 0600; fails if it exists.
    static Result<std::unique_ptr<SoundWriter>> create(const QString& path, int samplesPerSecond);

    Result<void> write(std::span<const float> samples) override;
    Result<void> finish() override;

private:
    WavWriter(const QString& path, int samplesPerSecond);
    Result<void> put(const QByteArray& bytes);

    QFile m_file;
    const int m_rate;
    quint32 m_size = 0; ///< of the samples, in bytes
};

}
