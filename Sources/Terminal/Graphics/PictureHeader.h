#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace corvane::terminal {

struct PictureSize {
    int width = 0;
    int height = 0;
};

/// The size in the header of a JPEG, GIF or WebP picture, with its orientation applied; nothing for other data. Nothing
/// is decoded.
std::optional<PictureSize> pictureSize(std::span<const uint8_t> file);

}
