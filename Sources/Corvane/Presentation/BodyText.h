#pragma once

#include <QString>

/// Text that someone else wrote, prepared for display: always as plain text.
namespace corvane::BodyText {

/// Removes what cannot be displayed or would affect the surrounding text: control characters, lone surrogates, and
/// bidirectional controls. All line endings become line feeds. Text without any of these is returned unchanged.
QString printable(const QString& text);

struct Shown {
    QString text;
    qsizetype hidden = 0; ///< characters after it that are not shown
};

/// About `length` characters of the printable text at most, never cut within one.
Shown shown(const QString& text, qsizetype length);

/// "Show more (12,345 characters)"; empty if nothing is hidden.
QString moreText(qsizetype hidden);

}
