#include "Inbox/Compose/ComposerDictation.h"

#include "Foundation/Literals.h"
#include "Voice/SpeechLanguages.h"
#include "Voice/VoiceServices.h"

#include <QDir>
#include <QPointer>

namespace corvane {

namespace {

constexpr Milliseconds noticeTime { 4000 };

}

ComposerDictation::ComposerDictation(
    VoiceServices& voice, Microphone& microphone, Scheduler& scheduler, UserDefaults& defaults, QObject* parent)
    : QObject(parent)
    , m_voice(voice)
    , m_scheduler(scheduler)
    , m_defaults(defaults)
    , m_recorder(microphone, scheduler, QDir::tempPath())
{
    connect(&m_recorder, &VoiceRecorder::stateChanged, this, &ComposerDictation::follow);
    connect(&m_recorder, &VoiceRecorder::noticeChanged, this, &ComposerDictation::follow);
    connect(&m_recorder, &VoiceRecorder::progressed, this, &ComposerDictation::progressed);
}

ComposerDictation::~ComposerDictation()
{
    cancel();
}

bool ComposerDictation::active() const
{
    return m_state == State::Starting || m_state == State::Recording || m_state == State::Transcribing;
}

void ComposerDictation::start(const QString& contactId)
{
    if (active() || contactId.isEmpty())
        return;
    const QString language = modelLanguage(dictationLocale(m_defaults));
    if (!m_voice.transcription.speaks(language)) {
        enter(State::Missing, u"Dictation in %1 needs a speech model."_s.arg(localeDisplayName(language)));
        return;
    }
    m_recorder.start(contactId);
}

/// A recording that ends on its own is transcribed as far as it got.
void ComposerDictation::follow()
{
    if (m_state == State::Transcribing)
        return;
    const VoiceRecorder::State state = m_recorder.state();
    if (state == VoiceRecorder::State::Starting)
        enter(State::Starting, u"Asking for the microphone…"_s);
    else if (state == VoiceRecorder::State::Recording)
        enter(State::Recording, u"Dictating locally"_s);
    else if (state == VoiceRecorder::State::Kept)
        finish();
    else if (!m_recorder.notice().isEmpty())
        enter(State::Error, m_recorder.notice());
    else if (active())
        enter(State::Idle);
}

void ComposerDictation::finish()
{
    if (m_state != State::Recording)
        return;
    const QString contactId = m_recorder.contactId();
    m_state = State::Transcribing;
    const QString path = m_recorder.stop();
    if (path.isEmpty()) {
        enter(State::Error, m_recorder.notice());
        return;
    }
    enter(State::Transcribing, u"Transcribing with %1"_s.arg(m_voice.speech.preferredModel().displayName));
    m_cancel = {};
    transcribe(contactId, path, m_cancel);
}

void ComposerDictation::letGo()
{
    m_state == State::Starting ? cancel() : finish();
}

QCoro::Task<> ComposerDictation::transcribe(QString contactId, QString path, CancelHandle cancel)
{
    const QPointer<ComposerDictation> self(this);
    TranscriptionRequest request;
    request.audioPath = path;
    request.locale = dictationLocale(m_defaults);
    request.cancel = cancel;
    const TranscriptionOutcome outcome = co_await m_voice.speech.transcribe(std::move(request));
    if (!self || cancel.isCancelled())
        co_return;
    m_recorder.cancel();
    if (!outcome) {
        enter(State::Error, describe(outcome.error()));
        co_return;
    }
    enter(State::Inserted, u"Dictation inserted into composer."_s);
    Q_EMIT dictated(contactId, outcome->text);
}

void ComposerDictation::cancel()
{
    const CancelHandle running = m_cancel;
    m_state = State::Idle;
    running.cancel();
    m_recorder.cancel();
    enter(State::Idle);
}

void ComposerDictation::enter(State state, const QString& text)
{
    m_state = state;
    m_text = text;
    m_forget = state == State::Inserted ? m_scheduler.after(noticeTime, [this] { enter(State::Idle); }) : nullptr;
    Q_EMIT changed();
}

}
