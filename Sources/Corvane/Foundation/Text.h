#pragma once

#include <QString>

namespace corvane {

/// Lower case and without diacritics, for comparing typed text with stored text.
QString folded(const QString& text);

/// One line for a list: runs of white space become one space, and the ends are trimmed.
QString singleLine(const QString& text);

/// The first `count` user-perceived characters; never cuts a surrogate pair or combined sequence.
QString firstCharacters(const QString& text, int count);

/// One line of a prompt: line breaks and tabs become spaces, and the ends are trimmed.
QString promptLine(const QString& text);

/// The same; a text of more than `limit` characters, or of absurdly long ones, is truncated and ends in "...".
QString promptLine(const QString& text, int limit);

}
