#include "AI/LocalAIModelSpec.h"

#include "Foundation/Json.h"

namespace corvane {

namespace {

constexpr QLatin1StringView displayNameKey("displayName");

}

QJsonObject encoded(const LocalAIModelSpec& spec)
{
    return { { displayNameKey, spec.displayName } };
}

std::optional<LocalAIModelSpec> decodedModelSpec(const QJsonObject& object)
{
    return textValue(object, displayNameKey).transform([](const QString& name) { return LocalAIModelSpec { name }; });
}

}
