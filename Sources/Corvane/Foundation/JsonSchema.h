#pragma once

#include <QJsonObject>
#include <QString>
#include <optional>

namespace corvane {

/// Where and why `value` does not match the schema, for the log and the user; nothing if it matches.
///
/// Supported keywords: type (one or a list), enum, properties, required, additionalProperties (true or false), items,
/// minItems, maxItems, minLength, maxLength, minimum and maximum. Annotations (title, description, $schema, default,
/// examples) are ignored. Any other keyword is a violation, so that nothing passes unchecked.
std::optional<QString> schemaViolation(const QJsonValue& value, const QJsonObject& schema);

}
