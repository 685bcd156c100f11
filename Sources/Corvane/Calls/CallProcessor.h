#pragma once

#include "Calls/CallPhase.h"
#include "Foundation/Cancellation.h"
#include "Voice/SpeechTranscript.h"

#include <QHash>
#include <QObject>
#include <functional>
#include <qcoro/qcorotask.h>

namespace corvane {

class CallSummarizer;
class LocalDB;
class SpeechModelStore;

/// A recorded call to transcribe.
struct CallJob {
    QString callId;
    QString captureMode; ///< the recorded tracks
    QString micPath; ///< empty if the microphone is not transcribed
    QString systemPath;
    std::optional<SpeechModelSpec> model = {}; ///< nothing: the preferred one
};

/// Creates transcript, summary and proposals of recorded calls. Several may run independently.
class CallProcessor : public QObject {
    Q_OBJECT
public:
    using Transcribe = std::function<QCoro::Task<TranscriptionOutcome>(TranscriptionRequest)>;

    /// All of it outlives the processor.
    CallProcessor(LocalDB& db, CallSummarizer& summarizer, Transcribe transcribe, const SpeechModelStore& models,
        QObject* parent = nullptr);
    ~CallProcessor() override;

    /// Does nothing if the call is being processed.
    void process(const CallJob& job);
    void summarizeAgain(const QString& callId); ///< from the existing transcript

    CallSummarizer& summarizer() { return m_summarizer; }
    const SpeechModelStore& models() const { return m_models; }
    bool isProcessing(const QString& callId) const { return m_running.contains(callId); }
    CallPhase::Kind phase(const QString& callId) const { return m_running.value(callId).phase; }
    double progress(const QString& callId) const { return m_running.value(callId).progress; } ///< of the transcription
    void cancel(const QString& callId);

Q_SIGNALS:
    void advanced(const QString& callId, const corvane::CallPhase& phase, const QString& words);
    void progressed(const QString& callId);

private:
    struct Running {
        CancelHandle cancel;
        CallPhase::Kind phase = CallPhase::Kind::Transcribing;
        double progress = 0;
    };
    struct Transcript {
        QString text;
        QString model;
    };

    QCoro::Task<> run(CallJob job, CancelHandle cancel);
    QCoro::Task<std::expected<Transcript, SpeechTranscriberError>> hear(CallJob job, CancelHandle cancel);
    QCoro::Task<> summarize(QString callId, QString captureMode, CancelHandle cancel);
    TranscriptionRequest request(const CallJob& job, const QString& path, double from, double to, CancelHandle cancel);
    void fail(const QString& callId, const QString& stored, const QString& shown);
    void advance(const QString& callId, const CallPhase& phase, const QString& words);

    LocalDB& m_db;
    CallSummarizer& m_summarizer;
    const Transcribe m_transcribe;
    const SpeechModelStore& m_models;
    QHash<QString, Running> m_running;
};

}
