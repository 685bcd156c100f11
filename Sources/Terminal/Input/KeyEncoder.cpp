#include "Terminal/Input/KeyEncoder.h"

#include "Terminal/Text/Concat.h"
#include "Terminal/Text/Utf8.h"

namespace corvane::terminal {

namespace {

/// The form of a functional key as a control sequence: CSI number final.
struct Form {
    int number = 0;
    char final = 0;
};

Form formOf(char32_t key)
{
    constexpr char arrows[] = { 'D', 'C', 'A', 'B' };
    constexpr int functionNumbers[] = { 15, 17, 18, 19, 20, 21, 23, 24 }; // from F5 on
    // As VT220 keyboards number them.
    constexpr int moreFunctions[] = { 25, 26, 28, 29, 31, 32, 33, 34 };
    if (key >= keys::left && key <= keys::down)
        return { 1, arrows[key - keys::left] };
    switch (key) {
    case keys::insert:
        return { 2, '~' };
    case keys::del:
        return { 3, '~' };
    case keys::pageUp:
        return { 5, '~' };
    case keys::pageDown:
        return { 6, '~' };
    case keys::home:
        return { 1, 'H' };
    case keys::end:
        return { 1, 'F' };
    case keys::menu:
        return { 29, '~' };
    default:
        break;
    }
    if (key >= keys::f1 && key < keys::f1 + 4)
        return { 1, "PQRS"[key - keys::f1] };
    if (key >= keys::f1 && key < keys::f13)
        return { functionNumbers[key - keys::f1 - 4], '~' };
    if (key >= keys::f13 && key < keys::f13 + 8)
        return { moreFunctions[key - keys::f13], '~' };
    return {};
}

/// The main key for a keypad key, if the two are not distinguished.
char32_t withoutKeypad(char32_t key)
{
    constexpr char32_t characters[] = { '.', '/', '*', '-', '+', keys::enter, '=', ',', keys::left, keys::right,
        keys::up, keys::down, keys::pageUp, keys::pageDown, keys::home, keys::end, keys::insert, keys::del };
    if (key >= keys::keypad0 && key < keys::keypadDecimal)
        return U'0' + (key - keys::keypad0);
    if (key >= keys::keypadDecimal && key <= keys::keypadDelete)
        return characters[key - keys::keypadDecimal];
    return key;
}

/// The final byte of a keypad key after SS3 in application mode; 0 for other keys.
char applicationKeypadFinal(char32_t key)
{
    if (key >= keys::keypad0 && key < keys::keypadDecimal)
        return char('p' + (key - keys::keypad0));
    constexpr std::string_view finals = "nojmkMXl";
    if (key >= keys::keypadDecimal && key <= keys::keypadSeparator)
        return finals[key - keys::keypadDecimal];
    return 0;
}

/// The traditional control character of Ctrl with a key; -1 if there is none.
int controlOf(char32_t key)
{
    if ((key >= 'a' && key <= 'z') || (key >= '@' && key <= '_'))
        return int(key & 0x1f);
    switch (key) {
    case ' ':
    case '2':
        return 0;
    case '3':
        return 27;
    case '4':
        return 28;
    case '5':
        return 29;
    case '6':
    case '~':
        return 30;
    case '7':
    case '/':
        return 31;
    case '8':
    case '?':
        return 127;
    default:
        return -1;
    }
}

class Encoder {
public:
    Encoder(const KeyEvent& event, const KeyContext& context)
        : m_event(event)
        , m_context(context)
        , m_modifiers(event.modifiers & ~(CapsLock | NumLock))
    {
    }

    std::string encode() const
    {
        if (m_context.modes.has(Mode::KeyboardLocked))
            return {};
        if (m_context.kittyFlags)
            return kitty();
        if (m_event.action == KeyAction::Release)
            return {};
        return m_context.modes.has(Mode::Ansi) ? legacy() : vt52();
    }

private:
    bool has(KittyFlag flag) const { return m_context.kittyFlags & flag; }
    std::string csi() const { return m_context.eightBit ? "\x9b" : "\x1b["; }
    std::string ss3() const { return m_context.eightBit ? "\x8f" : "\x1bO"; }

    std::string kitty() const
    {
        const char32_t key = m_event.key;
        const bool release = m_event.action == KeyAction::Release;
        if (release && !has(EventTypes))
            return {};
        const bool plain = m_modifiers == 0 || m_modifiers == Shift;
        if (!has(AllAsEscapes)) {
            if (key >= keys::leftShift && key <= keys::isoLevel5Shift)
                return {};
            const bool control = key == keys::enter || key == keys::tab || key == keys::backspace;
            if (control && release)
                return {};
            if (control && m_modifiers == 0)
                return legacy();
            if (!control && key != keys::escape && plain && !m_event.text.empty())
                return release ? std::string() : m_event.text;
            if (!has(Disambiguate) && m_event.action == KeyAction::Press)
                return legacy();
        }
        const Form form = kittyForm(key);
        std::string number = concat(form.number ? uint32_t(form.number) : uint32_t(key));
        if (form.final == 'u' && has(AlternateKeys)) {
            const bool shifted = m_modifiers & Shift && m_event.shifted && m_event.shifted != key;
            if (shifted)
                number += concat(':', uint32_t(m_event.shifted));
            if (m_event.base && m_event.base != key)
                number += concat(shifted ? ":" : "::", uint32_t(m_event.base));
        }
        std::string modifiers;
        const bool tellsAction = has(EventTypes) && m_event.action != KeyAction::Press;
        if (m_event.modifiers || tellsAction)
            modifiers = concat(1 + m_event.modifiers);
        if (tellsAction)
            modifiers += concat(':', int(m_event.action));
        std::string text;
        if (has(AssociatedText) && has(AllAsEscapes) && !release) {
            for (const char32_t point : decodeUtf8(m_event.text))
                text += point < 0x20 || point == 0x7f ? "" : concat(text.empty() ? "" : ":", uint32_t(point));
        }
        if (modifiers.empty() && text.empty() && form.number == 1 && form.final != 'u')
            number.clear();
        else if (!text.empty())
            number += concat(';', modifiers, ';', text);
        else if (!modifiers.empty())
            number += ';' + modifiers;
        return concat(csi(), number, form.final);
    }

    static Form kittyForm(char32_t key)
    {
        // The usual final is that of a cursor position report.
        if (key == keys::f1 + 2)
            return { 13, '~' };
        const Form form = key < keys::f13 && key != keys::menu ? formOf(key) : Form();
        return form.final ? form : Form { 0, 'u' };
    }

    std::string legacy() const
    {
        const char keypad = applicationKeypadFinal(m_event.key);
        if (keypad && m_context.modes.has(Mode::ApplicationKeypad) && m_modifiers == 0
            && !(m_event.modifiers & NumLock && m_context.modes.has(Mode::NumLockModifiers)))
            return concat(ss3(), keypad);
        const char32_t key = withoutKeypad(m_event.key);
        if (key == keys::keypadBegin)
            return functional({ 1, 'E' });
        const Form form = formOf(key);
        if (form.final)
            return functional(form);
        switch (key) {
        case keys::enter:
            return other(key, m_context.modes.has(Mode::NewLine) ? "\r\n" : "\r");
        case keys::escape:
            return other(key, "\x1b");
        case keys::tab:
            if ((m_modifiers & Shift) && m_context.modifyOtherKeys < 2)
                return withAlt(csi() + 'Z');
            return other(key, "\t");
        case keys::backspace: {
            const bool sendsBackspace = m_context.modes.has(Mode::BackspaceKey) != bool(m_modifiers & Control);
            return other(key, sendsBackspace ? "\b" : "\x7f");
        }
        default:
            return key < keys::insert ? textKey(key) : std::string();
        }
    }

    std::string functional(Form form) const
    {
        if (m_modifiers)
            return concat(csi(), form.number, ';', 1 + m_modifiers, form.final);
        const bool isFunction = form.final >= 'P' && form.final <= 'S';
        if (form.final == '~')
            return form.number == 3 && m_context.modes.has(Mode::DeleteSendsDel) ? "\x7f"
                                                                                 : concat(csi(), form.number, '~');
        return concat(isFunction || m_context.modes.has(Mode::CursorKeys) ? ss3() : csi(), form.final);
    }

    std::string textKey(char32_t key) const
    {
        std::string text = m_event.text;
        if (text.empty())
            appendUtf8(text, m_modifiers & Shift && m_event.shifted ? m_event.shifted : key);
        if (!(m_modifiers & ~Shift))
            return text;
        if (m_modifiers & Control) {
            const char32_t typed = decodeUtf8(text)[0];
            const int control = controlOf(typed) >= 0 ? controlOf(typed) : controlOf(key);
            const bool mustEscape = m_context.modifyOtherKeys >= 2 || (m_context.modifyOtherKeys == 1 && control < 0);
            if (mustEscape)
                return modified(key);
            if (control >= 0)
                return withAlt(std::string(1, char(control)));
            return withAlt(text);
        }
        return other(key, text);
    }

    /// The bytes themselves, or xterm's modifyOtherKeys sequence if that applies.
    std::string other(char32_t key, const std::string& bytes) const
    {
        const bool isText = key != keys::enter && key != keys::escape && key != keys::tab && key != keys::backspace;
        if (m_modifiers && m_context.modifyOtherKeys >= 2)
            return modified(key);
        if (m_context.modifyOtherKeys == 1 && !isText && (m_modifiers & (Control | Shift)) && key != keys::backspace)
            return modified(key);
        return withAlt(bytes);
    }

    std::string modified(char32_t key) const
    {
        const char32_t typed = m_modifiers & Shift && m_event.shifted ? m_event.shifted : key;
        return concat(csi(), "27;", 1 + m_modifiers, ';', uint32_t(typed), '~');
    }

    std::string withAlt(std::string bytes) const
    {
        if (!(m_modifiers & (Alt | Meta)))
            return bytes;
        const Modes& modes = m_context.modes;
        if (!modes.has(Mode::MetaSendsEscape) && modes.has(Mode::EightBitMeta) && bytes.size() == 1) {
            std::string shifted;
            appendUtf8(shifted, uint8_t(bytes[0]) | 0x80);
            return shifted;
        }
        return '\x1b' + bytes;
    }

    std::string vt52() const
    {
        const char keypad = applicationKeypadFinal(m_event.key);
        if (keypad && m_context.modes.has(Mode::ApplicationKeypad))
            return concat("\x1b?", keypad);
        const Form form = formOf(withoutKeypad(m_event.key));
        if (form.number == 1)
            return concat('\x1b', form.final);
        return form.final ? std::string() : legacy();
    }

    const KeyEvent& m_event;
    const KeyContext& m_context;
    const int m_modifiers; // without Caps Lock and Num Lock
};

}

std::string encodeKey(const KeyEvent& event, const KeyContext& context)
{
    return Encoder(event, context).encode();
}

}
