#pragma once

#include <QString>

/// What a screen does with the text and the subject of a mail.
namespace corvane::MailText {

/// Where the quoted tail begins, the lines that all start with ">" up to the end: its length where it has none, or is
/// nothing but a quotation. Costs no more than the length of that tail.
qsizetype quoteStart(const QString& body);

/// The text before its quoted tail.
QString withoutQuote(const QString& body);

/// A quotation without the outermost ">" of its lines.
QString unquoted(const QString& quote);

/// A subject without "Re:", "Fwd:" and the like, by which a conversation's subjects are compared.
QString plainSubject(const QString& subject);

}
