#pragma once

#include <QString>
#include <optional>

namespace corvane {

// Formats texts of any length from untrusted sources as single lines for a list.

/// The start of the text as a single printable line.
QString lineOf(const QString& text);

/// The text in a single line, starting with an ellipsis shortly before the first match of `words`. Null if they do not
/// occur, or so early that nothing needs to be cut.
std::optional<QString> cutBefore(const QString& text, const QString& words);

/// Escaped rich text with the matches of `words` in bold.
QString highlighted(const QString& line, const QString& words);

}
