#pragma once

#include "Terminal/Grid/Style.h"
#include "Terminal/Parser/Sequence.h"

#include <string>

namespace corvane::terminal {

class Emulator;
struct Rect;

/// Applies SGR parameters from the one at `first` on; none is as 0.
void applySgr(Style& pen, const Params& params, int first = 0);

/// The parameters that make the style from any other, as "0;1;38:5:99".
std::string sgrText(const Style& style);

/// The area between two places of the stream of text, as DECCARA takes it unless DECSACE chose rectangles.
Rect streamOf(const Emulator& terminal, const Params& params);

/// The area that four parameters from `first` on name, cut to the page; empty if they make no sense.
Rect rectangleOf(const Emulator& terminal, const Params& params, int first);

}
