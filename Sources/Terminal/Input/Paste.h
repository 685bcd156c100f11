#pragma once

#include <string>
#include <string_view>

namespace corvane::terminal {

/// Prepares text for sending: line ends become Enter, and control characters except tabs are removed, so that it can
/// neither end its own bracket nor press keys. With brackets if the program enabled them.
std::string encodePaste(std::string_view text, bool bracketed);

/// True if pasting it would execute something at once, or if it contains control characters: the user should be asked.
bool isRiskyPaste(std::string_view text, bool bracketed);

}
