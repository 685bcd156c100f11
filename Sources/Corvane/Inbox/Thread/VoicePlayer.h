#pragma once

#include "Platform/AudioPlayer.h"
#include "Presentation/EnumWord.h"
#include "Presentation/PlayTime.h"

namespace corvane {

class EngineManager;
class ThreadView;

/// Plays voice notes: one at a time, while its thread is open.
class VoicePlayer : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString messageId READ messageId NOTIFY changed) ///< of the current note; empty for none
    Q_PROPERTY(QString state READ state NOTIFY changed) ///< idle playing paused failed
    Q_PROPERTY(QString stateText READ stateText NOTIFY changed) ///< such as "Playing", or why it failed
    Q_PROPERTY(QString actionText READ actionText NOTIFY changed) ///< label of `toggle`: "Play", "Pause"
    Q_PROPERTY(QString positionText READ positionText NOTIFY moved) ///< "0:07"
    Q_PROPERTY(QString durationText READ durationText NOTIFY moved) ///< "1:20", empty if unknown
    Q_PROPERTY(double progress READ progress NOTIFY moved) ///< from 0 to 1
public:
    /// All references outlive the object.
    VoicePlayer(AudioPlayer& player, ThreadView& thread, EngineManager& engine, QObject* parent = nullptr);

    const QString& messageId() const { return m_messageId; }
    QString state() const { return enumWord(current()); }
    QString stateText() const;
    QString actionText() const;
    QString positionText() const;
    QString durationText() const;
    double progress() const;

    Q_INVOKABLE void toggle(const QString& messageId); ///< plays, pauses or resumes
    Q_INVOKABLE void seek(double progress);
    Q_INVOKABLE void skip(int seconds); ///< forward, or back if negative
    Q_INVOKABLE void stop();

Q_SIGNALS:
    void changed();
    void moved();

private:
    AudioPlayer::State current() const;

    AudioPlayer& m_player;
    ThreadView& m_thread;
    EngineManager& m_engine;
    QString m_messageId;
    QString m_problem; ///< why the file was not played
};

}
