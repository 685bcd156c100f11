#pragma once

#include "Foundation/Literals.h"
#include "Platform/AudioPlayer.h"

#include <QStringList>

namespace corvane {

/// A player whose state and position are set by the test.
class FakeAudioPlayer final : public AudioPlayer {
public:
    void play(const QString& path) override
    {
        played.append(path);
        position = 0;
        enter(State::Playing);
    }
    void pause() override { enter(State::Paused); }
    void resume() override { enter(State::Playing); }
    void stop() override { enter(State::Idle); }
    void seek(qint64 positionMs) override { moveTo(positionMs); }
    State state() const override { return current; }
    QString errorText() const override { return current == State::Failed ? error : QString(); }
    qint64 positionMs() const override { return position; }
    qint64 durationMs() const override { return duration; }

    void enter(State state)
    {
        current = state;
        Q_EMIT stateChanged();
    }
    void moveTo(qint64 positionMs)
    {
        position = positionMs;
        Q_EMIT positionChanged();
    }

    QStringList played;
    State current = State::Idle;
    QString error = u"This machine has no sound output."_s;
    qint64 position = 0;
    qint64 duration = 0;
};

}
