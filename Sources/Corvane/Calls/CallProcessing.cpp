#include "Calls/CallProcessing.h"

#include "Calls/CallRecorder.h"
#include "Calls/CallSummarizer.h"
#include "Calls/RecordedCalls.h"
#include "Foundation/Literals.h"
#include "Store/Work/CallWrites.h"
#include "Voice/SpeechModelStore.h"

#include <QFileInfo>
#include <QPointer>
#include <algorithm>

namespace corvane {

CallProcessing::CallProcessing(CallRecorder& recorder, CallPlayer& player, QObject* parent)
    : QObject(parent)
    , m_recorder(recorder)
    , m_processor(recorder.processor())
    , m_player(player)
{
    connect(&m_processor, &CallProcessor::progressed, this, &CallProcessing::progressed);
    connect(&m_processor.models(), &SpeechModelStore::changed, this, &CallProcessing::changed);
}

void CallProcessing::show(const CallSnapshot& call)
{
    m_call = call;
    Q_EMIT changed();
}

double CallProcessing::progress() const
{
    return m_processor.progress(m_call.details.id);
}

QString CallProcessing::label() const
{
    if (busy() || !m_call.hasSound())
        return {};
    const QString& status = m_call.details.processingStatus;
    if (status == callStatus::recording || status == callStatus::interrupted)
        return u"Recover"_s;
    return status == callStatus::ready || status == callStatus::transcribed ? u"Transcribe again"_s
                                                                            : u"Transcribe now"_s;
}

QList<Choice> CallProcessing::models() const
{
    const QList<SpeechInstalledModel>& installed = m_processor.models().installed();
    if (label().isEmpty() || installed.isEmpty())
        return {};
    QList<Choice> choices;
    for (const SpeechInstalledModel& model : installed)
        choices.append({ model.spec.id(), model.spec.displayName });
    const SpeechModelSpec basic = basicRecogniserSpec();
    return choices << Choice { basic.id(), basic.displayName };
}

QString CallProcessing::model() const
{
    return m_call.details.model.section(u'@', 0, 0);
}

bool CallProcessing::asksCodex() const
{
    return !busy() && m_call.details.processingStatus == callStatus::transcribed
        && m_call.details.processingError.contains("Codex CLI yet"_L1);
}

QString CallProcessing::codexQuestion() const
{
    return u"No model runs on this computer. The Codex CLI could write the summary, and would send the "
           "transcript to its provider. Your answer holds for later calls, too."_s;
}

CallJob CallProcessing::job() const
{
    return { .callId = m_call.details.id,
        .captureMode = m_call.systemPath.isEmpty() ? captureMode::micOnly : m_call.details.captureMode,
        .micPath = m_call.microphonePath,
        .systemPath = m_call.systemPath };
}

void CallProcessing::start()
{
    if (!label().isEmpty())
        run(job());
}

void CallProcessing::startWith(const QString& model)
{
    if (label().isEmpty())
        return;
    CallJob work = job();
    work.model = basicRecogniserSpec();
    for (const SpeechInstalledModel& installed : m_processor.models().installed()) {
        if (installed.spec.id() == model)
            work.model = installed.spec;
    }
    run(work);
}

/// A recording left by a crash or a quit is first repaired and given its missing end.
void CallProcessing::run(const CallJob& job)
{
    m_player.stop();
    if (label() != "Recover"_L1)
        return m_processor.process(job);
    CallAudio& audio = m_recorder.surroundings().audio;
    const CallDetails& call = m_call.details;
    if (call.endedAt == 0) {
        const qint64 ended
            = QFileInfo(job.micPath.isEmpty() ? job.systemPath : job.micPath).lastModified().toMSecsSinceEpoch();
        endCall(m_recorder.recorded().db(), call.id, call.startedAt, std::max(ended, call.startedAt),
            callStatus::transcribing);
    }
    const auto begin = [self = QPointer(this), job](const Result<void>&) {
        if (self)
            self->m_processor.process(job);
    };
    if (job.systemPath.isEmpty() || job.micPath.isEmpty())
        return audio.repair(job.micPath.isEmpty() ? job.systemPath : job.micPath, begin);
    audio.repair(job.micPath, [self = QPointer(this), &audio, job, begin](const Result<void>&) {
        if (self)
            audio.repair(job.systemPath, begin);
    });
}

void CallProcessing::stop()
{
    m_processor.cancel(m_call.details.id);
}

void CallProcessing::answerCodex(bool allowed)
{
    const QString id = m_call.details.id;
    m_processor.summarizer().allowCodex(allowed);
    if (allowed)
        return m_processor.summarizeAgain(id);
    updateCallProcessing(m_recorder.recorded().db(), id, callStatus::transcribed,
        u"Summary not ready: Corvane may not send transcripts to the Codex CLI."_s);
    m_recorder.recorded().refresh();
    Q_EMIT refused();
}

}
