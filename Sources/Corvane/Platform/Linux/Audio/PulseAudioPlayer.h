#pragma once

#include "Foundation/Scheduler.h"
#include "Platform/AudioPlayer.h"
#include "Platform/Linux/Audio/PulsePlayback.h"

namespace corvane {

/// Sound through the sound server, decoded with FFmpeg. Nothing is loaded or connected while no file plays.
class PulseAudioPlayer final : public AudioPlayer {
    Q_OBJECT
public:
    explicit PulseAudioPlayer(Scheduler& scheduler); ///< which outlives it
    ~PulseAudioPlayer() override;

    void play(const QString& path) override;
    void pause() override;
    void resume() override;
    void stop() override;
    void seek(qint64 positionMs) override;
    State state() const override { return m_state; }
    QString errorText() const override { return m_errorText; }
    qint64 positionMs() const override;
    qint64 durationMs() const override { return m_durationMs; }

private:
    void end(State state, const QString& errorText = {});
    void setState(State state, const QString& errorText = {});

    Scheduler& m_scheduler;
    quint64 m_turn = 0; ///< what the playback of an earlier one still tells is not heard
    std::unique_ptr<PulsePlayback> m_playback;
    std::unique_ptr<Timer> m_timeout;
    std::unique_ptr<Timer> m_movement;
    State m_state = State::Idle;
    QString m_errorText;
    qint64 m_durationMs = 0;
};

}
