#pragma once

#include "Terminal/Core/Terminal.h"
#include "Terminal/Host/Json.h"

namespace corvane::terminal {

enum class DumpPart : uint8_t { Screen, All };

/// The screen as a JSON object; with All also the history.
void dumpJson(Terminal& terminal, DumpPart part, Json& json);
/// The history and the screen as lines of text.
std::string dumpText(Terminal& terminal);
/// The same, with styles as escape sequences.
std::string dumpAnsi(Terminal& terminal);

}
