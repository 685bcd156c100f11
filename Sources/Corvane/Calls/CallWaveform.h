#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace corvane {

/// The loudness of both sides of a call, one value per interval of fixed length.
class CallWaveform {
public:
    void append(double microphone, double system); ///< from 0 to 1

    bool isEmpty() const { return m_microphone.isEmpty(); }
    double lastLevel() const; ///< of both sides, from 0 to 1

    /// Resampled to that number of values from 0 to 1; each is the peak of its part.
    QList<float> microphone(int parts) const { return shape(m_microphone, parts); }
    QList<float> system(int parts) const { return shape(m_system, parts); }

    friend bool writeWaveform(const QString& callFolder, const CallWaveform& waveform);
    friend CallWaveform readWaveform(const QString& callFolder);

private:
    static QList<float> shape(const QByteArray& levels, int parts);

    QByteArray m_microphone; ///< one byte per value
    QByteArray m_system;
};

/// In "waveform" beside the sound of the call.
bool writeWaveform(const QString& callFolder, const CallWaveform& waveform);
CallWaveform readWaveform(const QString& callFolder); ///< empty if there is none
void removeWaveform(const QString& callFolder);

}
