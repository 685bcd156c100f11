#include "Calls/RecordingView.h"

#include "Calls/CallRecorder.h"
#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"
#include "Presentation/PlayTime.h"

#include <algorithm>

namespace corvane {

namespace {

const QString consentKey = u"Corvane.calls.consentRead"_s;
const QString nothing = u"none"_s;
const QString everything = u"everything"_s;

QList<Choice> fixedSources()
{
    return { { nothing, u"Microphone only"_s }, { everything, u"Microphone and all sound"_s } };
}

}

RecordingView::RecordingView(CallRecorder& recorder, QObject* parent)
    : QObject(parent)
    , m_recorder(recorder)
    , m_sources(fixedSources())
{
    connect(&recorder, &CallRecorder::refused, this, [this](const QString& reason) { m_errorText = reason; });
    connect(&recorder, &CallRecorder::changed, this, [this, was = false]() mutable {
        if (!std::exchange(was, recording()) && recording()) {
            m_errorText.clear();
            Q_EMIT started();
        }
        Q_EMIT changed();
        Q_EMIT ticked();
    });
    connect(&recorder, &CallRecorder::ticked, this, &RecordingView::ticked);
    connect(this, &RecordingView::ticked, this, [this] {
        const int seconds = int(m_recorder.elapsed());
        if (std::exchange(m_seconds, seconds) != seconds)
            Q_EMIT elapsed();
    });
}

bool RecordingView::recording() const
{
    return m_recorder.isRecording();
}

QString RecordingView::callId() const
{
    return m_recorder.activeCallId();
}

QString RecordingView::title() const
{
    return recording() ? m_recorder.activeTitle() : QString();
}

QString RecordingView::statusText() const
{
    return m_recorder.statusText();
}

QString RecordingView::warningText() const
{
    return m_recorder.warningText();
}

QString RecordingView::elapsedText() const
{
    return playTime(qint64(m_recorder.elapsed() * 1000));
}

double RecordingView::level() const
{
    return recording() ? m_recorder.waveform().lastLevel() : 0;
}

QString RecordingView::marksText() const
{
    const qsizetype count = recording() ? m_recorder.marksMs().size() : 0;
    return count == 0 ? QString() : count == 1 ? u"1 mark"_s : u"%1 marks"_s.arg(count);
}

QString RecordingView::aloudText() const
{
    return recording() ? u"Recording "_s + title() : QString();
}

QString RecordingView::source() const
{
    if (!m_recorder.systemAudioEnabled())
        return nothing;
    return m_recorder.application().isEmpty() ? everything : m_recorder.application();
}

void RecordingView::setSource(const QString& id)
{
    if (std::ranges::find(m_sources, id, &Choice::id) == m_sources.end())
        return;
    m_recorder.setApplication(id == nothing || id == everything ? QString() : id);
    m_recorder.setSystemAudioEnabled(id != nothing);
}

QString RecordingView::sourceText() const
{
    const auto found = std::ranges::find(m_sources, source(), &Choice::id);
    return u"Record: "_s
        + (found == m_sources.end() ? m_recorder.application()
                                    : found->label.first(1).toLower() + found->label.sliced(1));
}

QString RecordingView::consentText() const
{
    return u"In many places everybody on a call has to know that it is recorded, and in some they have to agree first. "
           "Tell "
           "them at the start and wait for their answer.\n\nThe sound and its transcript stay on this computer. A red "
           "dot "
           "shows in the window, the panel and the tray as long as a recording runs."_s;
}

bool RecordingView::beganByItself() const
{
    return recording() && m_recorder.activeStartMode() == "calendar_auto"_L1;
}

QString RecordingView::consentReminder() const
{
    return u"Tell everybody in the meeting. You can stop it in the window, the panel or the tray."_s;
}

void RecordingView::start()
{
    if (m_recorder.surroundings().defaults.boolean(consentKey).value_or(false))
        m_recorder.start({}, {});
    else
        Q_EMIT consentAsked();
}

void RecordingView::acceptConsent()
{
    m_recorder.surroundings().defaults.setBoolean(consentKey, true);
    m_recorder.start({}, {});
}

void RecordingView::stop()
{
    m_recorder.stop();
}

void RecordingView::toggle()
{
    recording() ? stop() : start();
}

void RecordingView::mark()
{
    m_recorder.mark();
}

void RecordingView::discard()
{
    m_recorder.cancelActiveRecording();
}

void RecordingView::findSources()
{
    m_recorder.surroundings().audio.findApplications(
        [self = QPointer<RecordingView>(this)](const QList<SoundApplication>& applications) {
            if (!self)
                return;
            self->m_sources = fixedSources();
            for (const SoundApplication& application : applications) {
                if (application.plays)
                    self->m_sources.append({ application.binary,
                        u"Microphone and "_s + (application.name.isEmpty() ? application.binary : application.name) });
            }
            Q_EMIT self->changed();
        });
}

}
