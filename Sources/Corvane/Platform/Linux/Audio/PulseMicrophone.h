#pragma once

#include "Foundation/Scheduler.h"
#include "Platform/Linux/Audio/PulseCapture.h"
#include "Platform/Microphone.h"

#include <map>

namespace corvane {

/// The default source of the sound server.
class PulseMicrophone final : public QObject, public Microphone {
    Q_OBJECT
public:
    explicit PulseMicrophone(Scheduler& scheduler);
    ~PulseMicrophone() override;

    void requestAccess(std::function<void(MicrophoneAccess)> answer) override;
    std::unique_ptr<MicrophoneRecording> record(const QString& path) override;

private:
    /// One query to the sound server.
    struct Probe {
        std::unique_ptr<PulseCapture> capture;
        std::unique_ptr<Timer> timeout;
        std::function<void(MicrophoneAccess)> answer;
    };
    void answered(quint64 probe, MicrophoneAccess access, const QString& reason);

    Scheduler& m_scheduler;
    quint64 m_lastProbe = 0;
    std::map<quint64, Probe> m_probes;
};

}
