#pragma once

#include <QString>

namespace corvane {

/// Lower case and without diacritics, for comparing what a person typed with what is stored.
QString folded(const QString& text);

/// One line for a list: every run of white space becomes one blank, and the ends are trimmed.
QString singleLine(const QString& text);

/// The first `count` characters as a person counts them; a surrogate pair or combined sequence is never cut.
QString firstCharacters(const QString& text, int count);

/// One line of a prompt: whatever would end a line and tabs become blanks, and the ends are trimmed.
QString promptLine(const QString& text);

/// The same, and a text of more than `limit` characters, or of absurdly long ones, is cut there and ends in "...".
QString promptLine(const QString& text, int limit);

}
