#include "Foundation/JsonSchema.h"

#include <QHash>
#include <QJsonArray>
#include <QSet>
#include <algorithm>
#include <cmath>
#include <functional>

namespace corvane {

namespace {

using Violation = std::optional<QString>;

QString nameOf(const QJsonValue& value)
{
    switch (value.type()) {
    case QJsonValue::Null:
        return QStringLiteral("null");
    case QJsonValue::Bool:
        return QStringLiteral("boolean");
    case QJsonValue::Double:
        return QStringLiteral("number");
    case QJsonValue::String:
        return QStringLiteral("string");
    case QJsonValue::Array:
        return QStringLiteral("array");
    case QJsonValue::Object:
        return QStringLiteral("object");
    case QJsonValue::Undefined:
        break;
    }
    return QStringLiteral("nothing");
}

bool isOfType(const QJsonValue& value, const QString& type)
{
    if (type == QLatin1StringView("integer"))
        return value.isDouble() && std::trunc(value.toDouble()) == value.toDouble();
    return nameOf(value) == type;
}

QJsonArray asList(const QJsonValue& value)
{
    return value.isArray() ? value.toArray() : QJsonArray { value };
}

/// One rule of a schema: what stands behind its word, and the value that it is about.
struct Rule {
    const QJsonValue& wanted;
    const QJsonValue& value;
    const QJsonObject& schema;
    const QString& path;

    Violation violated(const QString& words) const { return path + u' ' + words; }
};

Violation check(const QJsonValue& value, const QJsonObject& schema, const QString& path);

Violation checkType(const Rule& rule)
{
    const QJsonArray types = asList(rule.wanted);
    if (std::ranges::any_of(types, [&](const QJsonValue& type) { return isOfType(rule.value, type.toString()); }))
        return std::nullopt;
    return rule.violated(QStringLiteral("is of the type ") + nameOf(rule.value));
}

Violation checkEnum(const Rule& rule)
{
    if (rule.wanted.toArray().contains(rule.value))
        return std::nullopt;
    return rule.violated(QStringLiteral("is none of the values that it may have"));
}

Violation checkRequired(const Rule& rule)
{
    if (!rule.value.isObject())
        return std::nullopt;
    for (const QJsonValue& key : rule.wanted.toArray()) {
        if (!rule.value.toObject().contains(key.toString()))
            return rule.violated(QStringLiteral("has no “%1”").arg(key.toString()));
    }
    return std::nullopt;
}

Violation checkProperties(const Rule& rule)
{
    const QJsonObject object = rule.value.toObject();
    const QJsonObject properties = rule.wanted.toObject();
    for (auto property = properties.constBegin(); property != properties.constEnd(); ++property) {
        const auto value = object.constFind(property.key());
        if (value == object.constEnd())
            continue;
        if (auto violation = check(*value, property->toObject(), rule.path + u'.' + property.key()))
            return violation;
    }
    return std::nullopt;
}

Violation checkAdditionalProperties(const Rule& rule)
{
    if (!rule.wanted.isBool())
        return rule.violated(QStringLiteral("has a rule for further properties that is not checked here"));
    if (rule.wanted.toBool())
        return std::nullopt;
    const QJsonObject known = rule.schema[QLatin1StringView("properties")].toObject();
    for (const QString& key : rule.value.toObject().keys()) {
        if (!known.contains(key))
            return rule.violated(QStringLiteral("has “%1”, which nobody asked for").arg(key));
    }
    return std::nullopt;
}

Violation checkItems(const Rule& rule)
{
    const QJsonArray items = rule.value.toArray();
    for (qsizetype i = 0; i < items.size(); ++i) {
        if (auto violation = check(items[i], rule.wanted.toObject(), QStringLiteral("%1[%2]").arg(rule.path).arg(i)))
            return violation;
    }
    return std::nullopt;
}

/// What a limit is compared with; nothing where the value is of another type, which has no such limit.
std::optional<double> measure(const QJsonValue& value, const QString& word)
{
    if (word.endsWith(QLatin1StringView("Items")))
        return value.isArray() ? std::optional(double(value.toArray().size())) : std::nullopt;
    if (word.endsWith(QLatin1StringView("Length")))
        return value.isString() ? std::optional(double(value.toString().toUcs4().size())) : std::nullopt;
    return value.isDouble() ? std::optional(value.toDouble()) : std::nullopt;
}

Violation checkLimit(const Rule& rule, const QString& word)
{
    const auto measured = measure(rule.value, word);
    const double limit = rule.wanted.toDouble();
    if (measured && (word.startsWith(QLatin1StringView("min")) ? *measured < limit : *measured > limit))
        return rule.violated(QStringLiteral("breaks its %1 of %2").arg(word).arg(limit));
    return std::nullopt;
}

bool onlyDescribes(const QString& word)
{
    static const QSet<QString> words { QStringLiteral("title"), QStringLiteral("description"),
        QStringLiteral("$schema"), QStringLiteral("default"), QStringLiteral("examples") };
    return words.contains(word);
}

Violation checkRule(const QString& word, const Rule& rule)
{
    static const QHash<QString, Violation (*)(const Rule&)> checks { { QStringLiteral("type"), checkType },
        { QStringLiteral("enum"), checkEnum }, { QStringLiteral("required"), checkRequired },
        { QStringLiteral("properties"), checkProperties },
        { QStringLiteral("additionalProperties"), checkAdditionalProperties },
        { QStringLiteral("items"), checkItems } };
    static const QSet<QString> limits { QStringLiteral("minItems"), QStringLiteral("maxItems"),
        QStringLiteral("minLength"), QStringLiteral("maxLength"), QStringLiteral("minimum"),
        QStringLiteral("maximum") };
    if (const auto known = checks.value(word))
        return known(rule);
    if (limits.contains(word))
        return checkLimit(rule, word);
    if (onlyDescribes(word))
        return std::nullopt;
    return rule.violated(QStringLiteral("has the rule “%1”, which is not checked here").arg(word));
}

Violation check(const QJsonValue& value, const QJsonObject& schema, const QString& path)
{
    for (auto word = schema.constBegin(); word != schema.constEnd(); ++word) {
        const QJsonValue wanted = *word;
        if (auto violation = checkRule(word.key(), { wanted, value, schema, path }))
            return violation;
    }
    return std::nullopt;
}

}

std::optional<QString> schemaViolation(const QJsonValue& value, const QJsonObject& schema)
{
    return check(value, schema, QStringLiteral("answer"));
}

}
