#include "Calls/CallWaveform.h"

#include "Foundation/Literals.h"
#include "Platform/PrivateFile.h"

#include <QFile>
#include <algorithm>

namespace corvane {

namespace {

constexpr double loudest = 255;

QString waveformPath(const QString& folder)
{
    return folder + u"/waveform"_s;
}

char level(double value)
{
    return char(quint8(std::clamp(value, 0.0, 1.0) * loudest));
}

}

void CallWaveform::append(double microphone, double system)
{
    m_microphone.append(level(microphone));
    m_system.append(level(system));
}

double CallWaveform::lastLevel() const
{
    return isEmpty() ? 0 : std::max(quint8(m_microphone.back()), quint8(m_system.back())) / loudest;
}

QList<float> CallWaveform::shape(const QByteArray& levels, int parts)
{
    QList<float> bars(levels.isEmpty() ? 0 : parts);
    for (qsizetype i = 0; i < bars.size(); ++i) {
        const qsizetype from = i * levels.size() / parts;
        const qsizetype to = std::max(from + 1, (i + 1) * levels.size() / parts);
        quint8 peak = 0;
        for (qsizetype at = from; at < to; ++at)
            peak = std::max(peak, quint8(levels.at(at)));
        bars[i] = float(peak / loudest);
    }
    return bars;
}

bool writeWaveform(const QString& callFolder, const CallWaveform& waveform)
{
    return writePrivateFile(waveformPath(callFolder), waveform.m_microphone + waveform.m_system, Outlives::Program);
}

CallWaveform readWaveform(const QString& callFolder)
{
    CallWaveform waveform;
    QFile file(waveformPath(callFolder));
    if (!file.open(QIODevice::ReadOnly))
        return waveform;
    const QByteArray levels = file.readAll();
    waveform.m_microphone = levels.first(levels.size() / 2);
    waveform.m_system = levels.sliced(levels.size() / 2);
    return waveform;
}

void removeWaveform(const QString& callFolder)
{
    QFile::remove(waveformPath(callFolder));
}

}
