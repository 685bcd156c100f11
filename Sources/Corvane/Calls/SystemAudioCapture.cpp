#include "Calls/SystemAudioCapture.h"

#include "Foundation/Literals.h"

#include <QFile>

namespace corvane {

QString describe(SystemAudioCaptureError error, const QString& detail)
{
    switch (error) {
    case SystemAudioCaptureError::WriterSetup:
        return u"Could not prepare system audio writer: "_s + detail;
    case SystemAudioCaptureError::CaptureFailed:
        return u"System audio capture failed: "_s + detail;
    case SystemAudioCaptureError::Unavailable:
        break;
    }
    return u"System audio capture requires a sound output (%1)."_s.arg(detail);
}

SystemAudioCapture::SystemAudioCapture(CallAudio& audio, QObject* parent)
    : QObject(parent)
    , m_audio(audio)
{
}

void SystemAudioCapture::start(const QString& path, const QString& binary, qint64 startMs, Done done)
{
    QFile::remove(path);
    m_audio.findSystemAudio([self = QPointer<SystemAudioCapture>(this), path, binary, startMs, done = std::move(done)](
                                const Result<void>& found) {
        if (!self)
            return;
        if (!found)
            return done(failure(describe(SystemAudioCaptureError::Unavailable, found.error().message)));
        self->m_track = self->m_audio.recordSystem(path, binary, startMs);
        done(self->m_track ? Result<void>()
                           : failure(describe(SystemAudioCaptureError::WriterSetup, u"the file cannot be created."_s)));
    });
}

void SystemAudioCapture::stop(Done done)
{
    m_track->stop([done = std::move(done)](const Result<void>& stopped) {
        done(stopped ? stopped : failure(describe(SystemAudioCaptureError::CaptureFailed, stopped.error().message)));
    });
}

void SystemAudioCapture::close()
{
    if (m_track)
        m_track->close();
}

void SystemAudioCapture::cancel()
{
    if (m_track)
        m_track->cancel();
    m_track.reset();
}

}
