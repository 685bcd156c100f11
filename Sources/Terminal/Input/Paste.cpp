#include "Terminal/Input/Paste.h"

#include "Terminal/Text/Utf8.h"

namespace corvane::terminal {

namespace {

bool isControl(char32_t point)
{
    return (point < 0x20 && point != '\t' && point != '\n' && point != '\r') || (point >= 0x7f && point < 0xa0);
}

}

std::string encodePaste(std::string_view text, bool bracketed)
{
    std::string bytes = bracketed ? "\x1b[200~" : "";
    char32_t last = 0;
    for (const char32_t point : decodeUtf8(text)) {
        const bool secondOfLineEnd = point == '\n' && last == '\r';
        last = point;
        if (isControl(point) || secondOfLineEnd)
            continue;
        appendUtf8(bytes, point == '\n' ? U'\r' : point);
    }
    return bracketed ? bytes + "\x1b[201~" : bytes;
}

bool isRiskyPaste(std::string_view text, bool bracketed)
{
    for (const char32_t point : decodeUtf8(text)) {
        if (isControl(point) || (!bracketed && (point == '\n' || point == '\r')))
            return true;
    }
    return false;
}

}
