#pragma once

#include "Platform/CallAudio.h"

#include <QPointer>

namespace corvane {

/// Why what the machine plays can't be recorded.
enum class SystemAudioCaptureError { WriterSetup, CaptureFailed, Unavailable };

/// In words for the user.
QString describe(SystemAudioCaptureError error, const QString& detail = {});

/// Records what the machine plays, the other side of a call, into a file. Any failure leaves the call to the
/// microphone.
class SystemAudioCapture : public QObject {
    Q_OBJECT
public:
    using Done = std::function<void(const Result<void>&)>;

    /// `audio` outlives the capture.
    explicit SystemAudioCapture(CallAudio& audio, QObject* parent = nullptr);

    /// `binary`: the program that holds the call; empty for everything that plays. A file that stands at the path is
    /// replaced. `done` comes later, while this object lives.
    void start(const QString& path, const QString& binary, Done done);

    /// Fails where no sound ever came. `done` comes later, even where this object is gone by then.
    void stop(Done done);
    void close(); ///< ends at once and keeps the file, which is not made whole
    void cancel(); ///< ends at once and removes the file

    TrackRecording* track() { return m_track.get(); } ///< null while nothing is recorded

private:
    CallAudio& m_audio;
    std::unique_ptr<TrackRecording> m_track;
};

}
