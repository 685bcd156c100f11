#pragma once

#include "Foundation/Cancellation.h"

#include <QJsonObject>
#include <QObject>
#include <QStringList>
#include <optional>
#include <qcoro/qcorotask.h>

namespace corvane {

/// The platform's language model. Every answer is independent: no state is kept between calls. What is known of the
/// model is refreshed in the background and never waited for.
class SystemLanguageModel : public QObject {
    Q_OBJECT
public:
    /// Which model answers and where it is served; empty: the first that the platform finds.
    struct Choice {
        QString serverUrl;
        QString model;
        QString allowedElsewhere = {}; ///< the model that may answer although it runs on another machine

        bool operator==(const Choice&) const = default;
    };

    virtual void choose(const Choice& choice) = 0;

    /// Why the model cannot answer now, for the user; nothing if it can.
    virtual std::optional<QString> unavailableReason() const = 0;
    /// Whether the model that would answer runs on another machine, behind a server on this one. It is unavailable then
    /// until `Choice::allowedElsewhere` names it.
    virtual bool runsElsewhere() const = 0;
    virtual QString modelName() const = 0; ///< as `models` lists it
    virtual QString displayName() const = 0; ///< of the model that answers, such as "llama3.2:3b (Ollama)"
    virtual QStringList models() const = 0; ///< valid values of `Choice::model`

    /// Checks again whether the model can answer; takes a few seconds at most.
    virtual QCoro::Task<> refresh() = 0;

    // Errors are for the user. Cancelling ends the request.

    virtual QCoro::Task<Result<QString>> respond(QString instructions, QString prompt, CancelHandle cancel) = 0;

    /// The answer fits the schema (`Foundation/JsonSchema.h`), or the call fails.
    virtual QCoro::Task<Result<QJsonObject>> respondGenerating(
        QString instructions, QString prompt, QJsonObject schema, CancelHandle cancel)
        = 0;

Q_SIGNALS:
    void availabilityChanged(); ///< the reason, the name or the models
};

}
