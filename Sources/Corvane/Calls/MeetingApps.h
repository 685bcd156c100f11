#pragma once

#include "Platform/CallAudio.h"
#include "Platform/RunningPrograms.h"

namespace corvane {

class BackgroundQueue;

/// A program that counts as a running meeting.
struct MeetingAppCandidate {
    QString bundleId; ///< its desktop id
    QString name;

    bool operator==(const MeetingAppCandidate&) const = default;
};

/// The running programs, and which of them use sound.
struct ProgramsSeen {
    QList<RunningProgram> running;
    QList<SoundApplication> sound;
};

/// Takes a snapshot; answers later, on the main thread.
using LookForPrograms = std::function<void(std::function<void(const ProgramsSeen&)>)>;

LookForPrograms lookForPrograms(CallAudio& audio, BackgroundQueue& background); ///< which outlive it

/// Recording ones first, then by name. Browsers count, since a meeting may run in a tab; if certainty is required, only
/// while they record.
QList<MeetingAppCandidate> meetingApps(const ProgramsSeen& seen, bool browsersMustRecord);

}
