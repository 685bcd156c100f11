#pragma once

#include "Work/WorkConsoleConfig.h"

namespace corvane {

/// A context as one readable text: items, decisions, evidence and messages, in order and complete.
QString contextAsMarkdown(LocalDB& db, const WorkContextRow& context);

/// Into the user's downloads folder, without overwriting. Returns where it went, or the error.
QString saveMarkdown(const QString& title, const QString& text);

/// What an agent in a terminal is told about the context, line by line.
QStringList terminalLines(LocalDB& db, const QString& module, const WorkContext& context);

}
