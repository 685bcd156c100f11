#pragma once

#include "Terminal/Graphics/Image.h"

#include <optional>
#include <span>

namespace corvane::terminal {

/// Decodes a PNG within limits of size and memory. Nothing if it is malformed or too large.
std::optional<Bitmap> decodePng(std::span<const uint8_t> bytes);

/// Inflates a zlib stream; nothing if it is malformed or larger than `most`.
std::optional<std::vector<uint8_t>> inflateAll(std::span<const uint8_t> bytes, size_t most);

}
