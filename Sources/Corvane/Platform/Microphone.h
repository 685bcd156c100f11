#pragma once

#include <QObject>
#include <functional>
#include <memory>

namespace corvane {

enum class MicrophoneAccess { Granted, Denied, Missing };

/// One recording into a file: AAC, 44,100 Hz, one channel, in an .m4a; or plain, 16,000 Hz, as speech is recognised,
/// in a .wav. Whatever ends it, the file holds what was recorded until then; after a crash of the program the .m4a
/// does, all but the last second. Destroying a recording that runs stops it.
class MicrophoneRecording : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    virtual double elapsedSeconds() const = 0; ///< of sound that was recorded; it stands at 0 until the first comes
    virtual double level() = 0; ///< the loudest since the last call, from 0 to 1

    /// Ends the recording and finishes the file. False where no sound came: then there is no file.
    virtual bool stop() = 0;
    virtual void cancel() = 0; ///< ends the recording and removes the file

Q_SIGNALS:
    /// It cannot go on, or could not begin: the device went, the sound server ended, the disk is full; `reason`
    /// says so within a sentence. Nothing more is recorded; `stop` and `cancel` are as ever.
    void interrupted(const QString& reason);
};

/// The machine's microphone, as the person has chosen it. A service that does not answer ends in its words within
/// three seconds.
class Microphone {
public:
    virtual ~Microphone() = default;

    /// The answer comes later, on the main thread; none comes once this object is gone.
    virtual void requestAccess(std::function<void(MicrophoneAccess)> answer) = 0;

    /// Begins to record into a new file at `path`, of mode 0600, in the format of its ending; nothing where there is a
    /// file already or none can be made.
    virtual std::unique_ptr<MicrophoneRecording> record(const QString& path) = 0;
};

}
