#pragma once

#include <QJsonObject>
#include <QString>
#include <optional>

namespace corvane {

/// Where and why `value` does not fit the schema, for the log and the user; nothing where it fits.
///
/// Checked are type (one or a list), enum, properties, required, additionalProperties (true or false), items,
/// minItems, maxItems, minLength, maxLength, minimum and maximum. Words that only describe (title, description,
/// $schema, default, examples) are passed over; any other word is a violation, so that nothing counts as checked
/// that was not.
std::optional<QString> schemaViolation(const QJsonValue& value, const QJsonObject& schema);

}
