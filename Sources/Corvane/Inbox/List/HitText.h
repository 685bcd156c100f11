#pragma once

#include <QString>
#include <optional>

namespace corvane {

// Lines of a list out of texts of any length that others wrote.

/// The printable start of the text in one line.
QString lineOf(const QString& text);

/// The text in one line from shortly before the words on, behind an ellipsis; nothing where they stand at its start, or
/// not at all.
std::optional<QString> cutBefore(const QString& text, const QString& words);

/// Styled text, escaped, with the words in bold.
QString highlighted(const QString& line, const QString& words);

}
