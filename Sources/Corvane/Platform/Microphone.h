#pragma once

#include <QObject>
#include <functional>
#include <memory>

namespace corvane {

enum class MicrophoneAccess { Granted, Denied, Missing };

/// Records into a file: AAC, 44,100 Hz, mono, in an .m4a; or PCM, 16,000 Hz, for speech recognition, in a .wav.
/// Whatever ends it, the file holds what was recorded until then; after a crash the .m4a lacks at most the last second.
/// Destroying a running recording stops it.
class MicrophoneRecording : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    virtual double elapsedSeconds() const = 0; ///< length of the recorded sound; 0 until the first samples arrive
    virtual double level() = 0; ///< the peak since the last call, from 0 to 1

    /// Ends the recording and finalises the file. False if no sound was recorded: there is no file then.
    virtual bool stop() = 0;
    virtual void cancel() = 0; ///< ends the recording and deletes the file

Q_SIGNALS:
    /// Recording cannot start or continue: the device is gone, the sound server ended, the disk is full; `reason` says
    /// so as part of a sentence. Nothing more is recorded; `stop` and `cancel` work as usual.
    void interrupted(const QString& reason);
};

/// The microphone that the user has chosen. A service that does not respond within three seconds is an error.
class Microphone {
public:
    virtual ~Microphone() = default;

    /// The answer arrives later, on the main thread; never after this object is destroyed.
    virtual void requestAccess(std::function<void(MicrophoneAccess)> answer) = 0;

    /// Starts recording into a new file at `path`, of mode 0600, in the format of its extension; null if the file
    /// exists or cannot be created.
    virtual std::unique_ptr<MicrophoneRecording> record(const QString& path) = 0;
};

}
