#pragma once

#include "Foundation/Cancellation.h"
#include "Inbox/Compose/VoiceRecorder.h"
#include "Presentation/EnumWord.h"

#include <qcoro/qcorotask.h>

namespace corvane {

class UserDefaults;
struct VoiceServices;

/// Dictation into the composer; the sound is deleted.
class ComposerDictation : public QObject {
    Q_OBJECT
    /// idle, starting, recording, transcribing, missing (no model speaks the language), error, inserted
    Q_PROPERTY(QString state READ stateWord NOTIFY changed)
    Q_PROPERTY(QString stateText READ stateText NOTIFY changed) ///< in the words of the screen
    Q_PROPERTY(bool active READ active NOTIFY changed) ///< listening or transcribing
    Q_PROPERTY(QString elapsedText READ elapsedText NOTIFY progressed)
    Q_PROPERTY(double level READ level NOTIFY progressed) ///< from 0 to 1
public:
    enum class State { Idle, Starting, Recording, Transcribing, Missing, Error, Inserted };
    Q_ENUM(State)

    /// All references outlive the object.
    ComposerDictation(VoiceServices& voice, Microphone& microphone, Scheduler& scheduler, UserDefaults& defaults,
        QObject* parent = nullptr);
    ~ComposerDictation() override;

    QString stateWord() const { return enumWord(m_state); }
    const QString& stateText() const { return m_text; }
    bool active() const;
    QString elapsedText() const { return m_recorder.elapsedText(); }
    double level() const { return m_recorder.level(); }

    void start(const QString& contactId);
    Q_INVOKABLE void finish(); ///< transcribes what was recorded
    Q_INVOKABLE void letGo(); ///< the same; nothing was recorded if the microphone is still asked for
    Q_INVOKABLE void cancel(); ///< inserts nothing; also dismisses a message

Q_SIGNALS:
    void changed();
    void progressed();
    void dictated(const QString& contactId, const QString& text);

private:
    void follow();
    QCoro::Task<> transcribe(QString contactId, QString path, CancelHandle cancel);
    void enter(State state, const QString& text = {});

    VoiceServices& m_voice;
    Scheduler& m_scheduler;
    UserDefaults& m_defaults;
    VoiceRecorder m_recorder;
    State m_state = State::Idle;
    QString m_text;
    CancelHandle m_cancel;
    std::unique_ptr<Timer> m_forget;
};

}
