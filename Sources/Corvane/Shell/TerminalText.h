#pragma once

#include <QString>

namespace corvane {

enum class TextColour { Green, Yellow, Red, Bold, Faint };

/// The words in a colour, where standard output is a terminal that takes colours and NO_COLOR is not set.
QString coloured(const QString& words, TextColour colour);

/// What somebody else wrote, without the characters that would steer a terminal or turn its line around; line ends
/// stay.
QString printable(const QString& text);

}
