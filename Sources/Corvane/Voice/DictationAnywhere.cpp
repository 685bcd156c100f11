#include "Voice/DictationAnywhere.h"

#include "Foundation/Ids.h"
#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Foundation/UserDefaults.h"
#include "Platform/GlobalShortcuts.h"
#include "Voice/SpeechLanguages.h"
#include "Voice/VoiceServices.h"

#include <QDateTime>
#include <QDir>
#include <QLocale>
#include <QPointer>

namespace corvane {

namespace {

using Mode = DictationPanelMode;

constexpr Milliseconds tick { 100 };
constexpr Milliseconds questionTime { 500 }; ///< until the user is told that the microphone is being requested
constexpr Milliseconds offTime { 1800 };
constexpr Milliseconds failureTime { 4000 };
constexpr Milliseconds stoppedTime { 1600 };
constexpr Milliseconds copiedTime { 2400 };
constexpr Milliseconds insertedTime { 1200 };
constexpr Milliseconds staleTime { 600'000 };

const QString enabledKey = u"Corvane.dictationAnywhere.enabled"_s;
const QString pushToTalkKey = u"Corvane.dictationAnywhere.pushToTalk"_s;
const QString cancelKey = u"dictation.cancel"_s;
const QString filePrefix = u"corvane-dictation-"_s;

/// Leftovers of a program that was killed while listening. A listening program writes to its file all the time.
void removeStaleFiles(qint64 nowMs)
{
    const auto files
        = QDir(QDir::tempPath()).entryInfoList({ filePrefix + u"*.wav"_s }, QDir::Files | QDir::NoSymLinks);
    for (const QFileInfo& file : files) {
        if (file.lastModified().toMSecsSinceEpoch() < nowMs - staleTime.count())
            QFile::remove(file.filePath());
    }
}

/// A control character would act like a key: in a terminal, a line feed runs a command.
QString oneLine(const QString& text)
{
    QString line = text;
    for (QChar& character : line) {
        if (character.category() == QChar::Other_Control)
            character = u' ';
    }
    return line.trimmed();
}

QString accessText(MicrophoneAccess access)
{
    return access == MicrophoneAccess::Denied ? describe({ .kind = SpeechTranscriberError::Kind::MissingPermission })
                                              : u"Could not start microphone — no microphone was found"_s;
}

}

DictationAnywhere::DictationAnywhere(const Surroundings& at, QObject* parent)
    : QObject(parent)
    , m_at(at)
    , m_hotKey({ .id = u"dictation"_s,
                   .label = u"Dictate into any program"_s,
                   .keys = { u"Ctrl+Alt+D"_s, u"Ctrl+Alt+Shift+D"_s },
                   .command = u"corvane --toggle-dictation"_s },
          at.shortcuts, at.defaults)
    , m_panel(at.scheduler)
{
    connect(&m_hotKey, &HotKey::pressed, this, [this] {
        m_isHeld = isPushToTalk();
        toggleRecording();
    });
    connect(&m_hotKey, &HotKey::released, this, &DictationAnywhere::onReleased);
    if (m_at.shortcuts) {
        connect(m_at.shortcuts, &GlobalShortcuts::pressed, this, [this](const QString& id) {
            if (id == cancelKey)
                cancel();
        });
    }
    if (m_at.insertion)
        connect(m_at.insertion, &TextInsertion::wayChanged, this, &DictationAnywhere::settingsChanged);
}

DictationAnywhere::~DictationAnywhere()
{
    m_cancel.cancel();
    if (m_recorder)
        m_recorder->cancel();
    if (!m_lastAudioPath.isEmpty())
        QFile::remove(m_lastAudioPath);
}

bool DictationAnywhere::isEnabled() const
{
    return m_at.defaults.boolean(enabledKey).value_or(false);
}

void DictationAnywhere::setEnabled(bool enabled)
{
    if (enabled == isEnabled())
        return;
    m_at.defaults.setBoolean(enabledKey, enabled);
    if (enabled) {
        registerHotKey();
        prewarmSpeechAssets();
    } else {
        m_hotKey.unbind();
        stopWithoutProcessing(u"Dictation is off."_s);
    }
    Q_EMIT settingsChanged();
}

bool DictationAnywhere::isPushToTalk() const
{
    return m_at.defaults.boolean(pushToTalkKey).value_or(false);
}

void DictationAnywhere::setPushToTalk(bool on)
{
    m_at.defaults.setBoolean(pushToTalkKey, on);
    Q_EMIT settingsChanged();
}

void DictationAnywhere::start()
{
    removeStaleFiles(m_at.scheduler.nowMs());
    if (!isEnabled())
        return;
    registerHotKey();
    prewarmSpeechAssets();
}

void DictationAnywhere::registerHotKey()
{
    if (m_hotKey.isBound())
        return;
    m_hotKey.bind();
    log(u"[DictationAnywhere] "_s + m_hotKey.bindingText());
}

void DictationAnywhere::prewarmSpeechAssets()
{
    m_at.voice.transcription.prewarm(dictationLocale(m_at.defaults));
}

std::optional<QString> DictationAnywhere::selectedLocale() const
{
    const QString chosen = dictationLocale(m_at.defaults);
    return chosen.isEmpty() ? std::nullopt : std::optional(chosen);
}

QString DictationAnywhere::selectedLanguageShortName() const
{
    const QString language = modelLanguage(dictationLocale(m_at.defaults));
    return language == anyLanguage ? QString() : localeDisplayName(language);
}

void DictationAnywhere::toggleRecording()
{
    if (!isEnabled())
        return m_panel.show(u"Dictation is off in Settings > Voice."_s, Mode::Attention, offTime);
    if (m_isAsking)
        return stopWithoutProcessing(u"Dictation cancelled."_s);
    if (m_state.kind == Kind::Recording)
        return stopAndTranscribe();
    if (m_state.kind == Kind::Transcribing)
        return m_panel.show(u"Transcribing…"_s, Mode::Busy);
    startRecording();
}

void DictationAnywhere::onReleased()
{
    if (!std::exchange(m_isHeld, false))
        return;
    if (m_isAsking)
        stopWithoutProcessing(u"Dictation cancelled."_s);
    else if (m_state.kind == Kind::Recording)
        stopAndTranscribe();
}

void DictationAnywhere::cancel()
{
    if (m_isAsking || m_state.kind == Kind::Recording || m_state.kind == Kind::Transcribing)
        stopWithoutProcessing(u"Dictation cancelled."_s);
}

void DictationAnywhere::startRecording()
{
    const QString language = modelLanguage(dictationLocale(m_at.defaults));
    if (!m_at.voice.transcription.speaks(language))
        return fail(u"Dictation in %1 needs a speech model."_s.arg(localeDisplayName(language)));
    dismissOffer();
    prewarmSpeechAssets();
    if (m_at.insertion)
        m_at.insertion->aim();
    m_isAsking = true;
    m_question = m_at.scheduler.after(
        questionTime, [this] { m_panel.show(u"Allow microphone access to start dictation."_s, Mode::Attention); });
    m_at.microphone.requestAccess([self = QPointer(this), attempt = ++m_attempt](MicrophoneAccess access) {
        if (!self || self->m_attempt != attempt || !std::exchange(self->m_isAsking, false))
            return;
        self->m_question.reset();
        if (access == MicrophoneAccess::Granted)
            self->beginRecording();
        else
            self->fail(accessText(access));
    });
}

void DictationAnywhere::beginRecording()
{
    m_lastAudioPath = QDir::tempPath() + u'/' + filePrefix + uuidText() + u".wav"_s;
    m_recorder = m_at.microphone.record(m_lastAudioPath);
    if (!m_recorder)
        return fail(u"Could not start microphone — its file cannot be written"_s);
    connect(m_recorder.get(), &MicrophoneRecording::interrupted, this, [this](const QString& reason) {
        // Transcribes what was said until then.
        if (m_recorder->elapsedSeconds() > 0)
            stopAndTranscribe();
        else
            fail(u"Could not start microphone — %1"_s.arg(reason));
    });
    m_ticks = m_at.scheduler.every(
        tick, [this] { m_panel.setProgress(m_recorder->level(), m_recorder->elapsedSeconds()); });
    if (m_at.shortcuts && !m_at.shortcuts->asksUser())
        m_at.shortcuts->bind({ cancelKey, u"Cancel dictation"_s, { u"Esc"_s } });
    m_panel.show(listeningText(), Mode::Listening);
    enter({ .kind = Kind::Recording, .startedAtMs = m_at.scheduler.nowMs() });
}

QString DictationAnywhere::listeningText() const
{
    const QString language = selectedLanguageShortName();
    QString text = language.isEmpty() ? u"Listening…"_s : u"Listening (%1) …"_s.arg(language);
    if (m_hotKey.isBound())
        text += (m_isHeld ? u" release %1 to finish"_s : u" %1 to finish"_s).arg(m_hotKey.keys());
    return text;
}

void DictationAnywhere::stopAndTranscribe()
{
    if (!takeRecording()->stop())
        return fail(describe({ .kind = SpeechTranscriberError::Kind::EmptyTranscript }));
    m_panel.show(u"Transcribing…"_s, Mode::Busy);
    enter({ .kind = Kind::Transcribing });
    m_cancel = {};
    transcribe(m_lastAudioPath, m_cancel);
}

QCoro::Task<> DictationAnywhere::transcribe(QString path, CancelHandle cancel)
{
    const QPointer<DictationAnywhere> self(this);
    TranscriptionRequest request;
    request.audioPath = path;
    request.locale = dictationLocale(m_at.defaults);
    request.cancel = cancel;
    request.onProgress = [self, cancel](double progress) {
        if (self && !cancel.isCancelled())
            self->m_panel.setProgress(progress);
    };
    const TranscriptionOutcome outcome = co_await m_at.voice.speech.transcribe(std::move(request));
    QFile::remove(path);
    if (!self || cancel.isCancelled())
        co_return;
    if (outcome)
        insertTranscript(oneLine(outcome->text));
    else
        fail(describe(outcome.error()));
}

void DictationAnywhere::insertTranscript(const QString& text)
{
    if (!m_at.insertion)
        return offer(text, u"The text could not be inserted here."_s);
    m_at.insertion->insert(text, [this, text](InsertionOutcome outcome) {
        switch (outcome) {
        case InsertionOutcome::Inserted:
            m_problem.clear();
            m_panel.show(u"Inserted"_s, Mode::Done, insertedTime);
            return enter({ .kind = Kind::Inserted });
        case InsertionOutcome::Copied:
            m_panel.show(insertionWay() == InsertionWay::None
                    ? u"Copied - allow Accessibility to paste automatically."_s
                    : u"Copied - no program accepted the text."_s,
                Mode::Attention, copiedTime);
            return enter({ .kind = Kind::Copied });
        case InsertionOutcome::Password:
            return offer(text, u"Nothing was inserted: this is a password field."_s);
        case InsertionOutcome::Missed:
            break;
        }
        offer(text, u"The text could not be inserted here."_s);
    });
}

void DictationAnywhere::offer(const QString& text, const QString& reason)
{
    fail(reason);
    m_offered = text;
    Q_EMIT offered();
}

void DictationAnywhere::dismissOffer()
{
    if (m_offered.isEmpty())
        return;
    m_offered.clear();
    Q_EMIT offered();
}

void DictationAnywhere::fail(const QString& message)
{
    dropRecording();
    m_problem = message;
    m_panel.show(message, Mode::Attention, failureTime);
    enter({ .kind = Kind::Failed, .message = message });
}

void DictationAnywhere::stopWithoutProcessing(const QString& message)
{
    m_isAsking = false;
    m_question.reset();
    m_cancel.cancel();
    dropRecording();
    m_panel.show(message, Mode::Attention, stoppedTime);
    enter({});
}

void DictationAnywhere::dropRecording()
{
    if (MicrophoneRecording* const recorder = takeRecording())
        recorder->cancel();
}

MicrophoneRecording* DictationAnywhere::takeRecording()
{
    m_ticks.reset();
    if (!m_recorder)
        return nullptr;
    if (m_at.shortcuts && !m_at.shortcuts->asksUser())
        m_at.shortcuts->release(cancelKey);
    m_recorder->disconnect(this);
    m_recorder->deleteLater(); // this may run inside its signal
    return m_recorder.release();
}

void DictationAnywhere::enter(const DictationAnywhereState& state)
{
    m_state = state;
    Q_EMIT stateChanged();
    Q_EMIT settingsChanged();
}

}
