#include "Terminal/Host/Json.h"

#include "Terminal/Text/Utf8.h"

#include <cstdio>

namespace corvane::terminal {

Json& Json::number(double value, int decimals)
{
    separate();
    char digits[64];
    const int length = std::snprintf(digits, sizeof digits, "%.*f", decimals, value);
    m_text.append(digits, size_t(length));
    return *this;
}

void Json::quote(std::string_view text)
{
    m_text.push_back('"');
    for (const char32_t point : decodeUtf8(text)) {
        if (point == '"' || point == '\\') {
            m_text.push_back('\\');
            m_text.push_back(char(point));
        } else if (point < 0x20 || point == 0x7f) {
            m_text += "\\u" + toHex(point, 4);
        } else {
            appendUtf8(m_text, point);
        }
    }
    m_text.push_back('"');
}

}
