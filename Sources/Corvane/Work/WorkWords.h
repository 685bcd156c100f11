#pragma once

#include <QStringList>
#include <optional>
#include <utility>

namespace corvane {

/// Kinds are classified by the words they contain: "bugfix" is a ticket.
bool isTicketKind(const QString& kind);

/// "money", "external", "credential" or "high"; nothing if a new item needs no decision.
std::optional<QString> riskForCreate(const QString& kind, const QString& title, const QString& summary);

/// The kind of an item that has only a title; "task" if the title does not reveal it.
QString inferredKind(const QString& title);

/// The words that identify an item's kind in its text, for searches.
QStringList ticketSigns();
QStringList financeSigns();

/// Whether one of the texts contains a word of its class.
bool marksFinance(const QStringList& texts);
bool marksHiring(const QStringList& texts);

/// The value of the first sign that the text contains, ignoring case.
std::optional<QString> firstSign(const QList<std::pair<QString, QString>>& signs, const QString& text);

/// Whether a project's host is this machine, whatever its name: no host, or a word for it. Old profiles say "mac".
bool meansThisMachine(const QString& host);

/// The host, for a person.
QString hostWords(const QString& host);

/// A slug of lower-case letters, digits and "-"; "context-{seconds}" if nothing is left.
QString normalizedLocalSlug(const QString& text, qint64 nowMs);

}
