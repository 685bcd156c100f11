#include "Terminals/TerminalFontSize.h"

#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"

#include <algorithm>

namespace corvane {

namespace {

const QString fontSizeKey = u"Corvane.terminal.fontSize"_s;
constexpr int usual = 14;
constexpr int smallest = 8;
constexpr int largest = 40;

}

TerminalFontSize::TerminalFontSize(UserDefaults& defaults, QObject* parent)
    : QObject(parent)
    , m_defaults(defaults)
    , m_pixels(std::clamp(int(defaults.integer(fontSizeKey).value_or(usual)), smallest, largest))
{
}

void TerminalFontSize::enlarge(int steps)
{
    set(m_pixels + steps);
}

void TerminalFontSize::reset()
{
    set(usual);
}

void TerminalFontSize::set(int pixels)
{
    pixels = std::clamp(pixels, smallest, largest);
    if (std::exchange(m_pixels, pixels) == pixels)
        return;
    m_defaults.setInteger(fontSizeKey, pixels);
    Q_EMIT changed();
}

}
