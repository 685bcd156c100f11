#pragma once

#include <QString>

namespace corvane {

/// Where a call stands, from the first second of its recording to its notes.
struct CallPhase {
    enum class Kind { Idle, Recording, Transcribing, Summarizing, Ready, Failed };

    Kind kind = Kind::Idle;
    QString message = {}; ///< of Failed

    bool operator==(const CallPhase&) const = default;
};

namespace callStatus {
inline const QString recording = QStringLiteral("recording");
inline const QString transcribing = QStringLiteral("transcribing");
inline const QString transcribed = QStringLiteral("transcribed");
inline const QString ready = QStringLiteral("ready");
inline const QString failed = QStringLiteral("failed");
inline const QString cancelled = QStringLiteral("cancelled");
inline const QString interrupted = QStringLiteral("interrupted");
}

namespace captureMode {
inline const QString micOnly = QStringLiteral("mic_only");
inline const QString micAndSystem = QStringLiteral("mic_and_system");
}

}
