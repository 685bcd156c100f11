#pragma once

#include "Foundation/Scheduler.h"
#include "Platform/Microphone.h"
#include "Presentation/EnumWord.h"

#include <QObject>

namespace corvane {

/// A voice note: requested, recorded, then sent or discarded. It belongs to the contact for whom it was started. If the
/// microphone disappears, or the contact is left, recording ends and the note is kept.
class VoiceRecorder : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString state READ stateWord NOTIFY stateChanged) ///< idle, starting, recording, kept
    Q_PROPERTY(bool recording READ recording NOTIFY stateChanged)
    Q_PROPERTY(QString elapsedText READ elapsedText NOTIFY progressed) ///< such as "0:07"
    Q_PROPERTY(double level READ level NOTIFY progressed) ///< from 0 to 1
    Q_PROPERTY(QString notice READ notice NOTIFY noticeChanged) ///< the error; empty if there is none
public:
    enum class State { Idle, Starting, Recording, Kept };
    Q_ENUM(State)

    /// The references outlive the recorder. Notes are written into `folder`.
    VoiceRecorder(Microphone& microphone, Scheduler& scheduler, const QString& folder, QObject* parent = nullptr);
    ~VoiceRecorder() override;

    State state() const { return m_state; }
    QString stateWord() const { return enumWord(m_state); }
    bool recording() const { return m_state == State::Recording; }
    bool idle() const { return m_state == State::Idle; }
    const QString& contactId() const { return m_contactId; } ///< the note's contact; empty while idle
    double elapsed() const { return m_elapsed; }
    QString elapsedText() const;
    double level() const { return m_level; }
    const QString& notice() const { return m_notice; }

    void start(const QString& contactId); ///< only while idle
    QString stop(); ///< ends the recording and returns its file; empty if there is none
    void leave(); ///< another contact is opened: ends a running recording and keeps it
    void handedOver(); ///< the engine has the note: idle again, and the file is kept

    Q_INVOKABLE void cancel(); ///< discards the note
    Q_INVOKABLE void dismissNotice() { setNotice({}); }

Q_SIGNALS:
    void stateChanged();
    void progressed();
    void noticeChanged();

private:
    void begin(MicrophoneAccess access);
    void interrupted(const QString& reason);
    void update();
    void enter(State state);
    void setNotice(const QString& notice);

    Microphone& m_microphone;
    Scheduler& m_scheduler;
    const QString m_folder;
    State m_state = State::Idle;
    int m_attempt = 0; ///< answers to earlier attempts are ignored
    QString m_contactId;
    QString m_path;
    std::unique_ptr<MicrophoneRecording> m_recording;
    std::unique_ptr<Timer> m_ticks;
    double m_elapsed = 0;
    double m_level = 0;
    QString m_notice;
};

}
