#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace corvane {

/// How loud both sides of a call are, a value each for every stretch of the same length.
class CallWaveform {
public:
    void append(double microphone, double system); ///< from 0 to 1

    bool isEmpty() const { return m_microphone.isEmpty(); }
    double lastLevel() const; ///< of both sides, from 0 to 1

    /// The loudest of each part, from 0 to 1, for that many parts of the whole.
    QList<float> microphone(int parts) const { return shape(m_microphone, parts); }
    QList<float> system(int parts) const { return shape(m_system, parts); }

    friend bool writeWaveform(const QString& callFolder, const CallWaveform& waveform);
    friend CallWaveform readWaveform(const QString& callFolder);

private:
    static QList<float> shape(const QByteArray& levels, int parts);

    QByteArray m_microphone; ///< a byte each
    QByteArray m_system;
};

/// In "waveform" beside the sound of the call.
bool writeWaveform(const QString& callFolder, const CallWaveform& waveform);
CallWaveform readWaveform(const QString& callFolder); ///< empty where there is none

}
