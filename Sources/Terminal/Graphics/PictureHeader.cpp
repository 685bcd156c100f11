#include "Terminal/Graphics/PictureHeader.h"

#include <algorithm>
#include <string_view>

namespace corvane::terminal {

namespace {

using Bytes = std::span<const uint8_t>;

/// A number of up to 4 bytes; 0 past the end.
uint32_t number(Bytes bytes, size_t at, size_t count, bool bigEndian = false)
{
    uint32_t value = 0;
    if (at > bytes.size() || bytes.size() - at < count)
        return 0;
    for (size_t i = 0; i < count; ++i)
        value = value << 8 | bytes[at + (bigEndian ? i : count - 1 - i)];
    return value;
}

bool has(Bytes bytes, size_t at, std::string_view text)
{
    return at <= bytes.size() && bytes.size() - at >= text.size()
        && std::ranges::equal(
            text, bytes.subspan(at, text.size()), [](char one, uint8_t other) { return uint8_t(one) == other; });
}

/// True if the EXIF orientation swaps width and height.
bool isTurned(Bytes exif)
{
    constexpr size_t head = 6;
    constexpr size_t entrySize = 12;
    constexpr uint32_t orientation = 0x0112;
    if (!has(exif, 0, std::string_view("Exif\0\0", head)))
        return false;
    const Bytes tiff = exif.subspan(head);
    const bool bigEndian = has(tiff, 0, "MM");
    const size_t directory = number(tiff, 4, 4, bigEndian);
    const uint32_t entries = number(tiff, directory, 2, bigEndian);
    for (size_t i = 0; i < entries; ++i) {
        const size_t entry = directory + 2 + i * entrySize;
        if (entry + entrySize > tiff.size())
            return false;
        if (number(tiff, entry, 2, bigEndian) == orientation)
            return number(tiff, entry + 8, 2, bigEndian) >= 5;
    }
    return false;
}

std::optional<PictureSize> jpegSize(Bytes file)
{
    bool turned = false;
    for (size_t at = 2; at + 9 <= file.size() && file[at] == 0xff;) {
        const uint8_t marker = file[at + 1];
        if (marker == 0xff) {
            ++at;
            continue;
        }
        const bool isFrame = marker >= 0xc0 && marker <= 0xcf && marker != 0xc4 && marker != 0xc8 && marker != 0xcc;
        const int height = int(number(file, at + 5, 2, true));
        const int width = int(number(file, at + 7, 2, true));
        if (isFrame)
            return turned ? PictureSize { height, width } : PictureSize { width, height };
        const size_t length = number(file, at + 2, 2, true);
        if (length < 2)
            return {};
        constexpr uint8_t notes = 0xe1;
        const Bytes rest = file.subspan(at + 4);
        if (marker == notes)
            turned |= isTurned(rest.first(std::min(rest.size(), length - 2)));
        at += 2 + length;
    }
    return {};
}

std::optional<PictureSize> webpSize(Bytes file)
{
    constexpr int mask = 0x3fff;
    if (has(file, 12, "VP8 "))
        return PictureSize { int(number(file, 26, 2)) & mask, int(number(file, 28, 2)) & mask };
    if (has(file, 12, "VP8X"))
        return PictureSize { int(number(file, 24, 3)) + 1, int(number(file, 27, 3)) + 1 };
    if (!has(file, 12, "VP8L"))
        return {};
    const uint32_t bits = number(file, 21, 4);
    return PictureSize { int(bits & mask) + 1, int(bits >> 14 & mask) + 1 };
}

}

std::optional<PictureSize> pictureSize(Bytes file)
{
    if (has(file, 0, "\xff\xd8\xff"))
        return jpegSize(file);
    if (has(file, 0, "GIF8"))
        return PictureSize { int(number(file, 6, 2)), int(number(file, 8, 2)) };
    return has(file, 0, "RIFF") && has(file, 8, "WEBP") ? webpSize(file) : std::nullopt;
}

}
