#include "Foundation/Json.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QVariant>
#include <cmath>

namespace corvane {

std::optional<QJsonObject> jsonObject(const QByteArray& text)
{
    const QJsonDocument document = QJsonDocument::fromJson(text);
    if (!document.isObject())
        return std::nullopt;
    return document.object();
}

QByteArray compactJson(const QJsonObject& object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

std::optional<QString> textValue(const QJsonObject& object, QLatin1StringView key)
{
    const QJsonValue value = object.value(key);
    if (!value.isString())
        return std::nullopt;
    return value.toString();
}

std::optional<qint64> truncatedNumber(const QJsonObject& object, QLatin1StringView key)
{
    const QJsonValue value = object.value(key);
    if (!value.isDouble())
        return std::nullopt;
    const QVariant number = value.toVariant();
    if (number.typeId() == QMetaType::LongLong)
        return number.toLongLong();
    constexpr double limit = 9223372036854775808.0;
    const double real = number.toDouble();
    return real >= -limit && real < limit ? std::optional(static_cast<qint64>(real)) : std::nullopt;
}

std::optional<qint64> wholeNumber(const QJsonObject& object, QLatin1StringView key)
{
    const double real = object.value(key).toDouble();
    return std::trunc(real) == real ? truncatedNumber(object, key) : std::nullopt;
}

std::optional<QStringList> textsValue(const QJsonObject& object, QLatin1StringView key)
{
    const QJsonValue value = object.value(key);
    if (!value.isArray())
        return std::nullopt;
    QStringList texts;
    for (const QJsonValue& item : value.toArray()) {
        if (!item.isString())
            return std::nullopt;
        texts.append(item.toString());
    }
    return texts;
}

}
