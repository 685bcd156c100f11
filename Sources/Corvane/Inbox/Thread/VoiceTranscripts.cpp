#include "Inbox/Thread/VoiceTranscripts.h"

#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"
#include "Inbox/Thread/MediaFile.h"
#include "Inbox/Thread/ThreadView.h"
#include "Inbox/Thread/UnifiedBubble.h"
#include "Store/Messages/AudioTranscripts.h"
#include "Voice/SpeechLanguages.h"
#include "Voice/VoiceServices.h"

#include <QPointer>

namespace corvane {

using Kind = AudioTranscriptionState::Kind;

VoiceTranscripts::VoiceTranscripts(
    VoiceServices& voice, ThreadView& thread, EngineManager& engine, UserDefaults& defaults, QObject* parent)
    : QObject(parent)
    , m_voice(voice)
    , m_thread(thread)
    , m_engine(engine)
    , m_defaults(defaults)
{
    connect(&voice.reader, &SpeechReader::changed, this, [this] {
        if (const QString error = m_voice.reader.errorText(); !error.isEmpty())
            m_thread.setError(error);
        Q_EMIT speakingChanged();
    });
    connect(&thread, &ThreadView::contactChanged, this, [this] {
        if (m_contactId != m_thread.contactId())
            forgetFailures();
        m_contactId = m_thread.contactId();
    });
    thread.setTranscriptionState([this](const QString& messageId) { return state(messageId); });
}

VoiceTranscripts::~VoiceTranscripts()
{
    m_thread.setTranscriptionState({});
    for (const Job& job : std::as_const(m_jobs))
        job.cancel.cancel();
}

std::optional<AudioTranscriptionState> VoiceTranscripts::state(const QString& messageId) const
{
    const auto job = m_jobs.constFind(messageId);
    return job == m_jobs.cend() ? std::nullopt : std::optional(job->state);
}

QString VoiceTranscripts::speakingId() const
{
    return m_voice.reader.speakingId();
}

void VoiceTranscripts::transcribe(const QString& messageId)
{
    const UnifiedMsgRow* row = m_thread.message(messageId);
    const auto running = state(messageId);
    if (!row || (running && running->kind == Kind::Loading))
        return;
    const QString path = row->mediaPath.value_or(QString());
    const QString kind = u"audio"_s;
    const QString problem = describe(checkMedia(path, kind, m_engine.mediaPlaces(*row)), kind);
    if (!problem.isEmpty())
        return set(messageId, Kind::Failed, problem);
    m_jobs.insert(messageId, {});
    set(messageId, Kind::Loading, u"Transcribing locally…"_s);
    run(messageId, path, m_jobs[messageId].cancel);
}

QCoro::Task<> VoiceTranscripts::run(QString messageId, QString path, CancelHandle cancel)
{
    const QPointer<VoiceTranscripts> self(this);
    TranscriptionRequest request;
    request.audioPath = path;
    request.locale = voiceNoteLocale(m_defaults, m_voice.store);
    request.cancel = cancel;
    request.onProgress = [self, messageId](double progress) {
        if (self && progress > 0 && progress < 1)
            self->set(messageId, Kind::Loading, u"Transcribing locally… %1 %"_s.arg(int(progress * 100)));
    };
    const TranscriptionOutcome outcome = co_await m_voice.speech.transcribe(std::move(request));
    if (!self)
        co_return;
    using Error = SpeechTranscriberError::Kind;
    if (!outcome && outcome.error().kind == Error::Cancelled) {
        m_jobs.remove(messageId);
        Q_EMIT changed();
        co_return;
    }
    if (!outcome) {
        const bool isMissing = outcome.error().kind == Error::MissingModel;
        set(messageId, isMissing ? Kind::MissingModel : Kind::Failed,
            isMissing ? u"Only English can be transcribed without a speech model."_s : describe(outcome.error()));
        co_return;
    }
    writeSegments(path, *outcome);
    if (!storeAudioTranscript(m_engine.db(), { messageId, path, outcome->text, transcriptModel(outcome->model) })) {
        set(messageId, Kind::Failed, u"The transcript could not be saved."_s);
        co_return;
    }
    m_jobs.remove(messageId);
    m_engine.refreshUnreadBadge();
    m_thread.reload();
    Q_EMIT changed();
}

void VoiceTranscripts::cancel(const QString& messageId)
{
    const CancelHandle running = m_jobs.value(messageId).cancel;
    running.cancel();
}

void VoiceTranscripts::speak(const QString& messageId)
{
    if (speakingId() == messageId)
        m_voice.reader.stop();
    else if (const UnifiedMsgRow* row = m_thread.message(messageId))
        m_voice.reader.speak(messageId, UnifiedBubble::readableText(*row), modelLanguage(dictationLocale(m_defaults)));
}

void VoiceTranscripts::set(const QString& messageId, Kind kind, const QString& text)
{
    m_jobs[messageId].state = { kind, text };
    m_thread.refresh();
    Q_EMIT changed();
}

/// Running jobs continue, and their text is stored.
void VoiceTranscripts::forgetFailures()
{
    m_jobs.removeIf([](const auto& job) { return job->state.kind != Kind::Loading; });
}

}
