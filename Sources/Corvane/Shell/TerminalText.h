#pragma once

#include <QString>

namespace corvane {

enum class TextColour { Green, Yellow, Red, Bold, Faint };

/// Coloured if standard output is a terminal with colours and NO_COLOR is not set.
QString coloured(const QString& words, TextColour colour);

}
