#pragma once

#include <QString>
#include <optional>

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

/// Letters and digits in lower case, "-" for whatever lies between; "context-{seconds}" where nothing is left.
QString normalizedLocalSlug(const QString& text, qint64 nowMs);

}
