#include "Terminal/Text/Utf8.h"

namespace corvane::terminal {

std::u32string decodeUtf8(std::string_view text)
{
    std::u32string points;
    points.reserve(text.size());
    Utf8Decoder decoder;
    for (size_t at = 0; at < text.size();) {
        const auto result = decoder.take(uint8_t(text[at]));
        at += result != Utf8Decoder::Result::MalformedBefore;
        if (result == Utf8Decoder::Result::Character)
            points.push_back(decoder.character());
        else if (result != Utf8Decoder::Result::More)
            points.push_back(replacementCharacter);
    }
    if (decoder.isMidway())
        points.push_back(replacementCharacter);
    return points;
}

std::string encodeUtf8(std::u32string_view text)
{
    std::string bytes;
    for (const char32_t point : text)
        appendUtf8(bytes, point);
    return bytes;
}

}
