#include "Platform/Linux/Audio/PulseTrack.h"

#include "Foundation/Literals.h"
#include "Foundation/Log.h"

#include <QFile>
#include <cmath>
#include <vector>

namespace corvane {

namespace {

constexpr Milliseconds beatPeriod { 250 };
constexpr Milliseconds noDelay { 0 };
// A source may deliver its sound late and all at once, which is not a gap.
constexpr Milliseconds latestSound { 3000 };
// The clocks of sound cards differ. Sound that began at its time is let off by that much, as a correction is audible.
constexpr Milliseconds allowedShift { 300 };

/// All channels together.
qint64 samplesPerSecond(SoundFormat format)
{
    return qint64(format.rate) * format.channels;
}

void post(QObject* to, std::function<void()> call)
{
    QMetaObject::invokeMethod(to, std::move(call), Qt::QueuedConnection);
}

}

PulseTrack::PulseTrack(
    const Plan& plan, std::unique_ptr<M4aWriter> writer, Scheduler& scheduler, BackgroundQueue& background)
    : m_plan(plan)
    , m_scheduler(scheduler)
    , m_background(background)
    , m_writer(std::move(writer))
{
    connectSource();
    m_beat = m_scheduler.every(beatPeriod, [this] { beat(); });
}

PulseTrack::~PulseTrack()
{
    PulseTrack::close();
}

double PulseTrack::elapsedSeconds() const
{
    return double(m_written) / double(samplesPerSecond(m_plan.format));
}

double PulseTrack::level()
{
    return std::min(1.0F, m_peak.exchange(0));
}

void PulseTrack::connectSource()
{
    m_lost = false;
    m_capture = std::make_unique<PulseCapture>(m_plan.target, m_plan.format,
        PulseCapture::Callbacks {
            .ready =
                [this] {
                    fillUp(noDelay);
                    m_isPlaced = false;
                    post(this, [this] { setHasSource(true); });
                },
            .sound = [this](std::span<const float> samples, std::optional<Milliseconds> age) { hear(samples, age); },
            .ended =
                [this](PulseCapture::End, const QString& reason) {
                    post(this, [this, reason] {
                        log(u"PulseTrack: "_s + reason);
                        m_lost = true;
                        setHasSource(false);
                    });
                },
            .away = [this] { post(this, [this] { setHasSource(false); }); },
        });
}

void PulseTrack::beat()
{
    if (m_lost) {
        m_capture.reset();
        connectSource();
    } else if (!m_hasSource && m_capture) {
        m_capture->look();
    }
    fillUp(m_hasSource ? latestSound : beatPeriod);
}

void PulseTrack::setHasSource(bool hasSource)
{
    if (std::exchange(m_hasSource, hasSource) != hasSource)
        Q_EMIT sourceChanged();
}

void PulseTrack::hear(std::span<const float> samples, std::optional<Milliseconds> age)
{
    float peak = m_peak;
    for (const float sample : samples)
        peak = std::max(peak, std::fabs(sample));
    m_peak = peak;
    m_heard = true;
    const std::scoped_lock lock(m_writing);
    write(age ? inTime(samples, *age) : samples);
}

/// The part of the sound that puts it at its moment in the file: silence is written before it where the file ends too
/// early, and its beginning is dropped where the file is past that already.
std::span<const float> PulseTrack::inTime(std::span<const float> samples, Milliseconds age)
{
    const qint64 missing = missingAt(m_scheduler.monotonicMs() - age.count());
    const Milliseconds shift = std::exchange(m_isPlaced, true) ? allowedShift : noDelay;
    const qint64 allowed = shift.count() * samplesPerSecond(m_plan.format) / 1000;
    if (missing > allowed)
        writeSilence(missing);
    return samples.subspan(missing < -allowed ? std::min(samples.size(), size_t(-missing)) : 0);
}

void PulseTrack::fillUp(Milliseconds allowed)
{
    const std::scoped_lock lock(m_writing);
    writeSilence(missingAt(m_scheduler.monotonicMs() - allowed.count()));
}

qint64 PulseTrack::missingAt(qint64 ms) const
{
    return (ms - m_plan.startMs) * m_plan.format.rate / 1000 * m_plan.format.channels - m_written;
}

void PulseTrack::writeSilence(qint64 count)
{
    const std::vector<float> silence(size_t(samplesPerSecond(m_plan.format)) / 4);
    while (count > 0 && !m_broken) {
        const auto piece = std::min(count, qint64(silence.size()));
        write(std::span(silence).first(size_t(piece)));
        count -= piece;
    }
}

void PulseTrack::write(std::span<const float> samples)
{
    if (m_broken || !m_writer)
        return;
    if (const auto written = m_writer->write(samples); !written) {
        m_broken = true;
        post(this, [this, reason = written.error().message] {
            log(u"PulseTrack: %1: %2"_s.arg(m_plan.path, reason));
            endCapture();
            Q_EMIT failed(reason);
        });
        return;
    }
    m_written += qint64(samples.size());
}

void PulseTrack::endCapture()
{
    m_beat.reset();
    m_capture.reset();
}

void PulseTrack::stop(Done done)
{
    endCapture();
    if (!m_heard || !m_writer) {
        cancel();
        const auto nothing = [] {
            return Result<void>(failure(u"no sound came."_s));
        };
        m_background.run<Result<void>>(nothing, done);
        return;
    }
    const auto finish = [writer = std::shared_ptr<M4aWriter>(std::move(m_writer))] {
        return writer->finish();
    };
    m_background.run<Result<void>>(finish, done);
}

void PulseTrack::close()
{
    endCapture();
    if (!m_writer)
        return;
    if (const auto closed = m_writer->close(); !closed)
        log(u"PulseTrack: %1: %2"_s.arg(m_plan.path, closed.error().message));
    m_writer.reset();
}

void PulseTrack::cancel()
{
    endCapture();
    m_writer.reset();
    QFile::remove(m_plan.path);
}

}
