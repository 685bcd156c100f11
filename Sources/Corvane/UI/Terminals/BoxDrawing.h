#pragma once

#include <QPainter>

namespace corvane {

/// Is the character one that must meet its neighbours without a seam: lines, blocks, Braille, sextants, Powerline's
/// arrows? These are drawn here and not taken from a font.
bool isBoxDrawing(char32_t character);

/// Draws it in the painter's pen colour into a cell of that size at (0, 0).
void paintBoxDrawing(QPainter& painter, char32_t character, QSize cell);

}
