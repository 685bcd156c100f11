#pragma once

#include "Terminal/Grid/Style.h"
#include "Terminal/Parser/Sequence.h"

#include <string>

namespace corvane::terminal {

class Emulator;
struct Rect;

/// Applies the SGR parameters from index `first` on; no parameters mean 0.
void applySgr(Style& pen, const Params& params, int first = 0);

/// The parameters that set the style, such as "0;1;38:5:99".
std::string sgrText(const Style& style);

/// The area of DECCARA and DECRARA: a text stream between two corners, unless DECSACE chose rectangles.
Rect streamOf(const Emulator& terminal, const Params& params);

/// The rectangle of four parameters starting at `first`, clipped to the page; empty if they are invalid.
Rect rectangleOf(const Emulator& terminal, const Params& params, int first);

}
