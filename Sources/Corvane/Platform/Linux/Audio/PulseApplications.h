#pragma once

#include "Platform/CallAudio.h"

namespace corvane {

/// One query to the sound server: which applications play or record. The answer arrives once, on a thread of its own;
/// destroying the object cancels the query.
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
