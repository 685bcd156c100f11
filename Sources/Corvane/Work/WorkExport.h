#pragma once

#include "Work/WorkConsoleConfig.h"

namespace corvane {

/// A context as one text to read or to hand on: items, decisions, evidence and messages in their order, whole.
QString contextAsMarkdown(LocalDB& db, const WorkContextRow& context);

/// Into the person's folder of downloads, beside what stands there. Says where it went, or why it did not.
QString saveMarkdown(const QString& title, const QString& text);

/// What an agent at a terminal would be told of the context, line by line.
QStringList terminalLines(LocalDB& db, const QString& module, const WorkContext& context);

}
