#pragma once

#include <QStringList>

class QTextStream;

namespace corvane {

struct AppPaths;

/// `corvane ask "question"`: the running program answers, and where none runs this process itself. The exit code.
int askQuestion(const AppPaths& paths, const QStringList& words, QTextStream& out, QTextStream& errors);

}
