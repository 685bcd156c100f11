#include "Browser/BrowserSteps.h"

#include "Foundation/Literals.h"
#include "Foundation/Text.h"

#include <QHash>
#include <QJsonObject>

namespace corvane {

namespace {

using Kind = BrowserStep::Kind;

constexpr qsizetype mostSecrets = 200;

const QHash<Kind, QString>& kindWords()
{
    static const QHash<Kind, QString> words { { Kind::Open, u"open"_s }, { Kind::Click, u"click"_s },
        { Kind::Type, u"type"_s }, { Kind::Choose, u"choose"_s }, { Kind::Press, u"press"_s } };
    return words;
}

std::optional<Kind> kindOf(const QString& word)
{
    for (const auto& [kind, known] : kindWords().asKeyValueRange()) {
        if (known == word)
            return kind;
    }
    return std::nullopt;
}

QString quoted(const QString& text)
{
    return u"“%1”"_s.arg(singleLine(text));
}

std::optional<BrowserStep> stepFrom(const QJsonObject& object)
{
    const std::optional<Kind> kind = kindOf(object["kind"_L1].toString());
    if (!kind)
        return std::nullopt;
    return BrowserStep { *kind, object["selector"_L1].toString(), object["label"_L1].toString(),
        object["text"_L1].toString(), object["withheld"_L1].toBool() };
}

}

QString stepLine(const BrowserStep& step)
{
    const QString target = step.label.isEmpty() ? step.selector : quoted(step.label);
    switch (step.kind) {
    case Kind::Open:
        return u"Open "_s + step.text;
    case Kind::Click:
        return u"Click "_s + target;
    case Kind::Type:
        return step.isWithheld ? u"Type into %1 (the text is not kept)"_s.arg(target)
                               : u"Type %1 into %2"_s.arg(quoted(step.text), target);
    case Kind::Choose:
        return u"Choose %1 in %2"_s.arg(quoted(step.text), target);
    case Kind::Press:
        return u"Press %1 in %2"_s.arg(step.text, target);
    }
    return {};
}

QJsonArray stepsToJson(const QList<BrowserStep>& steps)
{
    QJsonArray array;
    for (const BrowserStep& step : steps) {
        QJsonObject object { { u"kind"_s, kindWords().value(step.kind) }, { u"line"_s, stepLine(step) } };
        if (!step.selector.isEmpty())
            object.insert(u"selector"_s, step.selector);
        if (!step.label.isEmpty())
            object.insert(u"label"_s, step.label);
        if (!step.text.isEmpty())
            object.insert(u"text"_s, step.text);
        if (step.isWithheld)
            object.insert(u"withheld"_s, true);
        array.append(object);
    }
    return array;
}

QList<BrowserStep> stepsFromJson(const QJsonArray& steps)
{
    QList<BrowserStep> read;
    for (const QJsonValue& step : steps) {
        if (const auto known = stepFrom(step.toObject()))
            read.append(*known);
    }
    return read;
}

void BrowserSteps::opened(const QString& url)
{
    m_steps = { { .kind = Kind::Open, .text = url } };
}

void BrowserSteps::reported(const QJsonObject& report)
{
    if (report["kind"_L1].toString() == "secret"_L1) {
        const qint64 field = report["field"_L1].toInteger();
        const QString value = report["text"_L1].toString();
        // While the user types, each report contains the previous one.
        const bool grows = field == m_secretField && !m_secrets.isEmpty() && value.startsWith(m_secrets.constLast());
        if (grows)
            m_secrets.removeLast();
        m_secretField = field;
        return addSecret(value);
    }
    if (const auto step = stepFrom(report); step && step->kind != Kind::Open)
        add(*step);
}

void BrowserSteps::addSecret(const QString& value)
{
    if (value.isEmpty() || m_secrets.contains(value))
        return;
    m_secrets.append(value);
    if (m_secrets.size() > mostSecrets)
        m_secrets.removeFirst();
}

void BrowserSteps::add(const BrowserStep& step)
{
    // Typing into a field is one step, with its final text.
    const bool isOfField = step.kind == Kind::Type || step.kind == Kind::Choose;
    const bool replaces = isOfField && !m_steps.isEmpty() && m_steps.constLast().kind == step.kind
        && m_steps.constLast().selector == step.selector;
    if (replaces)
        m_steps.removeLast();
    m_steps.append(step);
    // The first step is the address.
    if (m_steps.size() > kept)
        m_steps.remove(1);
}

}
