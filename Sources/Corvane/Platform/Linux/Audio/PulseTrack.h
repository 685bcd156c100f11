#pragma once

#include "Foundation/BackgroundQueue.h"
#include "Foundation/Scheduler.h"
#include "Platform/CallAudio.h"
#include "Platform/Linux/Audio/PulseCapture.h"

#include <atomic>
#include <mutex>

namespace corvane {

/// The sound thread writes; the main thread writes silence while no sound arrives, and takes over the file once that
/// thread has ended.
class PulseTrack final : public TrackRecording {
    Q_OBJECT
public:
    PulseTrack(const QString& path, std::unique_ptr<M4aWriter> writer, const CaptureTarget& target, SoundFormat format,
        Scheduler& scheduler, BackgroundQueue& background); ///< which outlive it
    ~PulseTrack() override;

    double elapsedSeconds() const override;
    double level() override;
    bool hasSource() const override { return m_hasSource; }
    void stop(Done done) override;
    void close() override;
    void cancel() override;

private:
    void connectSource();
    void beat();
    void setHasSource(bool hasSource);
    void hear(std::span<const float> samples);
    void fillUp(Milliseconds allowed); ///< with silence, if the file is further behind than that
    void write(std::span<const float> samples);
    void endCapture();

    const QString m_path;
    const CaptureTarget m_target;
    const SoundFormat m_format;
    Scheduler& m_scheduler; ///< its clock is read on the sound thread, too
    BackgroundQueue& m_background;
    const qint64 m_startedMs;
    std::mutex m_writing;
    std::unique_ptr<M4aWriter> m_writer;
    bool m_broken = false; ///< the file cannot be written
    std::atomic<qint64> m_written = 0; ///< samples, all channels together
    std::atomic<float> m_peak = 0;
    std::atomic<bool> m_heard = false;
    bool m_hasSource = false;
    bool m_lost = false; ///< the connection to the sound server
    std::unique_ptr<Timer> m_beat;
    std::unique_ptr<PulseCapture> m_capture;
};

}
