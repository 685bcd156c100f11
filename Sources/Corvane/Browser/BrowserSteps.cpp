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
        // While a person types, each report holds the last one.
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
    // A field counts once, with what stands in it in the end.
    const bool replaces = !m_steps.isEmpty() && m_steps.constLast().kind == step.kind && step.kind == Kind::Type
        && m_steps.constLast().selector == step.selector;
    if (replaces)
        m_steps.removeLast();
    m_steps.append(step);
    // The first one says where it began.
    if (m_steps.size() > kept)
        m_steps.remove(1);
}

QString stepScript()
{
    return uR"JS((() => {
    if (globalThis.corvaneSteps) return;
    globalThis.corvaneSteps = true;
    const plainTypes = new Set(['text', 'search', 'email', 'url', 'tel', 'number', 'date', 'datetime-local', 'month',
        'time', 'week', 'range', 'color']);
    const secretWords = /pass|pwd|secret|token|key|card|cvc|cvv|iban|ssn|otp|pin\b|one-time|credential/i;
    const numbers = new WeakMap();
    const everSecret = new WeakSet();
    let next = Math.floor(Math.random() * 1e9) * 1000;
    const send = report => globalThis.corvaneStep(JSON.stringify(report));
    const numberOf = field => numbers.get(field) ?? (numbers.set(field, ++next), next);
    const labelOf = e => (e.labels?.[0]?.innerText || e.getAttribute('aria-label') || e.placeholder ||
        (/^(submit|button|reset)$/.test(e.type) && e.value) || (e.matches('input,textarea,select') ? e.name : e.innerText) ||
        e.alt || e.title || e.tagName.toLowerCase()).trim().slice(0, 80);
    const isUnique = selector => document.querySelectorAll(selector).length === 1;
    const selectorOf = element => {
        const parts = [];
        for (let e = element; e && e.nodeType === 1; e = e.parentElement) {
            const name = e.tagName.toLowerCase();
            if (e.id && isUnique('#' + CSS.escape(e.id))) { parts.unshift('#' + CSS.escape(e.id)); break; }
            const field = e.getAttribute('name');
            if (field && isUnique(`${name}[name="${CSS.escape(field)}"]`)) {
                parts.unshift(`${name}[name="${CSS.escape(field)}"]`);
                break;
            }
            const place = [...(e.parentElement?.children ?? [e])].filter(other => other.tagName === e.tagName).indexOf(e);
            parts.unshift(`${name}:nth-of-type(${place + 1})`);
        }
        return parts.join(' > ');
    };
    const isSecret = field => {
        const isPlain = field instanceof HTMLTextAreaElement ||
            (field instanceof HTMLInputElement && plainTypes.has(field.type));
        if (!isPlain || secretWords.test([field.name, field.id, field.autocomplete, labelOf(field)].join(' ')))
            everSecret.add(field);
        return everSecret.has(field);
    };
    const textOf = field => String(field.value ?? field.innerText ?? '');
    const tellSecret = field => send({ kind: 'secret', field: numberOf(field), text: textOf(field).slice(0, 5000) });
    const step = (kind, element, more) => {
        if (window.top === window) send({ kind, selector: selectorOf(element), label: labelOf(element), ...more });
    };
    const on = (name, act) => addEventListener(name, event => {
        const element = event.composedPath()[0];
        if (event.isTrusted && element instanceof Element) act(element, event);
    }, true);
    let inEnter = false; // which may press a form's button, too
    on('click', (element, event) => {
        const target = element.closest('a,button,input,select,textarea,label,summary,[role],[onclick]') ?? element;
        const isField = target.matches('textarea,select,[contenteditable]') ||
            (target instanceof HTMLInputElement && (plainTypes.has(target.type) || target.type === 'password'));
        const follows = (target instanceof HTMLLabelElement && target.control) || (inEnter && event.detail === 0);
        if (!isField && !follows && !target.matches('body,html')) step('click', target);
    });
    on('input', field => {
        if (field.matches('select,[type=checkbox],[type=radio],[type=file]')) return;
        if (!isSecret(field)) return step('type', field, { text: textOf(field).slice(0, 2000) });
        tellSecret(field);
        step('type', field, { withheld: true });
    });
    on('change', field => {
        if (field instanceof HTMLSelectElement) step('choose', field, { text: field.value });
    });
    on('keydown', (field, event) => {
        inEnter = event.key === 'Enter' && field instanceof HTMLInputElement;
        if (inEnter) step('press', field, { text: 'Enter' });
    });
    on('keyup', () => { inEnter = false; });
    // A list would open in a window of its own, of which no frame is sent.
    let list = null;
    const openList = (element, event) => {
        const pressed = element.closest('select');
        if (!pressed || pressed.multiple || pressed.size > 1 || pressed.disabled) return;
        event.preventDefault();
        list = pressed;
        list.focus();
        const box = list.getBoundingClientRect();
        const choices = [...list.options].slice(0, 500).map(option => option.disabled ? null : option.label);
        send({ kind: 'list', x: box.x / innerWidth, y: box.bottom / innerHeight, choices, chosen: list.selectedIndex });
    };
    globalThis.corvaneChoose = index => {
        list.selectedIndex = index;
        for (const name of ['input', 'change']) list.dispatchEvent(new Event(name, { bubbles: true }));
        step('choose', list, { text: list.value });
    };
    on('mousedown', (element, event) => { if (event.button === 0) openList(element, event); });
    on('keydown', (element, event) => {
        if (event.key === ' ' || (event.altKey && event.key === 'ArrowDown')) openList(element, event);
    });
    const tellFilled = () => {
        for (const field of document.querySelectorAll('input[type=password]'))
            if (isSecret(field) && field.value) tellSecret(field);
    };
    addEventListener('DOMContentLoaded', tellFilled);
    addEventListener('load', tellFilled);
    if (document.readyState !== 'loading') tellFilled();
})();)JS"_s;
}

}
