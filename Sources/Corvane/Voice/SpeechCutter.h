#pragma once

#include <QList>
#include <optional>

namespace corvane {

/// Speech without pauses, and its position in the sound.
struct SpeechCut {
    struct Stretch {
        qint64 cutMs = 0;
        qint64 soundMs = 0;
    };

    QList<qint16> samples; ///< in `speechFormat`
    QList<Stretch> stretches; ///< where each begins, in the cut and in the sound

    qint64 soundMs(qint64 cutMs) const; ///< converts a time in the cut to a time in the sound
};

/// Takes a sound piece by piece and removes the parts without speech: voice rises and falls over the background,
/// silence and steady noise do not. Half a second around each utterance is kept.
class SpeechCutter {
public:
    /// The next samples, in `speechFormat`, from -1 to 1.
    void take(const QList<float>& samples, bool isLast);

    /// The next part to recognise: some minutes that end in a pause if possible, and at the end of the sound the rest.
    /// Nothing until there is enough.
    std::optional<SpeechCut> next();

private:
    void mark(qsizetype frames);
    void settle(qsizetype frames);

    QList<qint16> m_waiting; ///< of undecided frames
    QList<bool> m_voiced; ///< one flag per waiting frame
    QList<float> m_levels; ///< of recent frames, in decibels
    qint64 m_frame = 0; ///< index of the first waiting frame
    int m_sinceVoice = 0; ///< in frames
    bool m_inSpeech = false; ///< the last decided frame was kept
    bool m_isLast = false;
    SpeechCut m_cut;
};

}
