#pragma once

#include "AI/LocalAIAvailability.h"
#include "Foundation/Cancellation.h"
#include "Platform/SpeechRecogniser.h"
#include "Voice/SpeechModelSpec.h"

#include <QList>
#include <expected>

namespace corvane {

using SpeechSegment = HeardSpeech; ///< since the start of the whole sound

struct SpeechTranscriptResult {
    QString text; ///< trimmed, never empty
    SpeechModelSpec model; ///< what really transcribed
    QList<SpeechSegment> segments; ///< in the order of time
};

/// Why there is no transcript.
struct SpeechTranscriberError {
    enum class Kind { Stopped, MissingModel, Unavailable, MissingPermission, EmptyTranscript, Cancelled };

    Kind kind = Kind::Unavailable;
    QString words = {}; ///< of Unavailable
    std::optional<LocalAIStopCondition> condition = {}; ///< of Stopped
    std::optional<SpeechModelSpec> model = {}; ///< of MissingModel

    static SpeechTranscriberError unavailable(const QString& words) { return { Kind::Unavailable, words }; }
};

/// In words for the user.
QString describe(const SpeechTranscriberError& error);

using TranscriptionOutcome = std::expected<SpeechTranscriptResult, SpeechTranscriberError>;

/// A sound to transcribe.
struct TranscriptionRequest {
    QString audioPath; ///< any format that the decoder reads; its file is only read
    QString locale = {}; ///< such as "de_DE"; empty: the system's
    std::optional<SpeechModelSpec> model = {}; ///< nothing: the preferred one
    std::function<void(double)> onProgress = {}; ///< the done part of the sound, from 0 to 1; on the main thread
    CancelHandle cancel = {}; ///< ends in Kind::Cancelled
    BatteryWork onBattery = BatteryWork::Waits;
};

/// The file in which the segments of a sound's transcript are kept.
QString segmentsPath(const QString& audioPath);

/// Puts the segments beside the sound, in place of those of an earlier transcript. False if that fails.
bool writeSegments(const QString& audioPath, const SpeechTranscriptResult& result);

/// Empty if there are none.
QList<SpeechSegment> readSegments(const QString& audioPath);

}
