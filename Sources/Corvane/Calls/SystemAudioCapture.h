#pragma once

#include "Platform/CallAudio.h"

#include <QPointer>

namespace corvane {

/// Why the machine's output cannot be recorded.
enum class SystemAudioCaptureError { WriterSetup, CaptureFailed, Unavailable };

/// For the user.
QString describe(SystemAudioCaptureError error, const QString& detail = {});

/// Records what the machine plays, the other side of a call, into a file. On failure the call continues with the
/// microphone only.
class SystemAudioCapture : public QObject {
    Q_OBJECT
public:
    using Done = std::function<void(const Result<void>&)>;

    /// `audio` outlives the capture.
    explicit SystemAudioCapture(CallAudio& audio, QObject* parent = nullptr);

    /// `binary`: the program that holds the call; empty for everything. Overwrites an existing file. `done` follows
    /// later, while this object exists. The file begins at `startMs` of the monotonic clock.
    void start(const QString& path, const QString& binary, qint64 startMs, Done done);

    /// Fails if no sound ever came. `done` follows later, even after this object is destroyed.
    void stop(Done done);
    void close(); ///< stops at once and keeps the file unfinalised
    void cancel(); ///< stops at once and deletes the file

    TrackRecording* track() { return m_track.get(); } ///< null while nothing is recorded

private:
    CallAudio& m_audio;
    std::unique_ptr<TrackRecording> m_track;
};

}
