#pragma once

#include "Platform/Linux/Audio/SoundWriter.h"

#include <QFile>
#include <memory>

namespace corvane {

/// What stands before that many bytes of samples, of one channel and 16 bits each.
QByteArray wavHeader(int samplesPerSecond, quint32 size);

/// Sound of one channel into a .wav file, as it is: 16 bits a sample.
class WavWriter final : public SoundWriter {
public:
    /// Makes the file, of mode 0600; fails where one stands there already.
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
