#pragma once

#include "AI/AISchemaValidator.h"

#include <QJsonObject>
#include <optional>

namespace corvane {

/// A reply as a model answers it under a schema.
struct LumoGuidedDraftResult {
    QString body;
    QString intent;
    QStringList citations;
    QStringList warnings;
    bool sendSideEffect = false;
};

QJsonObject guidedDraftSchema();

/// What the prompt says besides where the answer follows the schema.
QString guidedDraftPromptAddition();

/// Every property must be there and hold its type.
std::optional<LumoGuidedDraftResult> decodedGuidedDraft(const QJsonObject& object);

/// Yet to be validated.
AIStructuredDraftResponse draftResponse(const LumoGuidedDraftResult& guided, const QString& tone);

}
