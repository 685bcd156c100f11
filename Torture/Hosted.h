#pragma once

#include <QStringList>

class QProcessEnvironment;

namespace corvane::torture {

/// Runs Corvane without a window, as its own `main` does, or one of its commands.
int runHosted(const QStringList& arguments);

/// Makes a hosted program decide on drafts, with a short undo window: approves them all, and undoes the approval of
/// those with an even number. `books` is the engine's folder.
void decideOnDrafts(QProcessEnvironment& environment, const QString& books);

constexpr int undoWindowMs = 150;

/// Where the hosted program records each step, as draft ids.
extern const QString armedBook;
extern const QString undoneBook;

QString draftText(int number);

}
