#pragma once

#include <QStringList>

class QProcessEnvironment;

namespace corvane::torture {

/// Corvane without a window, as its own `main` starts it, or one of its commands.
int runHosted(const QStringList& arguments);

/// Where a hosted program decides on drafts, with a short undo window: approves those with an odd number, and takes
/// the verdict on the others back. `books` are the engine's.
void decideOnDrafts(QProcessEnvironment& environment, const QString& books);

constexpr int undoWindowMs = 150;

/// What the hosted program writes down after each such step: ids of drafts.
extern const QString armedBook;
extern const QString undoneBook;

QString draftText(int number);

}
