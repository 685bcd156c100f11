#pragma once

#include "Foundation/Scheduler.h"
#include "Platform/AudioPlayer.h"
#include "Platform/Linux/Audio/PulsePlayback.h"
#include "Platform/MediaDecoder.h"

namespace corvane {

/// Sound through the sound server, as the decoder reads it, a few seconds ahead. Nothing is connected while no file
/// plays.
class PulseAudioPlayer final : public AudioPlayer {
    Q_OBJECT
public:
    PulseAudioPlayer(Scheduler& scheduler, MediaDecoder& decoder); ///< which outlive it
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
    void readOn(qint64 frame);
    void take(const std::expected<SoundPiece, DecodeFailure>& piece);
    void connectOutput();
    void end(State state, const QString& errorText = {});
    void setState(State state, const QString& errorText = {});

    Scheduler& m_scheduler;
    MediaDecoder& m_decoder;
    MediaDecoder::Handle m_reading;
    QString m_path;
    qint64 m_nextFrame = 0; ///< where the next piece begins
    quint64 m_turn = 0; ///< what the playback of an earlier one still tells is not heard
    std::unique_ptr<PulsePlayback> m_playback;
    std::unique_ptr<Timer> m_timeout;
    std::unique_ptr<Timer> m_movement;
    State m_state = State::Idle;
    QString m_errorText;
    qint64 m_durationMs = 0;
};

}
