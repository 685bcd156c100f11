#pragma once

#include "AI/AISchemaValidator.h"

#include <QJsonObject>
#include <optional>

namespace corvane {

/// A reply as a model returns it under a schema.
struct LumoGuidedDraftResult {
    QString body;
    QString intent;
    QStringList citations;
    QStringList warnings;
    bool sendSideEffect = false;
};

QJsonObject guidedDraftSchema();

/// Additional prompt text when the answer must follow the schema.
QString guidedDraftPromptAddition();

/// Every property must exist and have its type.
std::optional<LumoGuidedDraftResult> decodedGuidedDraft(const QJsonObject& object);

/// Not validated yet.
AIStructuredDraftResponse draftResponse(const LumoGuidedDraftResult& guided, const QString& tone);

}
