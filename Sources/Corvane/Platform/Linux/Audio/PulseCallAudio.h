#pragma once

#include "Platform/Linux/Audio/PulseApplications.h"
#include "Platform/Linux/Audio/PulseTrack.h"

#include <map>

namespace corvane {

/// The sound of a call through the sound server.
class PulseCallAudio final : public QObject, public CallAudio {
    Q_OBJECT
public:
    explicit PulseCallAudio(Scheduler& scheduler);
    ~PulseCallAudio() override;

    std::unique_ptr<TrackRecording> recordMicrophone(const QString& path) override;
    std::unique_ptr<TrackRecording> recordSystem(const QString& path, const QString& binary, qint64 startMs) override;
    void findSystemAudio(std::function<void(const Result<void>&)> answer) override;
    void findApplications(std::function<void(const QList<SoundApplication>&)> answer) override;
    void repair(const QString& path, TrackRecording::Done done) override;

private:
    /// One query to the sound server.
    struct Question {
        std::unique_ptr<PulseCapture> capture;
        std::unique_ptr<PulseApplications> applications;
        std::unique_ptr<Timer> timeout;
    };
    std::unique_ptr<TrackRecording> record(const PulseTrack::Plan& plan);
    /// A callback for any thread that ends the question and answers it on the main thread, unless it has ended.
    template <typename Found> auto answering(quint64 question, std::function<void(const Found&)> answer);

    Scheduler& m_scheduler;
    BackgroundQueue m_background;
    quint64 m_lastQuestion = 0;
    std::map<quint64, Question> m_questions;
};

}
