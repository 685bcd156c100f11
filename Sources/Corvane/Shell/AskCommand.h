#pragma once

#include <QStringList>

class QTextStream;

namespace corvane {

struct AppPaths;

/// `corvane ask "question"`: answered by the running program, else by this process. Returns the exit code.
int askQuestion(const AppPaths& paths, const QStringList& words, QTextStream& out, QTextStream& errors);

}
