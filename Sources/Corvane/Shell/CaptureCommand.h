#pragma once

#include <QStringList>

class QTextStream;

namespace corvane {

struct AppPaths;

/// `corvane capture [--note] WORDS...`: writes the words as a task, or a note, into the work records. It needs no
/// display and may run beside the program. Returns the exit code: 0 where the row is there.
int captureWords(const AppPaths& paths, const QStringList& arguments, QTextStream& errors);

}
