#pragma once

#include <QString>

/// A text that somebody else wrote, as a screen may show it: always as plain text, whatever it holds.
namespace corvane::BodyText {

/// Without what cannot be shown or would change what stands around it: control characters, halves of characters,
/// and marks that turn the direction of all that follows. Every kind of line end becomes a line feed. Text that
/// holds none of these is given back as it is.
QString printable(const QString& text);

struct Shown {
    QString text;
    qsizetype hidden = 0; ///< characters behind it that are not shown
};

/// At most about `length` characters of the printable text, never cut within one.
Shown shown(const QString& text, qsizetype length);

/// "Show more (12,345 characters)"; empty where nothing is hidden.
QString moreText(qsizetype hidden);

}
