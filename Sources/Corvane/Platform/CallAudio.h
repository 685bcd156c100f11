#pragma once

#include "Foundation/Result.h"

#include <QList>
#include <QObject>
#include <functional>
#include <memory>

namespace corvane {

/// A program that plays sound or records it at this moment.
struct SoundApplication {
    QString binary; ///< the file name of its program, such as "firefox"
    QString name; ///< in its own words
    bool plays = false;
    bool records = false;

    bool operator==(const SoundApplication&) const = default;
};

/// One track of a call into a file of its own: AAC in an .m4a of mode 0600. It begins when it is made, and goes on
/// whatever happens to its source: the next default device is followed within a second, a sound server that ends is
/// looked for again, and while there is none the file takes silence, so that a moment of the file is a moment of the
/// call. A killed program loses the last second at most. Destroying a recording that runs closes it.
class TrackRecording : public QObject {
    Q_OBJECT
public:
    using Done = std::function<void(const Result<void>&)>;
    using QObject::QObject;

    virtual double elapsedSeconds() const = 0; ///< of what the file holds
    virtual double level() = 0; ///< the loudest since the last call, from 0 to 1
    virtual bool hasSource() const = 0; ///< false while silence is written

    /// Ends the recording and makes the file whole, away from the main thread; `done` comes later on it. It fails where
    /// no sound ever came, and then there is no file, or where the file could not be written; what was is kept.
    virtual void stop(Done done) = 0;
    virtual void close() = 0; ///< ends the recording at once; the file plays and is not made whole
    virtual void cancel() = 0; ///< ends the recording and removes the file

Q_SIGNALS:
    void sourceChanged();
    void failed(const QString& reason); ///< the file takes no more; nothing more is recorded
};

/// The sound of a call: what the person says, and what the machine plays.
class CallAudio {
public:
    virtual ~CallAudio() = default;

    /// 44,100 Hz, one channel. Nothing where a file stands at `path` or none can be made.
    virtual std::unique_ptr<TrackRecording> recordMicrophone(const QString& path) = 0;

    /// 48,000 Hz, two channels: what the default output plays, or only what the program of that file name plays.
    virtual std::unique_ptr<TrackRecording> recordSystem(const QString& path, const QString& binary) = 0;

    /// Whether the machine's output can be recorded now. The answer comes later, on the main thread, within three
    /// seconds.
    virtual void findSystemAudio(std::function<void(const Result<void>&)> answer) = 0;

    /// The programs that play or record, without this one. The answer comes later, on the main thread; it is empty
    /// where the sound server does not answer within three seconds.
    virtual void findApplications(std::function<void(const QList<SoundApplication>&)> answer) = 0;

    /// Makes a file whole that a killed program left, away from the main thread.
    virtual void repair(const QString& path, TrackRecording::Done done) = 0;
};

}
