#pragma once

#include <string>
#include <string_view>

namespace corvane::terminal {

/// The text as it is sent: line ends as Enter, without control characters other than tabs, so that it can neither
/// end its own bracket nor press keys. With brackets where the program asked for them.
std::string encodePaste(std::string_view text, bool bracketed);

/// Would pasting it run something at once, or did it hold control characters? Worth a question to the user.
bool isRiskyPaste(std::string_view text, bool bracketed);

}
