#pragma once

#include "Work/WorkConsoleConfig.h"

namespace corvane {

/// A context as one readable text: items, decisions, evidence and messages, in order and complete.
QString contextAsMarkdown(LocalDB& db, const WorkContextRow& context);

/// What an agent in a terminal is told about the context, line by line.
QStringList terminalLines(LocalDB& db, const QString& module, const WorkContext& context);

}
