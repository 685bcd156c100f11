#pragma once

#include "Foundation/Scheduler.h"
#include "Platform/AudioPlayer.h"
#include "Platform/Linux/Audio/PulsePlayback.h"
#include "Platform/MediaDecoder.h"

namespace corvane {

/// Plays sound through the sound server; the decoder reads a few seconds ahead. There is no connection while nothing
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
    qint64 m_nextFrame = 0; ///< where the next piece starts
    quint64 m_turn = 0; ///< late callbacks of an earlier playback are ignored
    std::unique_ptr<PulsePlayback> m_playback;
    std::unique_ptr<Timer> m_timeout;
    std::unique_ptr<Timer> m_movement;
    State m_state = State::Idle;
    QString m_errorText;
    qint64 m_durationMs = 0;
};

}
