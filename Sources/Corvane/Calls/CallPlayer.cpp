#include "Calls/CallPlayer.h"

#include "Foundation/Literals.h"
#include "Presentation/PlayTime.h"

#include <algorithm>

namespace corvane {

using State = AudioPlayer::State;

CallPlayer::CallPlayer(AudioPlayer& microphone, AudioPlayer& system, QObject* parent)
    : QObject(parent)
    , m_microphone { microphone }
    , m_system { system }
{
    for (AudioPlayer* const player : { &microphone, &system }) {
        connect(player, &AudioPlayer::stateChanged, this, [this] {
            Q_EMIT changed();
            Q_EMIT moved();
        });
        connect(player, &AudioPlayer::positionChanged, this, &CallPlayer::moved);
    }
}

void CallPlayer::open(const QString& microphonePath, const QString& systemPath, qint64 durationMs)
{
    if (microphonePath == m_microphone.path && systemPath == m_system.path && durationMs == m_durationMs)
        return;
    stop();
    m_microphone.path = microphonePath;
    m_system.path = systemPath;
    m_microphone.on = true;
    m_system.on = true;
    m_durationMs = durationMs;
    Q_EMIT changed();
    Q_EMIT moved();
}

/// The one that continues if the other is shorter or muted.
const CallPlayer::Track& CallPlayer::leading() const
{
    const auto rank = [](const Track& track) {
        const State state = track.player.state();
        return !track.isHeard()       ? 0
            : state == State::Playing ? 4
            : state == State::Paused  ? 3
            : state == State::Failed  ? 2
                                      : 1;
    };
    return rank(m_system) > rank(m_microphone) ? m_system : m_microphone;
}

State CallPlayer::current() const
{
    const Track& track = leading();
    return track.isHeard() ? track.player.state() : State::Idle;
}

QString CallPlayer::actionText() const
{
    return current() == State::Playing ? u"Pause"_s : u"Play"_s;
}

QString CallPlayer::problem() const
{
    return current() == State::Failed ? leading().player.errorText() : QString();
}

qint64 CallPlayer::positionMs() const
{
    const State state = current();
    return state == State::Playing || state == State::Paused ? leading().player.positionMs() : m_waitingMs;
}

qint64 CallPlayer::durationMs() const
{
    return std::max({ m_durationMs, m_microphone.player.durationMs(), m_system.player.durationMs() });
}

QString CallPlayer::positionText() const
{
    return playTime(positionMs());
}

QString CallPlayer::durationText() const
{
    return durationMs() > 0 ? playTime(durationMs()) : QString();
}

double CallPlayer::progress() const
{
    return durationMs() > 0 ? std::clamp(double(positionMs()) / double(durationMs()), 0.0, 1.0) : 0;
}

void CallPlayer::startAt(Track& track, qint64 ms)
{
    if (!track.isHeard())
        return;
    track.player.play(track.path);
    if (ms > 0)
        track.player.seek(ms);
}

void CallPlayer::playFrom(qint64 ms)
{
    const bool plays = current() == State::Playing || current() == State::Paused;
    if (plays) {
        for (const Track* const track : { &m_microphone, &m_system }) {
            if (track->isHeard()) {
                track->player.seek(ms);
                track->player.resume();
            }
        }
        return;
    }
    startAt(m_microphone, ms);
    startAt(m_system, ms);
}

void CallPlayer::toggle()
{
    switch (current()) {
    case State::Playing:
        m_microphone.player.pause();
        m_system.player.pause();
        break;
    case State::Paused:
        m_microphone.player.resume();
        m_system.player.resume();
        break;
    case State::Idle:
    case State::Failed:
        playFrom(std::exchange(m_waitingMs, 0));
        break;
    }
}

void CallPlayer::seek(double progress)
{
    const auto to = qint64(std::clamp(progress, 0.0, 1.0) * double(durationMs()));
    const State state = current();
    if (state != State::Playing && state != State::Paused)
        return startFrom(to);
    for (const Track* const track : { &m_microphone, &m_system }) {
        if (track->isHeard())
            track->player.seek(to);
    }
}

void CallPlayer::startFrom(qint64 ms)
{
    if (const State state = current(); state == State::Playing || state == State::Paused)
        return;
    m_waitingMs = ms;
    Q_EMIT moved();
}

void CallPlayer::skip(int seconds)
{
    if (durationMs() > 0)
        seek(double(positionMs() + seconds * 1000LL) / double(durationMs()));
}

void CallPlayer::setOn(Track& track, bool on)
{
    if (track.on == on)
        return;
    const State state = current();
    const qint64 at = positionMs();
    track.on = on;
    if (!on)
        track.player.stop();
    else if (state == State::Playing)
        startAt(track, at);
    // If both would be muted, the other one is unmuted.
    if (!m_microphone.isHeard() && !m_system.isHeard()) {
        Track& other = &track == &m_system ? m_microphone : m_system;
        other.on = true;
        if (state == State::Playing)
            startAt(other, at);
    }
    Q_EMIT changed();
    Q_EMIT moved();
}

void CallPlayer::stop()
{
    m_waitingMs = 0;
    m_microphone.player.stop();
    m_system.player.stop();
}

}
