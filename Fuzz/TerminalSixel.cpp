// Fuzzes Sixel data: decoding in chunks gives the same image as decoding at once, within the size limits.

#include "Terminal/Graphics/Sixel.h"

#include <cstdint>
#include <cstdlib>

using namespace corvane::terminal;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    auto colors = SixelDecoder::vtColors();
    auto sameColors = colors;
    SixelDecoder whole(colors, {});
    SixelDecoder parts(sameColors, {});
    whole.feed(bytes);
    for (size_t at = 0; at < bytes.size(); at += 3)
        parts.feed(bytes.substr(at, 3));
    const auto one = whole.finish();
    const auto other = parts.finish();
    if (one.has_value() != other.has_value() || (one && one->pixels != other->pixels) || colors != sameColors)
        std::abort();
    if (one && (one->width > SixelDecoder::maxSide || one->bytes() != size_t(one->width) * size_t(one->height) * 4))
        std::abort();
    return 0;
}
