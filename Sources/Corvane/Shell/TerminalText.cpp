#include "Shell/TerminalText.h"

#include "Foundation/Literals.h"

#include <unistd.h>

namespace corvane {

namespace {

const char* codeOf(TextColour colour)
{
    switch (colour) {
    case TextColour::Green:
        return "32";
    case TextColour::Yellow:
        return "33";
    case TextColour::Red:
        return "31";
    case TextColour::Bold:
        return "1";
    case TextColour::Faint:
        return "2";
    }
    Q_UNREACHABLE();
}

bool showsColours()
{
    static const bool shows
        = ::isatty(STDOUT_FILENO) == 1 && qEnvironmentVariableIsEmpty("NO_COLOR") && qgetenv("TERM") != "dumb";
    return shows;
}

}

QString coloured(const QString& words, TextColour colour)
{
    return showsColours() ? u"\x1b[%1m%2\x1b[0m"_s.arg(QLatin1StringView(codeOf(colour)), words) : words;
}

}
