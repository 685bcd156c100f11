#pragma once

#include "Foundation/Result.h"

#include <QList>
#include <QObject>
#include <functional>
#include <memory>

namespace corvane {

/// A program that is playing or recording sound.
struct SoundApplication {
    QString binary; ///< the file name of its executable, such as "firefox"
    QString name; ///< its display name
    bool plays = false;
    bool records = false;

    bool operator==(const SoundApplication&) const = default;
};

/// Records one track of a call into its own file: AAC in an .m4a of mode 0600. It starts when created and survives
/// changes of its source: it follows the default device within a second and reconnects to a sound server that went
/// away; meanwhile the file gets silence. File time is call time to 0.3 seconds, whatever the clock of the sound card
/// says. A crash of the program loses at most the last second. Destroying a running recording closes it.
class TrackRecording : public QObject {
    Q_OBJECT
public:
    using Done = std::function<void(const Result<void>&)>;
    using QObject::QObject;

    virtual double elapsedSeconds() const = 0; ///< length of the file's sound
    virtual double level() = 0; ///< the peak since the last call, from 0 to 1
    virtual bool hasSource() const = 0; ///< false while it writes silence

    /// Ends the recording and finalises the file in the background; `done` follows on the main thread. Fails if no
    /// sound ever came (there is no file then) or if the file could not be written; what was written is kept.
    virtual void stop(Done done) = 0;
    virtual void close() = 0; ///< ends the recording at once; the file is playable but not finalised
    virtual void cancel() = 0; ///< ends the recording and deletes the file

Q_SIGNALS:
    void sourceChanged();
    void failed(const QString& reason); ///< the file cannot be written; nothing more is recorded
};

/// The sound of a call: the microphone, and what the machine plays.
class CallAudio {
public:
    virtual ~CallAudio() = default;

    /// 44,100 Hz, mono. Null if `path` exists or cannot be created.
    virtual std::unique_ptr<TrackRecording> recordMicrophone(const QString& path) = 0;

    /// 48,000 Hz, stereo: what the default output plays, or only what the given program plays. The file begins at
    /// `startMs` of the scheduler's monotonic clock, with silence until now: two tracks have one time.
    virtual std::unique_ptr<TrackRecording> recordSystem(const QString& path, const QString& binary, qint64 startMs)
        = 0;

    /// Whether the machine's output can be recorded now. Answers within three seconds, on the main thread.
    virtual void findSystemAudio(std::function<void(const Result<void>&)> answer) = 0;

    /// The programs that play or record, without this one. Answers later, on the main thread; empty if the sound server
    /// does not respond within three seconds.
    virtual void findApplications(std::function<void(const QList<SoundApplication>&)> answer) = 0;

    /// Finalises a file that a crashed program left, in the background.
    virtual void repair(const QString& path, TrackRecording::Done done) = 0;
};

}
