#include "Platform/Linux/Audio/PulseMicrophone.h"

#include "Foundation/Literals.h"
#include "Foundation/Log.h"
#include "Platform/Linux/Audio/WavWriter.h"
#include "Platform/Linux/Services.h"
#include "Platform/MediaDecoder.h"

#include <QFile>
#include <atomic>
#include <cmath>

namespace corvane {

namespace {

constexpr Milliseconds answerTime { 3000 };
constexpr SoundFormat voice { .rate = 44'100, .channels = 1 };
constexpr SoundFormat dictation { .rate = speechFormat.rate, .channels = 1 };

/// Why a recording ended, as part of a sentence.
QString words(PulseCapture::End kind)
{
    switch (kind) {
    case PulseCapture::End::Denied:
        return u"microphone permission was refused"_s;
    case PulseCapture::End::Missing:
        return u"no microphone was found"_s;
    case PulseCapture::End::Lost:
        break;
    }
    return u"the microphone went away"_s;
}

/// The sound thread writes; the main thread reads counters, and takes over the file once that thread has ended.
class LinuxRecording final : public MicrophoneRecording {
public:
    LinuxRecording(
        const QString& path, std::unique_ptr<SoundWriter> writer, const SoundFormat& format, Scheduler& scheduler)
        : m_path(path)
        , m_rate(format.rate)
        , m_writer(std::move(writer))
        , m_timeout(scheduler.after(answerTime, [this] { end(u"the sound server does not answer"_s); }))
        , m_capture(std::make_unique<PulseCapture>(CaptureTarget(), format,
              PulseCapture::Callbacks { .ready = [this] { post([this] { m_timeout.reset(); }); },
                  .sound = [this](std::span<const float> samples, auto) { hear(samples); },
                  .ended =
                      [this](PulseCapture::End kind, const QString& reason) {
                          post([this, kind, reason] {
                              log(u"PulseMicrophone: "_s + reason);
                              end(words(kind));
                          });
                      } }))
    {
    }

    ~LinuxRecording() override { LinuxRecording::stop(); }

    double elapsedSeconds() const override { return double(m_samples) / m_rate; }
    double level() override { return std::min(1.0F, m_peak.exchange(0)); }

    bool stop() override
    {
        m_timeout.reset();
        m_capture.reset();
        if (!m_writer)
            return QFile::exists(m_path);
        if (m_samples == 0) {
            cancel();
            return false;
        }
        const auto finished = m_writer->finish();
        if (!finished)
            log(u"PulseMicrophone: %1: %2"_s.arg(m_path, finished.error().message));
        m_writer.reset();
        return true;
    }

    void cancel() override
    {
        m_timeout.reset();
        m_capture.reset();
        m_writer.reset();
        QFile::remove(m_path);
    }

private:
    void post(std::function<void()> call) { QMetaObject::invokeMethod(this, std::move(call), Qt::QueuedConnection); }

    void hear(std::span<const float> samples)
    {
        if (m_broken)
            return;
        if (const auto written = m_writer->write(samples); !written) {
            m_broken = true;
            post([this, reason = written.error().message] { end(reason); });
            return;
        }
        float peak = m_peak;
        for (const float sample : samples)
            peak = std::max(peak, std::fabs(sample));
        m_peak = peak;
        m_samples += qint64(samples.size());
    }

    void end(const QString& reason)
    {
        m_timeout.reset();
        m_capture.reset();
        Q_EMIT interrupted(reason);
    }

    const QString m_path;
    const int m_rate;
    std::unique_ptr<SoundWriter> m_writer;
    std::atomic<qint64> m_samples = 0;
    std::atomic<float> m_peak = 0;
    bool m_broken = false; ///< used by the sound thread
    std::unique_ptr<Timer> m_timeout;
    std::unique_ptr<PulseCapture> m_capture;
};

}

PulseMicrophone::PulseMicrophone(Scheduler& scheduler)
    : m_scheduler(scheduler)
{
}

PulseMicrophone::~PulseMicrophone() = default;

void PulseMicrophone::requestAccess(std::function<void(MicrophoneAccess)> answer)
{
    const quint64 id = ++m_lastProbe;
    const auto tell = [this, id](MicrophoneAccess access, const QString& reason) {
        QMetaObject::invokeMethod(
            this, [this, id, access, reason] { answered(id, access, reason); }, Qt::QueuedConnection);
    };
    Probe& probe = m_probes[id];
    probe.answer = std::move(answer);
    probe.timeout = m_scheduler.after(
        answerTime, [this, id] { answered(id, MicrophoneAccess::Missing, u"the sound server does not answer"_s); });
    probe.capture = std::make_unique<PulseCapture>(CaptureTarget(), voice,
        PulseCapture::Callbacks { .ready = [tell] { tell(MicrophoneAccess::Granted, {}); },
            .sound = nullptr,
            .ended =
                [tell](PulseCapture::End end, const QString& reason) {
                    const bool denied = end == PulseCapture::End::Denied;
                    tell(denied ? MicrophoneAccess::Denied : MicrophoneAccess::Missing, reason);
                } });
}

void PulseMicrophone::answered(quint64 id, MicrophoneAccess access, const QString& reason)
{
    const auto probe = m_probes.extract(id);
    if (!probe)
        return;
    if (access != MicrophoneAccess::Granted)
        log(u"PulseMicrophone: "_s + reason);
    probe.mapped().answer(access);
}

std::unique_ptr<MicrophoneRecording> PulseMicrophone::record(const QString& path)
{
    const bool isPlain = path.endsWith(".wav"_L1);
    const SoundFormat& format = isPlain ? dictation : voice;
    const auto writerOf = [&]() -> Result<std::unique_ptr<SoundWriter>> {
        if (isPlain)
            return WavWriter::create(path, format.rate);
        return M4aWriter::create(path, format);
    };
    auto writer = writerOf();
    if (!writer) {
        log(u"PulseMicrophone: %1: %2"_s.arg(path, writer.error().message));
        return nullptr;
    }
    return std::make_unique<LinuxRecording>(path, std::move(*writer), format, m_scheduler);
}

std::unique_ptr<Microphone> makeMicrophone(Scheduler& scheduler)
{
    return std::make_unique<PulseMicrophone>(scheduler);
}

}
