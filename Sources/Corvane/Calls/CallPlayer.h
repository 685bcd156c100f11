#pragma once

#include "Platform/AudioPlayer.h"
#include "Presentation/EnumWord.h"

namespace corvane {

/// Plays both tracks of a call in sync; each can be muted.
class CallPlayer : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString state READ state NOTIFY changed) ///< idle playing paused failed
    Q_PROPERTY(QString actionText READ actionText NOTIFY changed) ///< label of `toggle`: "Play", "Pause"
    Q_PROPERTY(QString problem READ problem NOTIFY changed) ///< why it does not play
    Q_PROPERTY(QString positionText READ positionText NOTIFY moved) ///< "0:07"
    Q_PROPERTY(QString durationText READ durationText NOTIFY moved)
    Q_PROPERTY(double progress READ progress NOTIFY moved) ///< from 0 to 1
    Q_PROPERTY(bool hasBoth READ hasBoth NOTIFY changed)
    Q_PROPERTY(bool microphoneOn READ microphoneOn WRITE setMicrophoneOn NOTIFY changed)
    Q_PROPERTY(bool systemOn READ systemOn WRITE setSystemOn NOTIFY changed)
public:
    /// Both outlive the object, and play nothing else.
    CallPlayer(AudioPlayer& microphone, AudioPlayer& system, QObject* parent = nullptr);

    /// Sets the tracks; either may be empty. Stops what is playing.
    void open(const QString& microphonePath, const QString& systemPath, qint64 durationMs);

    QString state() const { return enumWord(current()); }
    QString actionText() const;
    QString problem() const;
    QString positionText() const;
    QString durationText() const;
    double progress() const;
    qint64 positionMs() const;
    qint64 durationMs() const;
    bool hasBoth() const { return !m_microphone.path.isEmpty() && !m_system.path.isEmpty(); }
    bool microphoneOn() const { return m_microphone.on; }
    void setMicrophoneOn(bool on) { setOn(m_microphone, on); }
    bool systemOn() const { return m_system.on; }
    void setSystemOn(bool on) { setOn(m_system, on); }

    Q_INVOKABLE void toggle(); ///< plays, pauses or resumes
    Q_INVOKABLE void seek(double progress);
    Q_INVOKABLE void skip(int seconds); ///< forward, or back if negative
    void playFrom(qint64 ms);
    void startFrom(qint64 ms); ///< when it plays next; nothing while it does
    void stop();

Q_SIGNALS:
    void changed();
    void moved();

private:
    struct Track {
        AudioPlayer& player;
        QString path = {};
        bool on = true;

        bool isHeard() const { return on && !path.isEmpty(); }
    };
    void setOn(Track& track, bool on);
    void startAt(Track& track, qint64 ms);
    const Track& leading() const; ///< the one that determines the position
    AudioPlayer::State current() const;

    Track m_microphone;
    Track m_system;
    qint64 m_durationMs = 0;
    qint64 m_waitingMs = 0; ///< where it will start
};

}
