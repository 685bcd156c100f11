#include "Foundation/Json.h"

#include <QJsonArray>
#include <QJsonDocument>

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
