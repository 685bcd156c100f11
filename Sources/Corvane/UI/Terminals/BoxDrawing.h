#pragma once

#include <QPainter>

namespace corvane {

/// Whether the character must join its neighbours seamlessly: lines, blocks, Braille, sextants, Powerline arrows. These
/// are drawn here instead of with a font.
bool isBoxDrawing(char32_t character);

/// Draws it in the painter's pen colour into a cell of that size at (0, 0).
void paintBoxDrawing(QPainter& painter, char32_t character, QSize cell);

}
