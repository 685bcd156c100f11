#pragma once

#include <QStringList>

class QTextStream;

namespace corvane {

struct AppPaths;

/// `corvane capture [--note] WORDS...`: adds a task, or a note, to the work records. It needs no display and may run
/// beside the program. Returns the exit code: 0 if the row was written.
int captureWords(const AppPaths& paths, const QStringList& arguments, QTextStream& errors);

}
