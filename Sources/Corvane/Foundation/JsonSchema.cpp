#include "Foundation/JsonSchema.h"

#include "Foundation/Literals.h"

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
        return u"null"_s;
    case QJsonValue::Bool:
        return u"boolean"_s;
    case QJsonValue::Double:
        return u"number"_s;
    case QJsonValue::String:
        return u"string"_s;
    case QJsonValue::Array:
        return u"array"_s;
    case QJsonValue::Object:
        return u"object"_s;
    case QJsonValue::Undefined:
        break;
    }
    return u"nothing"_s;
}

bool isOfType(const QJsonValue& value, const QString& type)
{
    if (type == "integer"_L1)
        return value.isDouble() && std::trunc(value.toDouble()) == value.toDouble();
    return nameOf(value) == type;
}

QJsonArray asList(const QJsonValue& value)
{
    return value.isArray() ? value.toArray() : QJsonArray { value };
}

/// A keyword of a schema: its argument, and the value to validate.
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
    return rule.violated(u"is of the type "_s + nameOf(rule.value));
}

Violation checkEnum(const Rule& rule)
{
    if (rule.wanted.toArray().contains(rule.value))
        return std::nullopt;
    return rule.violated(u"is none of the values that it may have"_s);
}

Violation checkRequired(const Rule& rule)
{
    if (!rule.value.isObject())
        return std::nullopt;
    for (const QJsonValue& key : rule.wanted.toArray()) {
        if (!rule.value.toObject().contains(key.toString()))
            return rule.violated(u"has no “%1”"_s.arg(key.toString()));
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
        return rule.violated(u"has a rule for further properties that is not checked here"_s);
    if (rule.wanted.toBool())
        return std::nullopt;
    const QJsonObject known = rule.schema["properties"_L1].toObject();
    for (const QString& key : rule.value.toObject().keys()) {
        if (!known.contains(key))
            return rule.violated(u"has “%1”, which nobody asked for"_s.arg(key));
    }
    return std::nullopt;
}

Violation checkItems(const Rule& rule)
{
    const QJsonArray items = rule.value.toArray();
    for (qsizetype i = 0; i < items.size(); ++i) {
        if (auto violation = check(items[i], rule.wanted.toObject(), u"%1[%2]"_s.arg(rule.path).arg(i)))
            return violation;
    }
    return std::nullopt;
}

/// The quantity that a limit applies to; nothing if the value has another type.
std::optional<double> measure(const QJsonValue& value, const QString& word)
{
    if (word.endsWith("Items"_L1))
        return value.isArray() ? std::optional(double(value.toArray().size())) : std::nullopt;
    if (word.endsWith("Length"_L1))
        return value.isString() ? std::optional(double(value.toString().toUcs4().size())) : std::nullopt;
    return value.isDouble() ? std::optional(value.toDouble()) : std::nullopt;
}

Violation checkLimit(const Rule& rule, const QString& word)
{
    const auto measured = measure(rule.value, word);
    const double limit = rule.wanted.toDouble();
    if (measured && (word.startsWith("min"_L1) ? *measured < limit : *measured > limit))
        return rule.violated(u"breaks its %1 of %2"_s.arg(word).arg(limit));
    return std::nullopt;
}

bool onlyDescribes(const QString& word)
{
    static const QSet<QString> words { u"title"_s, u"description"_s, u"$schema"_s, u"default"_s, u"examples"_s };
    return words.contains(word);
}

Violation checkRule(const QString& word, const Rule& rule)
{
    static const QHash<QString, Violation (*)(const Rule&)> checks { { u"type"_s, checkType }, { u"enum"_s, checkEnum },
        { u"required"_s, checkRequired }, { u"properties"_s, checkProperties },
        { u"additionalProperties"_s, checkAdditionalProperties }, { u"items"_s, checkItems } };
    static const QSet<QString> limits { u"minItems"_s, u"maxItems"_s, u"minLength"_s, u"maxLength"_s, u"minimum"_s,
        u"maximum"_s };
    if (const auto known = checks.value(word))
        return known(rule);
    if (limits.contains(word))
        return checkLimit(rule, word);
    if (onlyDescribes(word))
        return std::nullopt;
    return rule.violated(u"has the rule “%1”, which is not checked here"_s.arg(word));
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
    return check(value, schema, u"answer"_s);
}

}
