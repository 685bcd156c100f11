#pragma once

#include "Calls/CallPhase.h"
#include "Calls/CallProcessor.h"
#include "Calls/CallWaveform.h"
#include "Calls/SystemAudioCapture.h"
#include "Foundation/Literals.h"
#include "Foundation/Scheduler.h"
#include "Platform/Microphone.h"
#include "Platform/SleepInhibitor.h"

namespace corvane {

class BackgroundQueue;
class MachineFacts;
class RecordedCalls;
class UserDefaults;
struct AppPaths;

/// What is recorded, and who consented.
struct CallRecordingContext {
    QString startMode = u"manual"_s; ///< or "calendar_auto"
    QString calendarEventId = {};
    QString contactId = {};
    QString conversationId = {};
    QString sourceApp = {};
    QString sourceBundleId = {};
    bool consentRequired = true;
    bool consentGranted = false;
    QString consentNote = u"User-started from Corvane; participant consent must be handled by the user."_s;
    QString disclosureMode = u"manual"_s;
};

/// The only owner of a running recording. It records the microphone and, if wanted and possible, what the machine
/// plays, keeps the call's row up to date, and passes the recording to the processor. One recording runs at a time; an
/// earlier call may still be processed.
class CallRecorder : public QObject {
    Q_OBJECT
public:
    /// All references outlive the recorder.
    struct Surroundings {
        RecordedCalls& recorded;
        CallProcessor& processor;
        Microphone& microphone;
        CallAudio& audio;
        SleepInhibitor& sleep;
        const MachineFacts& machine;
        UserDefaults& defaults;
        Scheduler& scheduler;
        const AppPaths& paths;
        BackgroundQueue& background;
    };

    explicit CallRecorder(const Surroundings& surroundings, QObject* parent = nullptr);
    ~CallRecorder() override;

    void start(const QString& title, const CallRecordingContext& context); ///< no effect while one runs or starts
    void stop();
    void stopForQuit(); ///< closes the files at once and keeps them
    void cancelActiveRecording(); ///< deletes them
    void mark(); ///< marks the current moment

    const CallPhase& phase() const { return m_phase; } ///< of the latest call
    bool isRecording() const { return m_active != nullptr; }
    bool isStarting() const { return m_starting; } ///< requested, but neither recording nor failed yet
    bool records(const QString& callId) const { return isRecording() && m_shown.id == callId; }
    bool isSaving(const QString& callId) const { return m_saving.contains(callId); } ///< its files are being finalised
    double elapsed() const { return m_elapsed; } ///< in seconds
    const CallWaveform& waveform() const { return m_waveform; } ///< of the current or last recording
    const QString& activeCallId() const { return m_shown.id; } ///< empty once it is processed
    const QString& activeCalendarEventId() const { return m_shown.context.calendarEventId; }
    const QString& activeStartMode() const { return m_shown.context.startMode; }
    const QString& activeCaptureMode() const { return m_shown.captureMode; }
    const QString& activeTitle() const { return m_shown.title; }
    const QString& statusText() const { return m_statusText; }
    QString warningText() const; ///< a problem of the running recording
    const QList<qint64>& marksMs() const { return m_marksMs; } ///< of the recording that runs

    bool systemAudioEnabled() const;
    void setSystemAudioEnabled(bool enabled);
    const QString& systemAudioStatus() const { return m_systemAudioStatus; }

    /// Records only the sound of the program with that file name; empty for everything.
    const QString& application() const { return m_application; }
    void setApplication(const QString& binary);

    CallProcessor& processor() { return m_at.processor; }
    RecordedCalls& recorded() { return m_at.recorded; }
    const Surroundings& surroundings() const { return m_at; }

Q_SIGNALS:
    void changed();
    void ticked(); ///< elapsed time and level of the running recording
    void refused(const QString& reason); ///< a recording could not start, or had to stop

private:
    /// The state of a call while it is recorded or processed.
    struct Shown {
        QString id;
        QString title;
        QString captureMode = corvane::captureMode::micOnly;
        CallRecordingContext context {};
    };
    /// The recording that runs.
    struct Active {
        qint64 startedAtMs = 0;
        QString micPath;
        QString systemPath; ///< empty without the system's sound
        std::unique_ptr<TrackRecording> microphone;
        std::unique_ptr<SystemAudioCapture> system;
        std::unique_ptr<SleepInhibitor::Hold> awake;

        void cancel(); ///< and removes the files
    };

    void begin(const QString& title, const CallRecordingContext& context);
    void begun(const Shown& call, const Result<void>& system);
    void tick();
    void checkDisk();
    void stopBecause(const QString& words);
    void fail(const QString& message);
    void finish(const Shown& call, const std::shared_ptr<Active>& active, const Result<void>& microphone,
        const Result<void>& system);
    void onAdvanced(const QString& callId, const CallPhase& phase, const QString& words);
    void forgetShown();
    QString folder() const; ///< of the recording that runs

    const Surroundings m_at;
    CallPhase m_phase;
    Shown m_shown;
    bool m_starting = false;
    std::unique_ptr<Active> m_next; ///< while it is starting
    std::unique_ptr<Active> m_active;
    QStringList m_saving; ///< calls that were stopped
    std::unique_ptr<Timer> m_timer;
    double m_elapsed = 0;
    qint64 m_keptMs = 0; ///< when the waveform was last written and the disk checked
    bool m_diskIsLow = false;
    QList<qint64> m_marksMs;
    CallWaveform m_waveform;
    QString m_application;
    QString m_statusText = u"Ready for user-started recording."_s;
    QString m_systemAudioStatus;
};

}
