#include "Platform/Linux/Audio/PulseAudioPlayer.h"

#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Platform/Linux/Services.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr Milliseconds answerTime { 3000 };
constexpr Milliseconds movementPeriod { 100 };
constexpr qint64 enoughMs = 5000; ///< read ahead
constexpr qint64 framesPerMs = SoundPiece::rate / 1000;
constexpr int pieceFrames = SoundPiece::rate * 2;
const QString noOutput = u"This machine has no sound output."_s;
const QString lostOutput = u"The sound output went away."_s;
const QString unreadable = u"This sound can't be played."_s;

}

PulseAudioPlayer::PulseAudioPlayer(Scheduler& scheduler, MediaDecoder& decoder)
    : m_scheduler(scheduler)
    , m_decoder(decoder)
{
}

PulseAudioPlayer::~PulseAudioPlayer() = default;

void PulseAudioPlayer::play(const QString& path)
{
    stop();
    m_path = path;
    m_durationMs = 0;
    setState(State::Playing);
    connectOutput();
    readOn(0);
}

void PulseAudioPlayer::readOn(qint64 frame)
{
    m_nextFrame = frame;
    m_reading = m_decoder.sound(m_path, { m_turn, frame, pieceFrames }, [this](const auto& piece) { take(piece); });
}

void PulseAudioPlayer::take(const std::expected<SoundPiece, DecodeFailure>& piece)
{
    m_reading.reset();
    if (!piece) {
        log(u"AudioPlayer: "_s + describe(piece.error()));
        end(State::Failed, unreadable);
        return;
    }
    m_durationMs = std::max(m_durationMs, piece->durationMs);
    m_nextFrame += piece->samples.size() / SoundPiece::channels;
    m_playback->append(*piece);
    if (!piece->isLast && m_playback->bufferedMs() < enoughMs)
        readOn(m_nextFrame);
}

void PulseAudioPlayer::connectOutput()
{
    const auto post = [this, turn = m_turn](const std::function<void()>& call) {
        QMetaObject::invokeMethod(
            this,
            [this, turn, call] {
                if (turn == m_turn)
                    call();
            },
            Qt::QueuedConnection);
    };
    m_timeout = m_scheduler.after(answerTime, [this] { end(State::Failed, noOutput); });
    m_movement = m_scheduler.every(movementPeriod, [this] {
        if (!m_reading && !m_playback->isWhole() && m_playback->bufferedMs() < enoughMs)
            readOn(m_nextFrame);
        Q_EMIT positionChanged();
    });
    m_playback = std::make_unique<PulsePlayback>(
        PulsePlayback::Callbacks { .started = [this, post] { post([this] { m_timeout.reset(); }); },
            .finished = [this, post] { post([this] { end(State::Idle); }); },
            .lost =
                [this, post](const QString& reason) {
                    post([this, reason] {
                        log(u"AudioPlayer: "_s + reason);
                        end(State::Failed, m_timeout ? noOutput : lostOutput);
                    });
                } });
}

void PulseAudioPlayer::pause()
{
    if (m_state != State::Playing)
        return;
    m_playback->pause();
    setState(State::Paused);
}

void PulseAudioPlayer::resume()
{
    if (m_state != State::Paused)
        return;
    m_playback->resume();
    setState(State::Playing);
}

void PulseAudioPlayer::stop()
{
    end(State::Idle);
}

void PulseAudioPlayer::seek(qint64 positionMs)
{
    if (!m_playback)
        return;
    const qint64 from = std::max<qint64>(0, positionMs);
    const qint64 to = m_durationMs > 0 ? std::min(from, m_durationMs) : from;
    m_playback->seek(to);
    readOn(to * framesPerMs);
    Q_EMIT positionChanged();
}

qint64 PulseAudioPlayer::positionMs() const
{
    const qint64 position = m_playback ? m_playback->positionMs() : 0;
    return m_durationMs > 0 ? std::min(position, m_durationMs) : position;
}

void PulseAudioPlayer::end(State state, const QString& errorText)
{
    ++m_turn;
    m_reading.reset();
    m_playback.reset();
    m_timeout.reset();
    m_movement.reset();
    setState(state, errorText);
}

void PulseAudioPlayer::setState(State state, const QString& errorText)
{
    if (m_state == state && m_errorText == errorText)
        return;
    m_state = state;
    m_errorText = errorText;
    Q_EMIT stateChanged();
}

std::unique_ptr<AudioPlayer> makeAudioPlayer(Scheduler& scheduler, MediaDecoder& decoder)
{
    return std::make_unique<PulseAudioPlayer>(scheduler, decoder);
}

}
