#pragma once

#include "Terminal/Graphics/Graphics.h"

#include <optional>

namespace corvane::terminal {

/// Cells with this character show parts of images: the colour is the image, the combining marks are row and column.
constexpr char32_t placeholderCharacter = 0x10eeee;

/// The number of a combining mark: its index in the protocol's list.
std::optional<int> placeholderNumber(char32_t mark);

/// Adds a view for each run of placeholders on the screen.
void addPlaceholderViews(Emulator& terminal, std::vector<PlacementView>& views);

}
