#include "Calls/CallProcessor.h"

#include "Calls/CallProposals.h"
#include "Calls/CallSummarizer.h"
#include "Calls/CallTurns.h"
#include "Foundation/Literals.h"
#include "Foundation/MachineWords.h"
#include "Store/Work/CallWrites.h"

#include <QFileInfo>
#include <QPointer>

namespace corvane {

namespace {

using SpeechError = SpeechTranscriberError;

/// The segments of a transcript; one without times is a single segment.
QList<SpeechSegment> segmentsOf(const TranscriptionOutcome& outcome)
{
    if (!outcome)
        return {};
    return outcome->segments.isEmpty() ? QList<SpeechSegment> { { 0, 0, outcome->text } } : outcome->segments;
}

/// It may have been renamed meanwhile.
QString titleOf(LocalDB& db, const QString& callId)
{
    const auto call = fetchCall(db, callId);
    return call ? call->title : QString();
}

bool isSilent(const TranscriptionOutcome& outcome)
{
    return !outcome && outcome.error().kind == SpeechError::Kind::EmptyTranscript;
}

}

CallProcessor::CallProcessor(
    LocalDB& db, CallSummarizer& summarizer, Transcribe transcribe, const SpeechModelStore& models, QObject* parent)
    : QObject(parent)
    , m_db(db)
    , m_summarizer(summarizer)
    , m_transcribe(std::move(transcribe))
    , m_models(models)
{
}

CallProcessor::~CallProcessor()
{
    const auto running = std::exchange(m_running, {});
    for (const Running& job : running)
        job.cancel.cancel();
}

void CallProcessor::process(const CallJob& job)
{
    if (isProcessing(job.callId))
        return;
    Running& running = m_running[job.callId];
    updateCallProcessing(m_db, job.callId, callStatus::transcribing);
    const CancelHandle cancel = running.cancel;
    advance(job.callId, { CallPhase::Kind::Transcribing }, u"Recording saved. Starting local transcript."_s);
    run(job, cancel);
}

void CallProcessor::summarizeAgain(const QString& callId)
{
    const auto call = fetchCall(m_db, callId);
    if (isProcessing(callId) || !call)
        return;
    const CancelHandle cancel = m_running[callId].cancel;
    summarize(callId, call->captureMode, cancel);
}

void CallProcessor::cancel(const QString& callId)
{
    const CancelHandle handle = m_running.value(callId).cancel;
    handle.cancel();
}

QCoro::Task<> CallProcessor::run(CallJob job, CancelHandle cancel)
{
    const QPointer<CallProcessor> self(this);
    const auto transcript = co_await hear(job, cancel);
    if (!self || !m_running.contains(job.callId))
        co_return;
    if (!transcript) {
        const QString words = describe(transcript.error());
        fail(job.callId, words, words);
        co_return;
    }
    if (transcript->text.trimmed().isEmpty()) {
        fail(job.callId, u"Transcript was empty; summary skipped."_s, u"Transcript was empty. Summary skipped."_s);
        co_return;
    }
    replaceCallTranscript(m_db, { job.callId, job.captureMode, transcript->text, transcript->model });
    co_await summarize(job.callId, job.captureMode, cancel);
}

TranscriptionRequest CallProcessor::request(
    const CallJob& job, const QString& path, double from, double to, CancelHandle cancel)
{
    const auto report = [self = QPointer<CallProcessor>(this), id = job.callId, from, to](double done) {
        if (!self || !self->m_running.contains(id))
            return;
        self->m_running[id].progress = from + (to - from) * done;
        Q_EMIT self->progressed(id);
    };
    return { .audioPath = path, .model = job.model, .onProgress = report, .cancel = std::move(cancel) };
}

/// The text of one track, or of both merged by time. If one is silent, the text is the other's.
QCoro::Task<std::expected<CallProcessor::Transcript, SpeechTranscriberError>> CallProcessor::hear(
    CallJob job, CancelHandle cancel)
{
    const QPointer<CallProcessor> self(this);
    if (job.systemPath.isEmpty() || job.micPath.isEmpty()) {
        const QString path = job.systemPath.isEmpty() ? job.micPath : job.systemPath;
        const auto outcome = co_await m_transcribe(request(job, path, 0, 1, cancel));
        if (!outcome)
            co_return std::unexpected(outcome.error());
        writeTurns(QFileInfo(path).path(),
            turnsOf(segmentsOf(outcome), job.systemPath.isEmpty() ? meSpeaker : meetingSpeaker));
        co_return Transcript { outcome->text, transcriptModel(outcome->model) };
    }
    const auto meeting = co_await m_transcribe(request(job, job.systemPath, 0, 0.5, cancel));
    if (!self || cancel.isCancelled())
        co_return std::unexpected(SpeechError { .kind = SpeechError::Kind::Cancelled });
    const auto microphone = co_await m_transcribe(request(job, job.micPath, 0.5, 1, cancel));
    if (!self || cancel.isCancelled())
        co_return std::unexpected(SpeechError { .kind = SpeechError::Kind::Cancelled });
    if (!meeting && !microphone) {
        if (isSilent(meeting) && isSilent(microphone))
            co_return Transcript {};
        co_return std::unexpected((isSilent(meeting) ? microphone : meeting).error());
    }
    const QList<CallTurn> turns = mergedTurns(segmentsOf(microphone), segmentsOf(meeting));
    writeTurns(QFileInfo(job.micPath).path(), turns);
    co_return Transcript { textOf(turns), transcriptModel((meeting ? meeting : microphone)->model) };
}

QCoro::Task<> CallProcessor::summarize(QString callId, QString captureMode, CancelHandle cancel)
{
    const QPointer<CallProcessor> self(this);
    advance(callId, { CallPhase::Kind::Summarizing }, u"Transcript ready. Running LumoAI summary."_s);
    const QString transcript = transcriptText(m_db, callId);
    Result<QString> summary = failure(u"The transcript was not sent to the Codex CLI yet."_s);
    const bool waitsForAnswer = co_await m_summarizer.needsCodexAnswer();
    if (self && !waitsForAnswer) {
        const QString input = co_await m_summarizer.summaryInput(transcript, cancel);
        if (self && !cancel.isCancelled())
            summary = co_await m_summarizer.summarize(titleOf(m_db, callId), input, cancel);
    }
    if (!self || !m_running.contains(callId))
        co_return;
    if (cancel.isCancelled())
        summary = cancelled();
    createCRMProposalsForCall(m_db, callId, titleOf(m_db, callId), summary.value_or(QString()), transcript);
    m_running.remove(callId);
    if (summary) {
        storeCallSummary(m_db, callId, *summary, u"LumoAI"_s, summaryWarnings(captureMode));
        updateCallProcessing(m_db, callId, callStatus::ready);
        advance(callId, { CallPhase::Kind::Ready }, u"Call transcript, summary, and CRM proposals are ready."_s);
        co_return;
    }
    updateCallProcessing(m_db, callId, callStatus::transcribed, u"Summary not ready: "_s + summary.error().message);
    advance(callId, { CallPhase::Kind::Ready },
        u"Transcript ready. CRM proposals created from transcript. Summary needs %1 or Codex CLI."_s.arg(
            machineWords::localModel));
}

void CallProcessor::fail(const QString& callId, const QString& stored, const QString& shown)
{
    m_running.remove(callId);
    updateCallProcessing(m_db, callId, callStatus::failed, stored);
    advance(callId, { CallPhase::Kind::Failed, shown }, shown);
}

void CallProcessor::advance(const QString& callId, const CallPhase& phase, const QString& words)
{
    if (const auto running = m_running.find(callId); running != m_running.end())
        running->phase = phase.kind;
    Q_EMIT advanced(callId, phase, words);
}

}
