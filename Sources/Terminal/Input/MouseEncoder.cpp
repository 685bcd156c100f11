#include "Terminal/Input/MouseEncoder.h"

#include "Terminal/Text/Concat.h"
#include "Terminal/Text/Utf8.h"

namespace corvane::terminal {

namespace {

int codeOf(int button)
{
    if (button >= 8)
        return 128 + button - 8;
    if (button >= 4)
        return 64 + button - 4;
    return button == 0 ? 3 : button - 1;
}

}

bool tracksMouse(const Modes& modes)
{
    return modes.has(Mode::MouseX10) || modes.has(Mode::MouseButtons) || modes.has(Mode::MouseHighlight)
        || modes.has(Mode::MouseDrag) || modes.has(Mode::MouseAny);
}

bool MouseEncoder::isWanted(const MouseEvent& event, const Modes& modes) const
{
    if (modes.has(Mode::MouseX10))
        return event.action == MouseAction::Press && event.button >= 1 && event.button <= 3;
    const bool isWheel = event.button >= 4 && event.button <= 7;
    if (event.action == MouseAction::Move) {
        const bool moved = event.column != m_lastColumn || event.row != m_lastRow || modes.has(Mode::MousePixels);
        return moved && (modes.has(Mode::MouseAny) || (modes.has(Mode::MouseDrag) && (event.button || m_pressed)));
    }
    return tracksMouse(modes) && !(isWheel && event.action == MouseAction::Release);
}

std::string MouseEncoder::encode(const MouseEvent& event, const Modes& modes)
{
    const bool wanted = isWanted(event, modes);
    const int dragged = event.button ? event.button : m_pressed;
    m_lastColumn = event.column;
    m_lastRow = event.row;
    if (event.action != MouseAction::Move)
        m_pressed = event.action == MouseAction::Press && event.button <= 3 ? event.button : 0;
    if (!wanted)
        return {};
    const bool release = event.action == MouseAction::Release;
    const bool sgr = modes.has(Mode::MouseSgr) || modes.has(Mode::MousePixels);
    int code = codeOf(event.action == MouseAction::Move ? dragged : event.button);
    if (release && !sgr)
        code = 3;
    if (event.action == MouseAction::Move)
        code += 32;
    if (!modes.has(Mode::MouseX10)) {
        code += event.modifiers & Shift ? 4 : 0;
        code += event.modifiers & (Alt | Meta) ? 8 : 0;
        code += event.modifiers & Control ? 16 : 0;
    }
    const int column = event.column + 1;
    const int row = event.row + 1;
    if (modes.has(Mode::MousePixels))
        return concat("\x1b[<", code, ';', event.pixelX + 1, ';', event.pixelY + 1, release ? 'm' : 'M');
    if (sgr)
        return concat("\x1b[<", code, ';', column, ';', row, release ? 'm' : 'M');
    if (modes.has(Mode::MouseUrxvt))
        return concat("\x1b[", code + 32, ';', column, ';', row, 'M');
    const bool utf8 = modes.has(Mode::MouseUtf8);
    const int most = utf8 ? 2015 : 223;
    if (column > most || row > most)
        return {};
    std::string bytes = "\x1b[M";
    for (const int value : { code + 32, column + 32, row + 32 }) {
        if (utf8)
            appendUtf8(bytes, char32_t(value));
        else
            bytes.push_back(char(value));
    }
    return bytes;
}

}
