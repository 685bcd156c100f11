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
    QString model; ///< path of the model's file; unused where the recogniser has its own
    QString language; ///< such as "de", or "auto": found out from the sound
    std::function<void(qint64 ms)> onHeard = {}; ///< up to where of the sound is done
    CancelHandle cancel = {};
};

/// Turns sound into text, in a process of its own: what kills it fails the job and nothing else.
class SpeechRecogniser {
public:
    /// Ends what still runs; who waits for it fails.
    virtual ~SpeechRecogniser() = default;

    virtual bool isAvailable() const = 0; ///< whether its program is there
    virtual void prewarm(const QString& /*model*/) { } ///< a job with that model's file comes soon

    /// In the order of time; empty where nothing was understood. Fails in words for the user.
    virtual QCoro::Task<Result<QList<HeardSpeech>>> recognise(SpeechJob job) = 0;
};

}
