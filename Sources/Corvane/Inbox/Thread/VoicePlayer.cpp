#include "Inbox/Thread/VoicePlayer.h"

#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"
#include "Inbox/Thread/MediaFile.h"
#include "Inbox/Thread/ThreadView.h"

#include <algorithm>

namespace corvane {

using State = AudioPlayer::State;

VoicePlayer::VoicePlayer(AudioPlayer& player, ThreadView& thread, EngineManager& engine, QObject* parent)
    : QObject(parent)
    , m_player(player)
    , m_thread(thread)
    , m_engine(engine)
{
    connect(&player, &AudioPlayer::stateChanged, this, [this] {
        Q_EMIT changed();
        Q_EMIT moved();
    });
    connect(&player, &AudioPlayer::positionChanged, this, &VoicePlayer::moved);
    connect(&thread, &ThreadView::contactChanged, this, [this] {
        if (!m_messageId.isEmpty() && !m_thread.message(m_messageId))
            stop();
    });
    connect(&thread, &ThreadView::changed, this, [this] {
        if (!m_messageId.isEmpty() && !m_thread.message(m_messageId))
            stop();
    });
}

State VoicePlayer::current() const
{
    if (m_messageId.isEmpty())
        return State::Idle;
    return m_problem.isEmpty() ? m_player.state() : State::Failed;
}

QString VoicePlayer::stateText() const
{
    switch (current()) {
    case State::Idle:
        return {};
    case State::Playing:
        return u"Playing"_s;
    case State::Paused:
        return u"Paused"_s;
    case State::Failed:
        return m_problem.isEmpty() ? m_player.errorText() : m_problem;
    }
    return {};
}

QString VoicePlayer::actionText() const
{
    return current() == State::Playing ? u"Pause"_s : u"Play"_s;
}

QString VoicePlayer::positionText() const
{
    return playTime(m_player.positionMs());
}

QString VoicePlayer::durationText() const
{
    return m_player.durationMs() > 0 ? playTime(m_player.durationMs()) : QString();
}

double VoicePlayer::progress() const
{
    const qint64 duration = m_player.durationMs();
    return duration > 0 ? std::clamp(double(m_player.positionMs()) / double(duration), 0.0, 1.0) : 0;
}

void VoicePlayer::toggle(const QString& messageId)
{
    if (messageId == m_messageId && current() == State::Playing) {
        m_player.pause();
        return;
    }
    if (messageId == m_messageId && current() == State::Paused) {
        m_player.resume();
        return;
    }
    const UnifiedMsgRow* row = m_thread.message(messageId);
    if (!row)
        return;
    m_player.stop();
    const QString path = row->mediaPath.value_or(QString());
    const QString kind = u"audio"_s;
    m_messageId = messageId;
    m_problem = describe(checkMedia(path, kind, m_engine.mediaPlaces(*row)), kind);
    if (m_problem.isEmpty())
        m_player.play(path);
    Q_EMIT changed();
    Q_EMIT moved();
}

void VoicePlayer::seek(double progress)
{
    if (current() == State::Playing || current() == State::Paused)
        m_player.seek(qint64(std::clamp(progress, 0.0, 1.0) * double(m_player.durationMs())));
}

void VoicePlayer::skip(int seconds)
{
    if (current() == State::Playing || current() == State::Paused)
        m_player.seek(std::clamp<qint64>(m_player.positionMs() + seconds * 1000LL, 0, m_player.durationMs()));
}

void VoicePlayer::stop()
{
    m_messageId.clear();
    m_problem.clear();
    m_player.stop();
    Q_EMIT changed();
    Q_EMIT moved();
}

}
