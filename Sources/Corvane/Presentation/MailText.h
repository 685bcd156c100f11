#pragma once

#include <QString>

/// The text and the subject of a mail, prepared for display.
namespace corvane::MailText {

/// Where the quoted tail (the lines that all start with ">" up to the end) begins: the text's length if it has none, or
/// if it is only a quotation. The cost is proportional to the length of that tail.
qsizetype quoteStart(const QString& body);

/// The text before its quoted tail.
QString withoutQuote(const QString& body);

/// A quotation without the outermost ">" of its lines.
QString unquoted(const QString& quote);

/// A subject without "Re:", "Fwd:" and the like, for comparing subjects of a conversation.
QString plainSubject(const QString& subject);

}
