#include "Calls/CallPage.h"

#include "Calls/CallExport.h"
#include "Calls/CallRecorder.h"
#include "Calls/CallSummarizer.h"
#include "Calls/RecordedCalls.h"
#include "Foundation/BackgroundQueue.h"
#include "Foundation/Literals.h"
#include "Foundation/WAName.h"
#include "Presentation/DateWords.h"
#include "Presentation/Downloads.h"
#include "Presentation/PlayTime.h"
#include "Store/Approvals/CrmProposals.h"
#include "Store/Work/CallWrites.h"
#include "Voice/SpeechModelStore.h"

#include <QDir>
#include <QFileInfo>
#include <algorithm>

namespace corvane {

namespace {

constexpr int barCount = 240;

QString existing(const QString& path)
{
    return !path.isEmpty() && QFileInfo(path).isFile() ? path : QString();
}

}

CallPage::CallPage(CallRecorder& recorder, CallPlayer& player, QObject* parent)
    : QObject(parent)
    , m_recorder(recorder)
    , m_player(player)
    , m_people(recorder.recorded().db(), [this](const QString& call, const QString& contact) {
        const bool linked = linkCall(m_recorder.recorded().db(), call, contact);
        m_recorder.recorded().refresh();
        return linked;
    })
{
    connect(&m_recorder.recorded(), &RecordedCalls::changed, this, &CallPage::reload);
    connect(&m_recorder, &CallRecorder::changed, this, &CallPage::reload);
    connect(&m_recorder.processor(), &CallProcessor::progressed, this, &CallPage::progressed);
    connect(&m_recorder.processor().models(), &SpeechModelStore::changed, this, &CallPage::changed);
    connect(&m_player, &CallPlayer::moved, this, &CallPage::moved);
}

void CallPage::open(const QString& callId, const QString& searched)
{
    const bool other = callId != this->callId();
    m_searched = searched;
    if (other) {
        m_player.stop();
        m_people.cancel();
        m_doneText.clear();
    }
    m_call = fetchCall(m_recorder.recorded().db(), callId);
    reload();
    if (const int hit = firstHit(); hit >= 0)
        m_player.startFrom(m_turns.at(hit).startMs);
}

void CallPage::reload()
{
    LocalDB& db = m_recorder.recorded().db();
    if (m_call)
        m_call = fetchCall(db, m_call->id);
    m_proposals.clear();
    m_seenProposals.clear();
    if (!m_call) {
        m_turnRows.assign({});
        m_player.open({}, {}, 0);
        Q_EMIT changed();
        return;
    }
    m_state = callState(m_call->processingStatus, m_call->processingError, m_recorder, m_call->id);
    m_microphonePath = isRecordedNow() ? QString() : existing(m_call->micPath);
    m_systemPath = isRecordedNow() ? QString() : existing(m_call->systemPath);
    m_turns = readTurns(folder());
    if (m_turns.isEmpty() && !m_call->transcript.isEmpty())
        m_turns
            = { { 0, m_call->durationMs, m_systemPath.isEmpty() ? meSpeaker : meetingSpeaker, m_call->transcript } };
    m_turnRows.assign(turnRows(m_turns, m_searched));
    m_waveform = readWaveform(folder());
    m_notes = readCallNotes(folder());
    for (const CRMUpdateProposal& proposal : callProposals(db, m_call->id)) {
        m_proposals.append(proposalRow(proposal));
        m_seenProposals.insert(proposal.id, proposalHash(proposal));
    }
    m_player.open(m_microphonePath, m_systemPath, m_call->durationMs);
    Q_EMIT changed();
    Q_EMIT moved();
}

bool CallPage::isRecordedNow() const
{
    return m_call && (m_recorder.records(m_call->id) || m_recorder.isSaving(m_call->id));
}

QString CallPage::folder() const
{
    return QFileInfo(m_call->micPath.isEmpty() ? m_call->systemPath : m_call->micPath).path();
}

QString CallPage::whenText() const
{
    if (!m_call)
        return {};
    const DateWords words(m_recorder.surroundings().scheduler.nowMs());
    QStringList parts { words.group(m_call->startedAt), words.clockTime(m_call->startedAt) };
    if (m_call->durationMs > 0)
        parts.append(playTime(m_call->durationMs));
    return parts.join(u" · "_s);
}

QString CallPage::errorText() const
{
    return m_call && !busy() && !isRecordedNow() ? m_call->processingError : QString();
}

QString CallPage::personName() const
{
    return m_call && !m_call->contactName.isEmpty() ? WAName::pretty(m_call->contactName) : QString();
}

QString CallPage::noSoundText() const
{
    if (!m_call || hasSound())
        return {};
    return isRecordedNow() ? u"The sound can be played after the recording."_s
                           : u"The sound of this call is no longer here."_s;
}

QList<float> CallPage::microphoneBars() const
{
    return m_call ? m_waveform.microphone(barCount) : QList<float>();
}

QList<float> CallPage::systemBars() const
{
    return m_call && !m_systemPath.isEmpty() ? m_waveform.system(barCount) : QList<float>();
}

QList<double> CallPage::marks() const
{
    const qint64 duration = m_player.durationMs();
    QList<double> places;
    for (const qint64 mark : m_notes.marksMs) {
        if (duration > 0)
            places.append(std::min(1.0, double(mark) / double(duration)));
    }
    return places;
}

QStringList CallPage::markTimes() const
{
    QStringList times;
    for (const qint64 mark : m_notes.marksMs)
        times.append(playTime(mark));
    return times;
}

int CallPage::currentTurn() const
{
    if (m_player.state() == "idle"_L1)
        return -1;
    const auto later = std::ranges::upper_bound(m_turns, m_player.positionMs(), {}, &CallTurn::startMs);
    return int(later - m_turns.begin()) - 1;
}

int CallPage::firstHit() const
{
    const auto& rows = m_turnRows.rows();
    const auto found = std::ranges::find(rows, true, &CallTurnRow::hit);
    return found == rows.end() ? -1 : int(found - rows.begin());
}

QString CallPage::emptyTranscriptText() const
{
    if (!m_call || !m_turns.isEmpty())
        return {};
    if (isRecordedNow())
        return u"The transcript follows after the recording."_s;
    return busy() ? u"The call is being transcribed."_s : u"There is no transcript yet."_s;
}

bool CallPage::busy() const
{
    return m_call && m_recorder.processor().isProcessing(m_call->id);
}

double CallPage::progress() const
{
    return m_call ? m_recorder.processor().progress(m_call->id) : 0;
}

QString CallPage::processLabel() const
{
    if (!m_call || busy() || isRecordedNow() || !hasSound())
        return {};
    const QString& status = m_call->processingStatus;
    if (status == callStatus::recording || status == callStatus::interrupted)
        return u"Recover"_s;
    return status == callStatus::ready || status == callStatus::transcribed ? u"Transcribe again"_s
                                                                            : u"Transcribe now"_s;
}

QList<Choice> CallPage::models() const
{
    const QList<SpeechInstalledModel>& installed = m_recorder.processor().models().installed();
    if (processLabel().isEmpty() || installed.isEmpty())
        return {};
    QList<Choice> choices;
    for (const SpeechInstalledModel& model : installed)
        choices.append({ model.spec.id(), model.spec.displayName });
    const SpeechModelSpec basic = basicRecogniserSpec();
    return choices << Choice { basic.id(), basic.displayName };
}

QString CallPage::model() const
{
    return m_call ? m_call->model.section(u'@', 0, 0) : QString();
}

bool CallPage::asksCodex() const
{
    return m_call && !busy() && m_call->processingStatus == callStatus::transcribed
        && m_call->processingError.contains("Codex CLI yet"_L1);
}

QString CallPage::codexQuestion() const
{
    return u"No model runs on this computer. The Codex CLI could write the summary, and would send the "
           "transcript to its provider. Your answer holds for later calls, too."_s;
}

QList<CallSummarySection> CallPage::summary() const
{
    return m_call ? summarySections(m_call->summary) : QList<CallSummarySection>();
}

QString CallPage::emptySummaryText() const
{
    if (!m_call || !m_call->summary.isEmpty())
        return {};
    return busy() || isRecordedNow() ? u"The summary follows the transcript."_s : u"There is no summary."_s;
}

QString CallPage::deleteQuestion() const
{
    return u"“%1” is removed with its sound, transcript and summary. What was added to the CRM stays."_s.arg(title());
}

void CallPage::rename(const QString& title)
{
    const QString named = title.trimmed();
    if (!m_call || named.isEmpty() || named == m_call->title)
        return;
    renameCall(m_recorder.recorded().db(), m_call->id, named);
    m_recorder.recorded().refresh();
}

void CallPage::setNotes(const QString& text)
{
    if (!m_call || text == m_notes.text)
        return;
    m_notes = readCallNotes(folder());
    m_notes.text = text;
    if (!writeCallNotes(folder(), m_notes))
        tell(u"The notes can't be saved."_s);
}

void CallPage::playTurn(int number)
{
    if (number >= 0 && number < m_turns.size() && hasSound())
        m_player.playFrom(m_turns.at(number).startMs);
}

void CallPage::playMark(int number)
{
    if (number >= 0 && number < m_notes.marksMs.size() && hasSound())
        m_player.playFrom(m_notes.marksMs.at(number));
}

CallJob CallPage::job() const
{
    return { .callId = m_call->id,
        .captureMode = m_systemPath.isEmpty() ? captureMode::micOnly : m_call->captureMode,
        .micPath = m_microphonePath,
        .systemPath = m_systemPath };
}

void CallPage::process()
{
    if (!processLabel().isEmpty())
        process(job());
}

void CallPage::processWith(const QString& model)
{
    if (processLabel().isEmpty())
        return;
    CallJob work = job();
    work.model = basicRecogniserSpec();
    for (const SpeechInstalledModel& installed : m_recorder.processor().models().installed()) {
        if (installed.spec.id() == model)
            work.model = installed.spec;
    }
    process(work);
}

/// A recording left by a crash or a quit is first repaired and given its missing end.
void CallPage::process(const CallJob& work)
{
    m_player.stop();
    if (processLabel() != "Recover"_L1)
        return m_recorder.processor().process(work);
    CallAudio& audio = m_recorder.surroundings().audio;
    LocalDB& db = m_recorder.recorded().db();
    if (m_call->endedAt == 0) {
        const qint64 ended
            = QFileInfo(work.micPath.isEmpty() ? work.systemPath : work.micPath).lastModified().toMSecsSinceEpoch();
        endCall(db, work.callId, m_call->startedAt, std::max(ended, m_call->startedAt), callStatus::transcribing);
    }
    const auto begin = [self = QPointer<CallPage>(this), work](const Result<void>&) {
        if (self)
            self->m_recorder.processor().process(work);
    };
    if (work.systemPath.isEmpty() || work.micPath.isEmpty())
        return audio.repair(work.micPath.isEmpty() ? work.systemPath : work.micPath, begin);
    audio.repair(work.micPath, [self = QPointer<CallPage>(this), &audio, work, begin](const Result<void>&) {
        if (self)
            audio.repair(work.systemPath, begin);
    });
}

void CallPage::stopWork()
{
    if (m_call)
        m_recorder.processor().cancel(m_call->id);
}

void CallPage::answerCodex(bool allowed)
{
    m_recorder.processor().summarizer().allowCodex(allowed);
    if (!m_call)
        return;
    if (allowed)
        return m_recorder.processor().summarizeAgain(m_call->id);
    updateCallProcessing(m_recorder.recorded().db(), m_call->id, callStatus::transcribed,
        u"Summary not ready: Corvane may not send transcripts to the Codex CLI."_s);
    m_recorder.recorded().refresh();
    reload();
}

void CallPage::decide(const QString& id, bool apply)
{
    LocalDB& db = m_recorder.recorded().db();
    const Decided decided
        = apply ? applyCRMUpdateProposal(db, id, m_seenProposals.value(id)) : rejectCRMUpdateProposal(db, id);
    if (decided == Decided::Changed)
        tell(u"It was changed in the meantime. Please read it again."_s);
    m_recorder.recorded().refresh();
    reload();
}

void CallPage::applyProposal(const QString& id)
{
    decide(id, true);
}

void CallPage::rejectProposal(const QString& id)
{
    decide(id, false);
}

void CallPage::tell(const QString& words)
{
    m_doneText = words;
    Q_EMIT changed();
}

void CallPage::exportText()
{
    if (m_call)
        tell(saveDownload(m_call->title, u"txt"_s, callAsText(*m_call, m_turns, m_notes).toUtf8()));
}

void CallPage::exportSubtitles()
{
    if (m_call)
        tell(m_turns.isEmpty() ? emptyTranscriptText()
                               : saveDownload(m_call->title, u"vtt"_s, webVtt(m_turns).toUtf8()));
}

void CallPage::exportSound()
{
    if (!m_call)
        return;
    tell(u"Saving the sound…"_s);
    m_recorder.surroundings().background.run<QString>(
        [call = *m_call, paths = QStringList { m_microphonePath, m_systemPath }] { return exportSoundOf(call, paths); },
        [self = QPointer(this), id = callId()](const QString& words) {
            if (self && self->callId() == id)
                self->tell(words);
        });
}

void CallPage::remove()
{
    if (!m_call || isRecordedNow())
        return;
    stopWork();
    m_player.stop();
    const QString files = folder();
    if (!deleteCall(m_recorder.recorded().db(), m_call->id))
        return tell(u"The call can't be deleted now."_s);
    removeCallFiles(m_recorder.surroundings().paths, files);
    m_call.reset();
    m_recorder.recorded().refresh();
    reload();
    Q_EMIT removed();
}

}
