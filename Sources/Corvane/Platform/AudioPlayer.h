#pragma once

#include <QObject>

namespace corvane {

/// Plays one sound file at a time. Without an audio output every file fails with an error text.
class AudioPlayer : public QObject {
    Q_OBJECT
public:
    enum class State { Idle, Playing, Paused, Failed };
    Q_ENUM(State)
    using QObject::QObject;

    virtual void play(const QString& path) = 0; ///< from its start; stops the previous one
    virtual void pause() = 0;
    virtual void resume() = 0;
    virtual void stop() = 0;
    virtual void seek(qint64 positionMs) = 0;

    virtual State state() const = 0; ///< idle again at the end of the file
    virtual QString errorText() const = 0; ///< for the user; empty unless it failed
    virtual qint64 positionMs() const = 0;
    virtual qint64 durationMs() const = 0; ///< 0 while unknown

Q_SIGNALS:
    void stateChanged();
    void positionChanged(); ///< or the duration
};

}
