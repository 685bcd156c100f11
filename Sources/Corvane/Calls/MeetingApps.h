#pragma once

#include "Platform/CallAudio.h"
#include "Platform/RunningPrograms.h"

namespace corvane {

class BackgroundQueue;

/// A program that is taken as a meeting in progress.
struct MeetingAppCandidate {
    QString bundleId; ///< its desktop id
    QString name;

    bool operator==(const MeetingAppCandidate&) const = default;
};

/// What runs on the machine, and which of it uses sound.
struct ProgramsSeen {
    QList<RunningProgram> running;
    QList<SoundApplication> sound;
};

/// Takes a look; the answer comes later, on the main thread.
using LookForPrograms = std::function<void(std::function<void(const ProgramsSeen&)>)>;

LookForPrograms lookForPrograms(CallAudio& audio, BackgroundQueue& background); ///< which outlive it

/// Those that record first, then by name. A browser counts, since a meeting may run in a tab; where a meeting has to be
/// certain, only while it records.
QList<MeetingAppCandidate> meetingApps(const ProgramsSeen& seen, bool browsersMustRecord);

}
