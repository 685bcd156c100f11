#pragma once

#include "Terminal/Graphics/Graphics.h"

#include <optional>

namespace corvane::terminal {

/// The character whose cells show parts of images: its colour names the image, the marks on it row and column.
constexpr char32_t placeholderCharacter = 0x10eeee;

/// The number that a combining mark stands for: its place in the protocol's list.
std::optional<int> placeholderNumber(char32_t mark);

/// Adds a view for each run of placeholders on the screen.
void addPlaceholderViews(Emulator& terminal, std::vector<PlacementView>& views);

}
