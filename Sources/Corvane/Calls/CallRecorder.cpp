#include "Calls/CallRecorder.h"

#include "Calls/CallNotes.h"
#include "Calls/RecordedCalls.h"
#include "Foundation/Literals.h"
#include "Foundation/MachineWords.h"
#include "Foundation/UserDefaults.h"
#include "Platform/AppPaths.h"
#include "Platform/MachineFacts.h"
#include "Store/Work/CallWrites.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QPointer>
#include <QRandomGenerator>
#include <algorithm>

namespace corvane {

namespace {

constexpr Milliseconds tickPeriod { 300 };
constexpr qint64 keepPeriodMs = 5000;
constexpr qint64 lowDiskBytes = 500'000'000;
constexpr qint64 fullDiskBytes = 100'000'000;
const QString systemAudioKey = u"nimb.calls.systemAudioEnabled"_s;
const QString systemAudioOff = u"System audio capture is off."_s;
const QString noDatabase = u"Local database is not ready."_s;
const QString calendarAuto = u"calendar_auto"_s;
const QString micBackend = u"avaudiorecorder"_s;
const QString bothBackend = u"avaudiorecorder+screencapturekit"_s;

QString newCallId(qint64 nowMs)
{
    return u"call-%1-%2"_s.arg(nowMs).arg(QRandomGenerator::global()->bounded(1000, 10'000));
}

QString callFolder(const AppPaths& paths, const QString& id, qint64 startedAtMs)
{
    const QDate day = QDateTime::fromMSecsSinceEpoch(startedAtMs).date();
    return u"%1/media/calls/%2/%3/%4"_s.arg(paths.applicationSupport,
        QString::number(day.isValid() ? day.year() : 1970),
        QString::number(day.isValid() ? day.month() : 1).rightJustified(2, u'0'), id);
}

}

CallRecorder::CallRecorder(const Surroundings& surroundings, QObject* parent)
    : QObject(parent)
    , m_at(surroundings)
    , m_systemAudioStatus(systemAudioOff)
{
    connect(&m_at.processor, &CallProcessor::advanced, this, &CallRecorder::onAdvanced);
}

CallRecorder::~CallRecorder() = default;

void CallRecorder::Active::cancel()
{
    microphone->cancel();
    if (system)
        system->cancel();
}

bool CallRecorder::systemAudioEnabled() const
{
    return m_at.defaults.boolean(systemAudioKey).value_or(false);
}

void CallRecorder::setSystemAudioEnabled(bool enabled)
{
    m_at.defaults.setBoolean(systemAudioKey, enabled);
    m_systemAudioStatus
        = enabled ? u"System audio will be captured when a sound output is available."_s : systemAudioOff;
    Q_EMIT changed();
}

void CallRecorder::setApplication(const QString& binary)
{
    m_application = binary;
    Q_EMIT changed();
}

void CallRecorder::start(const QString& title, const CallRecordingContext& context)
{
    if (isRecording() || m_starting)
        return;
    if (!m_at.recorded.db().isOpen())
        return fail(noDatabase);
    m_starting = true;
    m_at.microphone.requestAccess([self = QPointer<CallRecorder>(this), title, context](MicrophoneAccess access) {
        if (!self || !self->m_starting)
            return;
        if (access == MicrophoneAccess::Granted)
            return self->begin(title, context);
        self->fail(
            access == MicrophoneAccess::Denied ? u"Microphone access is denied."_s : u"No microphone was found."_s);
    });
}

void CallRecorder::fail(const QString& message)
{
    m_phase = { CallPhase::Kind::Failed, message };
    m_statusText = message;
    m_starting = false;
    m_next.reset();
    m_active.reset();
    m_timer.reset();
    Q_EMIT refused(message);
    Q_EMIT changed();
}

void CallRecorder::begin(const QString& title, const CallRecordingContext& context)
{
    if (!m_at.recorded.db().isOpen())
        return fail(noDatabase);
    if (const qint64 free = m_at.machine.state().freeDiskBytes; free >= 0 && free < fullDiskBytes)
        return fail(u"The disk is full. Make room for the recording."_s);
    const qint64 now = m_at.scheduler.nowMs();
    const QString named = title.trimmed();
    const Shown call {
        .id = newCallId(now), .title = named.isEmpty() ? u"Manual recording"_s : named, .context = context
    };
    const QString folder = callFolder(m_at.paths, call.id, now);
    if (!QDir().mkpath(folder))
        return fail(u"The folder for the recording can't be created: "_s + folder);
    m_next = std::make_unique<Active>();
    m_next->startedAtMs = now;
    m_next->micPath = folder + u"/mic.m4a"_s;
    const qint64 startMs = m_at.scheduler.monotonicMs();
    m_next->microphone = m_at.audio.recordMicrophone(m_next->micPath);
    if (!m_next->microphone)
        return fail(u"Could not start the microphone recorder."_s);
    if (!systemAudioEnabled())
        return begun(call, failure({}));
    m_systemAudioStatus = u"System audio is not started."_s;
    m_next->system = std::make_unique<SystemAudioCapture>(m_at.audio);
    m_next->system->start(folder + u"/system.m4a"_s, m_application, startMs,
        [this, call](const Result<void>& started) { begun(call, started); });
}

/// The microphone is recording; `system` says whether the machine's sound is recorded, too.
void CallRecorder::begun(const Shown& given, const Result<void>& system)
{
    Shown call = given;
    Active& next = *m_next;
    if (system) {
        call.captureMode = captureMode::micAndSystem;
        next.systemPath = QFileInfo(next.micPath).path() + u"/system.m4a"_s;
        m_systemAudioStatus = u"System audio capturing."_s;
    } else if (next.system) {
        next.system->cancel();
        next.system.reset();
        m_systemAudioStatus = u"System audio unavailable; mic fallback active. "_s + system.error().message;
    } else {
        m_systemAudioStatus = systemAudioOff;
    }
    const CallRecordingContext& context = call.context;
    const bool inserted = insertCall(m_at.recorded.db(),
        { .id = call.id,
            .calendarEventId = context.calendarEventId,
            .contactId = context.contactId,
            .conversationId = context.conversationId,
            .title = call.title,
            .sourceApp = context.sourceApp,
            .sourceBundleId = context.sourceBundleId,
            .captureBackend = next.system ? bothBackend : micBackend,
            .captureMode = call.captureMode,
            .startedAtMs = next.startedAtMs,
            .audioPath = next.system ? next.systemPath : next.micPath,
            .micPath = next.micPath,
            .systemPath = next.systemPath,
            .consentRequired = context.consentRequired,
            .consentGranted = context.consentGranted,
            .consentNote = context.consentNote,
            .disclosureMode = context.disclosureMode });
    if (!inserted) {
        next.cancel();
        return fail(noDatabase);
    }
    m_active = std::move(m_next);
    m_starting = false;
    m_shown = call;
    m_phase = { CallPhase::Kind::Recording };
    m_elapsed = 0;
    m_keptMs = 0;
    m_diskIsLow = false;
    m_marksMs.clear();
    m_waveform = {};
    m_active->awake = m_at.sleep.hold(u"A call is being recorded"_s);
    const auto stopOnFailure = [this](const QString& reason) {
        stopBecause(u"The recording could not be written and was stopped: "_s + reason);
    };
    connect(m_active->microphone.get(), &TrackRecording::failed, this, stopOnFailure);
    connect(m_active->microphone.get(), &TrackRecording::sourceChanged, this, &CallRecorder::changed);
    if (m_active->system)
        connect(m_active->system->track(), &TrackRecording::failed, this, stopOnFailure);
    m_statusText = u"%1 %2. %3 on %4."_s.arg(context.startMode == calendarAuto ? u"Auto-recording"_s : u"Recording"_s,
        call.title, m_active->system ? u"Mic and system audio stay"_s : u"Audio stays"_s, machineWords::thisMachine);
    m_timer = m_at.scheduler.every(tickPeriod, [this] { tick(); });
    m_at.recorded.refresh();
    Q_EMIT changed();
}

void CallRecorder::tick()
{
    m_elapsed = m_active->microphone->elapsedSeconds();
    TrackRecording* const system = m_active->system ? m_active->system->track() : nullptr;
    m_waveform.append(m_active->microphone->level(), system ? system->level() : 0);
    Q_EMIT ticked();
    const qint64 now = m_at.scheduler.monotonicMs();
    if (m_keptMs != 0 && now - m_keptMs < keepPeriodMs)
        return;
    m_keptMs = now;
    writeWaveform(folder(), m_waveform); // kept with the sound if the program crashes
    checkDisk();
}

void CallRecorder::checkDisk()
{
    const qint64 free = m_at.machine.state().freeDiskBytes;
    if (free >= 0 && free < fullDiskBytes)
        return stopBecause(u"The disk is full. The recording was stopped and saved."_s);
    const bool isLow = free >= 0 && free < lowDiskBytes;
    if (std::exchange(m_diskIsLow, isLow) != isLow)
        Q_EMIT changed();
}

QString CallRecorder::warningText() const
{
    if (!m_active)
        return {};
    if (m_diskIsLow)
        return u"The disk is almost full. The recording stops when it is full."_s;
    if (!m_active->microphone->hasSource() && m_elapsed > 3)
        return u"The microphone is disconnected. It is recorded again as soon as it is back."_s;
    return {};
}

QString CallRecorder::folder() const
{
    return QFileInfo(m_active->micPath).path();
}

void CallRecorder::mark()
{
    if (!m_active)
        return;
    m_marksMs.append(qint64(m_active->microphone->elapsedSeconds() * 1000));
    CallNotes notes = readCallNotes(folder()); // keeps notes added in the meantime
    notes.marksMs = m_marksMs;
    writeCallNotes(folder(), notes);
    Q_EMIT changed();
}

void CallRecorder::stopBecause(const QString& words)
{
    if (!m_active)
        return;
    stop();
    m_statusText = words;
    Q_EMIT refused(words);
    Q_EMIT changed();
}

void CallRecorder::stop()
{
    if (!m_active)
        return;
    m_timer.reset();
    writeWaveform(folder(), m_waveform);
    const std::shared_ptr<Active> active = std::move(m_active);
    active->awake.reset();
    const Shown call = m_shown;
    m_phase = { CallPhase::Kind::Transcribing };
    m_statusText = u"Recording saved. Starting local transcript."_s;
    endCall(m_at.recorded.db(), call.id, active->startedAtMs, m_at.scheduler.nowMs(), callStatus::transcribing);
    m_saving.append(call.id);
    struct Ends {
        std::optional<Result<void>> microphone;
        std::optional<Result<void>> system;
    };
    const auto ends = std::make_shared<Ends>();
    const auto finishOnceBothEnded = [self = QPointer(this), call, active, ends] {
        if (self && ends->microphone && ends->system)
            self->finish(call, active, *ends->microphone, *ends->system);
    };
    if (active->system) {
        active->system->stop([ends, finishOnceBothEnded](const Result<void>& system) {
            ends->system = system;
            finishOnceBothEnded();
        });
    } else {
        ends->system.emplace();
    }
    active->microphone->stop([ends, finishOnceBothEnded](const Result<void>& microphone) {
        ends->microphone = microphone;
        finishOnceBothEnded();
    });
    m_at.recorded.refresh();
    Q_EMIT changed();
}

/// Both files are finalised, as far as possible.
void CallRecorder::finish(const Shown& call, const std::shared_ptr<Active>& active, const Result<void>& microphone,
    const Result<void>& system)
{
    m_saving.removeAll(call.id);
    CallJob job { .callId = call.id,
        .captureMode = call.captureMode,
        .micPath = microphone || !active->system ? active->micPath : QString(),
        .systemPath = active->systemPath };
    if (active->system && !system) {
        const QString words = u"System audio failed; using mic recording. "_s + system.error().message;
        if (m_shown.id == call.id)
            m_systemAudioStatus = words;
        updateCallProcessing(m_at.recorded.db(), call.id, callStatus::transcribing, words);
        job.captureMode = captureMode::micOnly;
        job.micPath = active->micPath;
        job.systemPath.clear();
    } else if (active->system && m_shown.id == call.id) {
        m_systemAudioStatus = u"System audio saved."_s;
    }
    m_at.processor.process(job);
}

void CallRecorder::onAdvanced(const QString& callId, const CallPhase& phase, const QString& words)
{
    // An earlier call must not change what is shown of the current recording.
    if (callId == m_shown.id && !isRecording()) {
        m_phase = phase;
        m_statusText = words;
        if (phase.kind == CallPhase::Kind::Ready || phase.kind == CallPhase::Kind::Failed)
            forgetShown();
    }
    m_at.recorded.refresh();
    Q_EMIT changed();
}

void CallRecorder::forgetShown()
{
    m_shown = {};
}

void CallRecorder::cancelActiveRecording()
{
    if (!m_active)
        return;
    removeWaveform(folder());
    const std::unique_ptr<Active> active = std::move(m_active);
    m_timer.reset();
    m_phase = {};
    m_statusText = u"Recording cancelled."_s;
    active->cancel();
    updateCallProcessing(m_at.recorded.db(), m_shown.id, callStatus::cancelled, u"User cancelled before processing."_s);
    forgetShown();
    m_at.recorded.refresh();
    Q_EMIT changed();
}

void CallRecorder::stopForQuit()
{
    m_starting = false;
    if (const std::unique_ptr<Active> next = std::move(m_next))
        next->cancel();
    if (!m_active)
        return;
    writeWaveform(folder(), m_waveform);
    const std::unique_ptr<Active> active = std::move(m_active);
    m_timer.reset();
    active->microphone->close();
    if (active->system)
        active->system->close();
    m_statusText = u"Interrupted"_s;
    LocalDB& db = m_at.recorded.db();
    endCall(db, m_shown.id, active->startedAtMs, m_at.scheduler.nowMs(), callStatus::interrupted);
    updateCallProcessing(db, m_shown.id, callStatus::interrupted, u"Corvane quit while recording."_s);
    Q_EMIT changed();
}

}
