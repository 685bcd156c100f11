#include "Inbox/Compose/VoiceRecorder.h"

#include "Foundation/Literals.h"

#include <QFile>
#include <QPointer>

namespace corvane {

namespace {

constexpr Milliseconds tick { 100 };

/// "{folder}/corvane-voice-{seconds}.m4a", with the first free second from now on.
QString freePath(const QString& folder, qint64 nowMs)
{
    for (qint64 second = nowMs / 1000;; ++second) {
        const QString path = u"%1/corvane-voice-%2.m4a"_s.arg(folder).arg(second);
        if (!QFile::exists(path))
            return path;
    }
}

}

VoiceRecorder::VoiceRecorder(Microphone& microphone, Scheduler& scheduler, const QString& folder, QObject* parent)
    : QObject(parent)
    , m_microphone(microphone)
    , m_scheduler(scheduler)
    , m_folder(folder)
{
}

VoiceRecorder::~VoiceRecorder() = default;

QString VoiceRecorder::elapsedText() const
{
    const int seconds = int(m_elapsed);
    return u"%1:%2"_s.arg(seconds / 60).arg(seconds % 60, 2, 10, QLatin1Char('0'));
}

void VoiceRecorder::start(const QString& contactId)
{
    if (m_state != State::Idle)
        return;
    setNotice({});
    m_contactId = contactId;
    enter(State::Starting);
    m_microphone.requestAccess([self = QPointer(this), attempt = ++m_attempt](MicrophoneAccess access) {
        if (self && self->m_attempt == attempt && self->m_state == State::Starting)
            self->begin(access);
    });
}

void VoiceRecorder::begin(MicrophoneAccess access)
{
    if (access != MicrophoneAccess::Granted) {
        enter(State::Idle);
        setNotice(access == MicrophoneAccess::Denied ? u"Microphone permission was refused."_s
                                                     : u"No microphone was found."_s);
        return;
    }
    m_path = freePath(m_folder, m_scheduler.nowMs());
    m_recording = m_microphone.record(m_path);
    if (!m_recording) {
        enter(State::Idle);
        setNotice(u"Could not start microphone recording."_s);
        return;
    }
    connect(m_recording.get(), &MicrophoneRecording::interrupted, this, &VoiceRecorder::interrupted);
    m_ticks = m_scheduler.every(tick, [this] { update(); });
    enter(State::Recording);
}

void VoiceRecorder::update()
{
    m_elapsed = m_recording->elapsedSeconds();
    m_level = m_recording->level();
    Q_EMIT progressed();
}

void VoiceRecorder::interrupted(const QString& reason)
{
    if (m_state != State::Recording)
        return;
    if (stop().isEmpty())
        setNotice(u"Could not record: %1."_s.arg(reason));
    else
        setNotice(u"The recording ended: %1. What was recorded until then is kept."_s.arg(reason));
}

QString VoiceRecorder::stop()
{
    if (m_state == State::Kept)
        return m_path;
    if (m_state != State::Recording)
        return {};
    m_ticks.reset();
    update();
    // May be called from its own signal, so it is destroyed at the next turn of the event loop.
    MicrophoneRecording* const recording = m_recording.release();
    const bool complete = recording->stop();
    recording->disconnect(this);
    recording->deleteLater();
    if (!complete) {
        enter(State::Idle);
        setNotice(u"Nothing was recorded."_s);
        return {};
    }
    enter(State::Kept);
    return m_path;
}

void VoiceRecorder::leave()
{
    if (m_state == State::Starting)
        cancel();
    else
        stop();
}

void VoiceRecorder::handedOver()
{
    if (m_state == State::Kept)
        enter(State::Idle);
}

void VoiceRecorder::cancel()
{
    m_ticks.reset();
    if (m_recording) {
        m_recording->cancel();
        m_recording.reset();
    } else if (m_state == State::Kept) {
        QFile::remove(m_path);
    }
    setNotice({});
    enter(State::Idle);
}

void VoiceRecorder::enter(State state)
{
    m_state = state;
    m_level = 0;
    if (state == State::Idle) {
        m_elapsed = 0;
        m_path.clear();
        m_contactId.clear();
    }
    Q_EMIT stateChanged();
    Q_EMIT progressed();
}

void VoiceRecorder::setNotice(const QString& notice)
{
    if (m_notice == notice)
        return;
    m_notice = notice;
    Q_EMIT noticeChanged();
}

}
