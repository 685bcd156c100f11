#pragma once

#include <QList>
#include <optional>

namespace corvane {

/// Speech without the pauses around it, and where it stood in the sound.
struct SpeechCut {
    struct Stretch {
        qint64 cutMs = 0;
        qint64 soundMs = 0;
    };

    QList<qint16> samples; ///< in `speechFormat`
    QList<Stretch> stretches; ///< where each begins, in the cut and in the sound

    qint64 soundMs(qint64 cutMs) const; ///< where a moment of the cut stands in the sound
};

/// Takes a sound piece by piece and leaves out where nobody speaks: voice rises and falls over what is around it,
/// silence and steady noise do not. Half a second around each voice is kept.
class SpeechCutter {
public:
    /// The next samples, in `speechFormat`, from -1 to 1.
    void take(const QList<float>& samples, bool isLast);

    /// What is to be recognised next: some minutes that end in a pause where there is one, and at the end of the sound
    /// the rest. Nothing before that much is there.
    std::optional<SpeechCut> next();

private:
    void mark(qsizetype frames);
    void settle(qsizetype frames);

    QList<qint16> m_waiting; ///< samples of frames that are not settled
    QList<bool> m_voiced; ///< a flag a waiting frame
    QList<float> m_levels; ///< of the latest frames, in decibels
    qint64 m_frame = 0; ///< number of the first waiting frame
    int m_sinceVoice = 0; ///< frames
    bool m_inSpeech = false; ///< the last settled frame was kept
    bool m_isLast = false;
    SpeechCut m_cut;
};

}
