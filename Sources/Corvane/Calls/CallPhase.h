#pragma once

#include "Foundation/Literals.h"

#include <QString>

namespace corvane {

/// The state of a call, from the start of its recording to its finished notes.
struct CallPhase {
    enum class Kind { Idle, Recording, Transcribing, Summarizing, Ready, Failed };

    Kind kind = Kind::Idle;
    QString message = {}; ///< of Failed

    bool operator==(const CallPhase&) const = default;
};

namespace callStatus {
inline const QString recording = u"recording"_s;
inline const QString transcribing = u"transcribing"_s;
inline const QString transcribed = u"transcribed"_s;
inline const QString ready = u"ready"_s;
inline const QString failed = u"failed"_s;
inline const QString cancelled = u"cancelled"_s;
inline const QString interrupted = u"interrupted"_s;
}

namespace captureMode {
inline const QString micOnly = u"mic_only"_s;
inline const QString micAndSystem = u"mic_and_system"_s;
}

}
