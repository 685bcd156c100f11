#include "Platform/Linux/Audio/WavWriter.h"

#include <QtEndian>
#include <algorithm>
#include <cmath>

namespace corvane {

namespace {

constexpr quint32 headerSize = 44;
constexpr quint16 sampleSize = 2;

template <typename Number> QByteArray bytesOf(Number number)
{
    QByteArray bytes(sizeof number, Qt::Uninitialized);
    qToLittleEndian(number, bytes.data());
    return bytes;
}

}

QByteArray wavHeader(int samplesPerSecond, quint32 size)
{
    constexpr quint32 formatSize = 16;
    constexpr quint16 pcm = 1;
    constexpr quint16 channels = 1;
    const auto rate = quint32(samplesPerSecond);
    return "RIFF" + bytesOf(headerSize - 8 + size) + "WAVEfmt " + bytesOf(formatSize) + bytesOf(pcm) + bytesOf(channels)
        + bytesOf(rate) + bytesOf(rate * sampleSize) + bytesOf(sampleSize) + bytesOf(quint16(sampleSize * 8)) + "data"
        + bytesOf(size);
}

WavWriter::WavWriter(const QString& path, int samplesPerSecond)
    : m_file(path)
    , m_rate(samplesPerSecond)
{
}

Result<std::unique_ptr<SoundWriter>> WavWriter::create(const QString& path, int samplesPerSecond)
{
    std::unique_ptr<WavWriter> writer(new WavWriter(path, samplesPerSecond));
    if (!writer->m_file.open(QIODevice::WriteOnly | QIODevice::NewOnly, QFile::ReadOwner | QFile::WriteOwner))
        return failure(writer->m_file.errorString());
    if (const auto written = writer->put(wavHeader(samplesPerSecond, 0)); !written)
        return std::unexpected(written.error());
    return writer;
}

Result<void> WavWriter::write(std::span<const float> samples)
{
    QByteArray bytes(qsizetype(samples.size() * sampleSize), Qt::Uninitialized);
    char* at = bytes.data();
    for (const float sample : samples) {
        constexpr float loudest = 32767;
        qToLittleEndian(qint16(std::lround(std::clamp(sample, -1.0F, 1.0F) * loudest)), at);
        at += sampleSize;
    }
    m_size += quint32(bytes.size());
    return put(bytes);
}

Result<void> WavWriter::finish()
{
    if (!m_file.seek(0))
        return failure(m_file.errorString());
    if (const auto written = put(wavHeader(m_rate, m_size)); !written)
        return written;
    m_file.close();
    return m_file.error() == QFileDevice::NoError ? Result<void>() : failure(m_file.errorString());
}

Result<void> WavWriter::put(const QByteArray& bytes)
{
    return m_file.write(bytes) == bytes.size() ? Result<void>() : failure(m_file.errorString());
}

}
