#pragma once

#include <QJsonObject>
#include <QString>
#include <optional>

namespace corvane {

/// The model that generated a text.
struct LocalAIModelSpec {
    QString displayName;

    const QString& id() const { return displayName; }
    bool operator==(const LocalAIModelSpec&) const = default;
};

QJsonObject encoded(const LocalAIModelSpec& spec);

/// Nothing unless "displayName" is a text.
std::optional<LocalAIModelSpec> decodedModelSpec(const QJsonObject& object);

inline size_t qHash(const LocalAIModelSpec& spec, size_t seed = 0)
{
    return qHash(spec.displayName, seed);
}

}
