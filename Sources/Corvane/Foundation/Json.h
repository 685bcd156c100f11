#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>
#include <optional>

namespace corvane {

/// The object in `text`, or nothing if it is not a JSON object.
std::optional<QJsonObject> jsonObject(const QByteArray& text);

/// On one line, with sorted keys.
QByteArray compactJson(const QJsonObject& object);

/// A string value; nothing if the key is missing or has another type.
std::optional<QString> textValue(const QJsonObject& object, QLatin1StringView key);

/// A number without its fraction; nothing if it is not a number or does not fit 64 bits.
std::optional<qint64> truncatedNumber(const QJsonObject& object, QLatin1StringView key);

/// The same; nothing if it has a fraction.
std::optional<qint64> wholeNumber(const QJsonObject& object, QLatin1StringView key);

/// An array of strings; nothing if the key is missing or the value is anything else.
std::optional<QStringList> textsValue(const QJsonObject& object, QLatin1StringView key);

}
