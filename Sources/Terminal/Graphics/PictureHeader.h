#pragma once

#include <cstdint>
#include <optional>
#include <span>

namespace corvane::terminal {

struct PictureSize {
    int width = 0;
    int height = 0;
};

/// The size that a JPEG, GIF or WebP picture claims, turned as it is to be shown; none for anything else. Nothing is
/// decoded.
std::optional<PictureSize> pictureSize(std::span<const uint8_t> file);

}
