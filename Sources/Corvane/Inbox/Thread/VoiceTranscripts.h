#pragma once

#include "Foundation/Cancellation.h"

#include <QHash>
#include <QObject>
#include <optional>
#include <qcoro/qcorotask.h>

namespace corvane {

class EngineManager;
class SpeechReader;
class ThreadView;
class UserDefaults;
struct VoiceServices;

/// The state of a voice note's transcript.
struct AudioTranscriptionState {
    enum class Kind { Loading, MissingModel, Failed };
    Kind kind = Kind::Loading;
    QString text; ///< in the words of the screen
};

/// Transcripts of the open thread's voice notes, and reading its texts aloud.
class VoiceTranscripts : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString speakingId READ speakingId NOTIFY speakingChanged) ///< the message being read aloud
public:
    /// All references outlive the object.
    VoiceTranscripts(VoiceServices& voice, ThreadView& thread, EngineManager& engine, UserDefaults& defaults,
        QObject* parent = nullptr);
    ~VoiceTranscripts() override; ///< cancels running jobs

    /// Nothing if no job is running and none failed.
    std::optional<AudioTranscriptionState> state(const QString& messageId) const;
    QString speakingId() const;

    Q_INVOKABLE void transcribe(const QString& messageId); ///< the note must have a file; a running job is left alone
    Q_INVOKABLE void cancel(const QString& messageId);
    Q_INVOKABLE void speak(const QString& messageId); ///< or stops, if it is being read

Q_SIGNALS:
    void changed(); ///< a state changed, or a transcript was stored
    void speakingChanged();

private:
    struct Job {
        AudioTranscriptionState state;
        CancelHandle cancel;
    };

    QCoro::Task<> run(QString messageId, QString path, CancelHandle cancel);
    void set(const QString& messageId, AudioTranscriptionState::Kind kind, const QString& text);
    void forgetFailures();

    VoiceServices& m_voice;
    ThreadView& m_thread;
    EngineManager& m_engine;
    UserDefaults& m_defaults;
    QHash<QString, Job> m_jobs;
    QString m_contactId;
};

}
