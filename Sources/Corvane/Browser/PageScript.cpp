#include "Browser/PageScript.h"

#include "Foundation/Literals.h"

namespace corvane {

namespace {

const QString steps = uR"JS((() => {
    if (globalThis.corvaneSteps) return;
    globalThis.corvaneSteps = true;
    const typedTypes = new Set(['text', 'search', 'email', 'url', 'tel', 'number']);
    const pickedTypes = new Set(['date', 'datetime-local', 'month', 'week', 'time', 'color']);
    const plainTypes = new Set([...typedTypes, ...pickedTypes, 'range']);
    const secretWords = /pass|pwd|secret|token|key|card|cvc|cvv|iban|ssn|otp|pin\b|one-time|credential/i;
    const numbers = new WeakMap();
    const everSecret = new WeakSet();
    let next = Math.floor(Math.random() * 1e9) * 1000;
    const send = report => globalThis.corvaneStep(JSON.stringify(report));
    const numberOf = field => numbers.get(field) ?? (numbers.set(field, ++next), next);
    const labelOf = e => (e.labels?.[0]?.innerText || e.getAttribute('aria-label') || e.placeholder ||
        (e.matches('input') && /^(submit|button|reset)$/.test(e.type) && e.value) ||
        (e.matches('input,textarea,select') ? e.name : e.innerText) || e.alt || e.title ||
        e.tagName.toLowerCase()).trim().slice(0, 80);
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
    const withhold = field => {
        tellSecret(field);
        step('type', field, { withheld: true });
    };
    const on = (name, act) => addEventListener(name, event => {
        const element = event.composedPath()[0];
        if (event.isTrusted && element instanceof Element) act(element, event);
    }, true);
    let inEnter = false; // it may also submit a form
    on('click', (element, event) => {
        const target = element.closest('a,button,input,select,textarea,label,summary,[role],[onclick]') ?? element;
        const isField = target.matches('textarea,select,[contenteditable]') ||
            (target instanceof HTMLInputElement && (plainTypes.has(target.type) || target.type === 'password'));
        const follows = (target instanceof HTMLLabelElement && target.control) || (inEnter && event.detail === 0);
        if (!isField && !follows && !target.matches('body,html')) step('click', target);
    });
    on('input', field => {
        if (field.matches('select,[type=checkbox],[type=radio],[type=file]')) return;
        if (isSecret(field)) return withhold(field);
        const isTyped = !(field instanceof HTMLInputElement) || typedTypes.has(field.type);
        step(isTyped ? 'type' : 'choose', field, { text: textOf(field).slice(0, 2000) });
    });
    on('change', field => {
        if (field instanceof HTMLSelectElement) step('choose', field, { text: field.value });
    });
    on('keydown', (field, event) => {
        inEnter = event.key === 'Enter' && field instanceof HTMLInputElement;
        if (inEnter) step('press', field, { text: 'Enter' });
    });
    on('keyup', () => { inEnter = false; });
    const tellFilled = () => {
        for (const field of document.querySelectorAll('input[type=password]'))
            if (isSecret(field) && field.value) tellSecret(field);
    };
    addEventListener('DOMContentLoaded', tellFilled);
    addEventListener('load', tellFilled);
    if (document.readyState !== 'loading') tellFilled();
)JS"_s;

const QString choices = uR"JS(
    // The browser's lists, pickers and menu would open in windows of their own, which no frame shows and which would
    // take the input.
    let asking = null;
    const ask = (field, event, question) => {
        event.preventDefault();
        asking = field;
        if (document.activeElement !== field) field.focus();
        const box = field.getBoundingClientRect();
        send({ x: box.x / innerWidth, y: box.bottom / innerHeight, ...question });
    };
    const openList = (element, event) => {
        const list = element.closest('select');
        if (!list || list.multiple || list.size > 1 || list.disabled) return;
        const choices = [...list.options].slice(0, 500).map(option => option.disabled ? null : option.label);
        ask(list, event, { kind: 'list', choices, chosen: list.selectedIndex });
    };
    const openPicker = (field, event) => {
        if (!(field instanceof HTMLInputElement) || !pickedTypes.has(field.type) || field.disabled || field.readOnly) return;
        const { type, value, min, max, required } = field;
        ask(field, event, { kind: 'field', label: labelOf(field), type, value, min, max, required });
    };
    globalThis.corvaneChoose = value => {
        asking[asking instanceof HTMLSelectElement ? 'selectedIndex' : 'value'] = value;
        for (const name of ['input', 'change']) asking.dispatchEvent(new Event(name, { bubbles: true }));
        if (asking instanceof HTMLInputElement && isSecret(asking)) withhold(asking);
        else step('choose', asking, { text: asking.value });
    };
    on('mousedown', (element, event) => { if (event.button === 0) openList(element, event); });
    on('keydown', (element, event) => {
        if (event.key !== ' ' && !(event.altKey && event.key === 'ArrowDown')) return;
        openList(element, event);
        openPicker(element, event);
    });
    addEventListener('click', event => {
        if (event.isTrusted || navigator.userActivation.isActive) openPicker(event.composedPath()[0], event);
    }, true);
    addEventListener('contextmenu', event => event.preventDefault()); // after the page's own handlers
)JS"_s;

/// Frames do not include the pointer.
const QString cursor = uR"JS(
    let shape = null;
    let over = null;
    const isText = (x, y) => {
        const range = document.caretRangeFromPoint(x, y);
        if (range?.startContainer.nodeType !== Node.TEXT_NODE) return false;
        const { startContainer: text, startOffset: at } = range;
        range.setStart(text, Math.max(0, at - 1));
        range.setEnd(text, Math.min(text.length, at + 1));
        return [...range.getClientRects()].some(box => x >= box.left && x <= box.right && y >= box.top && y <= box.bottom);
    };
    const shapeOf = (element, x, y) => {
        const style = getComputedStyle(element);
        const box = element.getBoundingClientRect();
        const inCorner = x > box.right - 16 && y > box.bottom - 16;
        if (inCorner && style.resize !== 'none' && style.overflow !== 'visible') return 'nwse-resize';
        if (style.cursor !== 'auto') return style.cursor;
        return element.isContentEditable || (style.userSelect !== 'none' && isText(x, y)) ? 'text' : 'default';
    };
    const tellShape = () => {
        const { element, x, y } = over;
        over = null;
        const now = element.isConnected ? shapeOf(element, x, y) : shape;
        if (now !== shape) send({ kind: 'cursor', shape: shape = now });
    };
    // Once per frame, after the page's handlers.
    for (const name of ['mousemove', 'mousedown', 'mouseup']) on(name, (element, event) => {
        if (!over) requestAnimationFrame(tellShape);
        over = { element, x: event.clientX, y: event.clientY };
    });
    // Another document may change the shape in the meantime.
    on('mouseover', element => { if (element instanceof HTMLIFrameElement) shape = null; });
    on('mouseout', (element, event) => { if (!event.relatedTarget) shape = null; });
)JS"_s;

}

QString pageScript()
{
    return steps + choices + cursor + u"})();"_s;
}

}
