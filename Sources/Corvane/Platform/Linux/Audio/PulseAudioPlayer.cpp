#include "Platform/Linux/Audio/PulseAudioPlayer.h"

#include "Foundation/Log.h"
#include "Platform/Linux/Services.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr Milliseconds answerTime { 3000 };
constexpr Milliseconds movementPeriod { 100 };
const QString noOutput = QStringLiteral("This machine has no sound output.");
const QString lostOutput = QStringLiteral("The sound output went away.");
const QString unreadable = QStringLiteral("This sound can't be played.");

}

PulseAudioPlayer::PulseAudioPlayer(Scheduler& scheduler)
    : m_scheduler(scheduler)
{
}

PulseAudioPlayer::~PulseAudioPlayer() = default;

void PulseAudioPlayer::play(const QString& path)
{
    stop();
    auto file = SoundFile::open(path);
    if (!file) {
        log(QStringLiteral("AudioPlayer: ") + file.error().message);
        setState(State::Failed, unreadable);
        return;
    }
    m_durationMs = (*file)->durationMs();
    const auto post = [this, turn = m_turn](const std::function<void()>& call) {
        QMetaObject::invokeMethod(
            this,
            [this, turn, call] {
                if (turn == m_turn)
                    call();
            },
            Qt::QueuedConnection);
    };
    setState(State::Playing);
    m_timeout = m_scheduler.after(answerTime, [this] { end(State::Failed, noOutput); });
    m_movement = m_scheduler.every(movementPeriod, [this] { Q_EMIT positionChanged(); });
    m_playback = std::make_unique<PulsePlayback>(std::move(*file),
        PulsePlayback::Callbacks { .started = [this, post] { post([this] { m_timeout.reset(); }); },
            .finished = [this, post] { post([this] { end(State::Idle); }); },
            .lost =
                [this, post](const QString& reason) {
                    post([this, reason] {
                        log(QStringLiteral("AudioPlayer: ") + reason);
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
    m_playback->seek(std::clamp<qint64>(positionMs, 0, std::max<qint64>(0, m_durationMs)));
    Q_EMIT positionChanged();
}

qint64 PulseAudioPlayer::positionMs() const
{
    return m_playback ? std::min(m_playback->positionMs(), m_durationMs) : 0;
}

void PulseAudioPlayer::end(State state, const QString& errorText)
{
    ++m_turn;
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

std::unique_ptr<AudioPlayer> makeAudioPlayer(Scheduler& scheduler)
{
    return std::make_unique<PulseAudioPlayer>(scheduler);
}

}
