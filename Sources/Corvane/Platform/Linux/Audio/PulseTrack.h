#pragma once

#include "Foundation/BackgroundQueue.h"
#include "Foundation/Scheduler.h"
#include "Platform/CallAudio.h"
#include "Platform/Linux/Audio/PulseCapture.h"

#include <atomic>
#include <mutex>

namespace corvane {

/// The audio thread writes the captured sound. The main thread writes silence while there is none, and takes over the
/// file once that thread has ended.
class PulseTrack final : public TrackRecording {
    Q_OBJECT
public:
    struct Plan {
        QString path;
        CaptureTarget target;
        SoundFormat format;
        qint64 startMs = 0; ///< where the file begins, on the scheduler's monotonic clock
    };

    /// `scheduler` and `background` must outlive the track.
    PulseTrack(const Plan& plan, std::unique_ptr<M4aWriter> writer, Scheduler& scheduler, BackgroundQueue& background);
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
    void hear(std::span<const float> samples, std::optional<Milliseconds> age);
    void fillUp(Milliseconds allowed); ///< pads with silence until the file is at most this far behind
    std::span<const float> inTime(std::span<const float> samples, Milliseconds age);
    qint64 missingAt(qint64 ms) const; ///< samples between the file's end and the given time; negative if it is past it
    void writeSilence(qint64 count);
    void write(std::span<const float> samples);
    void endCapture();

    const Plan m_plan;
    Scheduler& m_scheduler; ///< its clock is also read on the audio thread
    BackgroundQueue& m_background;
    std::mutex m_writing;
    std::unique_ptr<M4aWriter> m_writer;
    bool m_broken = false; ///< writing the file failed
    bool m_isPlaced = false; ///< the first sound of the current source was written at its time
    std::atomic<qint64> m_written = 0; ///< samples of all channels
    std::atomic<float> m_peak = 0;
    std::atomic<bool> m_heard = false;
    bool m_hasSource = false;
    bool m_lost = false; ///< whether the connection to the sound server was lost
    std::unique_ptr<Timer> m_beat;
    std::unique_ptr<PulseCapture> m_capture;
};

}
