#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <optional>

namespace corvane {

/// The object that `text` holds, or nothing where it is no JSON object.
std::optional<QJsonObject> jsonObject(const QByteArray& text);

/// One line, keys sorted.
QByteArray compactJson(const QJsonObject& object);

/// A string value, or nothing where the key is missing or holds another type.
std::optional<QString> textValue(const QJsonObject& object, QLatin1StringView key);

/// A number without its fraction; nothing where it is none, or none that 64 bits hold.
std::optional<qint64> truncatedNumber(const QJsonObject& object, QLatin1StringView key);

/// The same, and nothing where it has a fraction.
std::optional<qint64> wholeNumber(const QJsonObject& object, QLatin1StringView key);

/// An array of strings, or nothing where the key is missing or holds anything else.
std::optional<QStringList> textsValue(const QJsonObject& object, QLatin1StringView key);

}
