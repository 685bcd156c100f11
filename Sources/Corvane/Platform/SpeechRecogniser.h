#pragma once

#include "Foundation/Cancellation.h"

#include <QList>
#include <QString>
#include <functional>
#include <qcoro/qcorotask.h>

namespace corvane {

/// A stretch of sound and what was said in it, in milliseconds since its start.
struct HeardSpeech {
    qint64 startMs = 0;
    qint64 endMs = 0;
    QString text;

    bool operator==(const HeardSpeech&) const = default;
};

/// Sound to recognise.
struct SpeechJob {
    QList<qint16> samples; ///< in `speechFormat`
    QString model; ///< path of the model file; unused by recognisers with a model of their own
    QString language; ///< such as "de", or "auto" to detect it
    std::function<void(qint64 ms)> onHeard = {}; ///< how much of the sound is processed
    CancelHandle cancel = {};
};

/// Turns sound into text in a separate process: a crash fails the job and nothing else.
class SpeechRecogniser {
public:
    /// Ends running jobs with a failure.
    virtual ~SpeechRecogniser() = default;

    virtual bool isAvailable() const = 0; ///< whether its executable is installed
    virtual void prewarm(const QString& /*model*/) { } ///< a job with that model file is about to start

    /// In chronological order; empty if nothing was understood. Fails with an error for the user.
    virtual QCoro::Task<Result<QList<HeardSpeech>>> recognise(SpeechJob job) = 0;
};

}
