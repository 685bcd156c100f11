#pragma once

#include <QStringList>
#include <optional>
#include <utility>

namespace corvane {

/// "bugfix" is a ticket: kinds are compared by the words they contain.
bool isTicketKind(const QString& kind);
bool isHandoffKind(const QString& kind);
inline bool isTaskKind(const QString& kind)
{
    return !isTicketKind(kind);
} ///< a handoff is a task, too

/// "money", "external", "credential" or "high"; nothing where a new item needs no decision.
std::optional<QString> riskForCreate(const QString& kind, const QString& title, const QString& summary);

/// The kind of an item that only has a title; "task" where the title tells nothing.
QString inferredKind(const QString& title);

/// The words that mark an item's kind or text, for searches.
QStringList ticketSigns();
QStringList financeSigns();

/// Whether one of the texts holds a word of its class.
bool marksFinance(const QStringList& texts);
bool marksHiring(const QStringList& texts);

/// What stands beside the first sign that the text contains, without case.
std::optional<QString> firstSign(const QList<std::pair<QString, QString>>& signs, const QString& text);

/// Letters and digits in lower case, "-" for whatever lies between; "context-{seconds}" where nothing is left.
QString normalizedLocalSlug(const QString& text, qint64 nowMs);

}
