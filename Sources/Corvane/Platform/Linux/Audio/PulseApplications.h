#pragma once

#include "Platform/CallAudio.h"

namespace corvane {

/// One question to the sound server: who plays and who records. It has a thread of its own, on which the answer comes,
/// once; destroying it takes the question back.
class PulseApplications {
public:
    explicit PulseApplications(std::function<void(const QList<SoundApplication>&)> answer);
    ~PulseApplications();
    PulseApplications(const PulseApplications&) = delete;
    PulseApplications& operator=(const PulseApplications&) = delete;

private:
    struct State;
    std::unique_ptr<State> m_state;
};

}
