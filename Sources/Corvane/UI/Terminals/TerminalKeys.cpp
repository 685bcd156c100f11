#include "UI/Terminals/TerminalKeys.h"

#include <algorithm>

namespace corvane {

namespace {

using namespace terminal;
using std::string_view_literals::operator""sv;

struct Named {
    int qt;
    char32_t key;
    char32_t keypad = 0; ///< the same on the keypad
};

constexpr Named named[] = {
    { Qt::Key_Escape, keys::escape },
    { Qt::Key_Tab, keys::tab },
    { Qt::Key_Backtab, keys::tab },
    { Qt::Key_Backspace, keys::backspace },
    { Qt::Key_Return, keys::enter },
    { Qt::Key_Enter, keys::enter, keys::keypadEnter },
    { Qt::Key_Insert, keys::insert, keys::keypadLeft + 8 },
    { Qt::Key_Delete, keys::del, keys::keypadDelete },
    { Qt::Key_Home, keys::home, keys::keypadLeft + 6 },
    { Qt::Key_End, keys::end, keys::keypadLeft + 7 },
    { Qt::Key_PageUp, keys::pageUp, keys::keypadLeft + 4 },
    { Qt::Key_PageDown, keys::pageDown, keys::keypadLeft + 5 },
    { Qt::Key_Left, keys::left, keys::keypadLeft },
    { Qt::Key_Right, keys::right, keys::keypadLeft + 1 },
    { Qt::Key_Up, keys::up, keys::keypadLeft + 2 },
    { Qt::Key_Down, keys::down, keys::keypadLeft + 3 },
    { Qt::Key_Clear, keys::keypadBegin, keys::keypadBegin },
    { Qt::Key_CapsLock, keys::capsLock },
    { Qt::Key_ScrollLock, keys::capsLock + 1 },
    { Qt::Key_NumLock, keys::capsLock + 2 },
    { Qt::Key_Print, keys::capsLock + 3 },
    { Qt::Key_Pause, keys::capsLock + 4 },
    { Qt::Key_Menu, keys::menu },
    { Qt::Key_Shift, keys::leftShift },
    { Qt::Key_Control, keys::leftShift + 1 },
    { Qt::Key_Alt, keys::leftShift + 2 },
    { Qt::Key_Super_L, keys::leftShift + 3 },
    { Qt::Key_Super_R, keys::leftShift + 9 },
    { Qt::Key_Meta, keys::leftShift + 3 },
    { Qt::Key_AltGr, keys::leftShift + 12 },
};

constexpr char32_t keypadOperators[][2] = { { '.', keys::keypadDecimal }, { '/', keys::keypadDivide },
    { '*', keys::keypadMultiply }, { '-', keys::keypadSubtract }, { '+', keys::keypadAdd }, { '=', keys::keypadEqual },
    { ',', keys::keypadSeparator } };

/// A US keyboard by evdev key codes, from code 2: the characters without and with Shift.
constexpr std::u32string_view usPlain = U"1234567890-=\0\0qwertyuiop[]\0\0asdfghjkl;'`\0\\zxcvbnm,./"sv;
constexpr std::u32string_view usShifted = U"!@#$%^&*()_+\0\0QWERTYUIOP{}\0\0ASDFGHJKL:\"~\0|ZXCVBNM<>?"sv;

char32_t usKey(const QKeyEvent& event, std::u32string_view of)
{
    // X11 and Wayland key codes are evdev's plus 8.
    const auto place = event.nativeScanCode() - 8 - 2;
    return event.nativeScanCode() >= 10 && place < of.size() ? of[place] : 0;
}

char32_t firstOf(const QString& text)
{
    return text.isEmpty() ? 0 : text.toUcs4().front();
}

}

uint8_t terminalModifiers(Qt::KeyboardModifiers modifiers)
{
    uint8_t result = 0;
    result |= modifiers & Qt::ShiftModifier ? Shift : 0;
    result |= modifiers & Qt::AltModifier ? Alt : 0;
    result |= modifiers & Qt::ControlModifier ? Control : 0;
    result |= modifiers & Qt::MetaModifier ? Super : 0;
    return result;
}

std::optional<KeyEvent> terminalKey(const QKeyEvent& event, KeyAction action)
{
    KeyEvent result;
    result.modifiers = terminalModifiers(event.modifiers());
    result.action = action;
    const bool onKeypad = event.modifiers() & Qt::KeypadModifier;
    const auto found = std::ranges::find(named, event.key(), &Named::qt);
    if (found != std::end(named)) {
        result.key = onKeypad && found->keypad ? found->keypad : found->key;
        return result;
    }
    if (event.key() >= Qt::Key_F1 && event.key() <= Qt::Key_F35) {
        result.key = keys::f1 + char32_t(event.key() - Qt::Key_F1);
        return result;
    }
    const QString typed = event.text();
    const bool isText = !typed.isEmpty() && typed.front().unicode() >= 0x20 && typed.front().unicode() != 0x7f;
    result.text = isText ? typed.toStdString() : std::string();
    if (onKeypad && event.key() >= Qt::Key_0 && event.key() <= Qt::Key_9) {
        result.key = keys::keypad0 + char32_t(event.key() - Qt::Key_0);
        return result;
    }
    if (onKeypad) {
        for (const auto& [character, key] : keypadOperators) {
            if (char32_t(event.key()) == character) {
                result.key = key;
                return result;
            }
        }
    }
    // With Ctrl, the text is a control character; the letter comes from the key.
    const char32_t symbol = event.key() < 0x110000 ? char32_t(event.key()) : firstOf(typed);
    if (symbol == 0)
        return result.text.empty() ? std::nullopt : std::optional(result);
    const bool shifts = event.modifiers() & Qt::ShiftModifier;
    result.key = QChar::toLower(symbol);
    result.base = usKey(event, usPlain);
    if (shifts) {
        result.shifted = isText ? firstOf(typed) : symbol;
        if (result.key == symbol && symbol == usKey(event, usShifted))
            result.key = result.base;
    }
    if (result.base == result.key)
        result.base = 0;
    return result;
}

bool belongsToWindow(const QKeyEvent& event)
{
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    const int key = event.key();
    if (modifiers == (Qt::ControlModifier | Qt::ShiftModifier))
        return (key >= Qt::Key_A && key <= Qt::Key_Z) || key == Qt::Key_Plus || key == Qt::Key_Tab
            || key == Qt::Key_Backtab;
    if (modifiers == Qt::ControlModifier)
        return (key >= Qt::Key_0 && key <= Qt::Key_8) || key == Qt::Key_Comma || key == Qt::Key_Plus
            || key == Qt::Key_Equal || key == Qt::Key_Minus || key == Qt::Key_PageUp || key == Qt::Key_PageDown
            || key == Qt::Key_Tab;
    return modifiers == Qt::ShiftModifier && key == Qt::Key_F6;
}

}
