#pragma once

#include <QStringList>

class QTextStream;

namespace corvane {

struct AppPaths;

/// What a command of the terminal gets. It returns the exit code: 0, 1 where it failed, 2 for wrong use.
struct TextCall {
    const AppPaths& paths;
    QStringList arguments; ///< after the words of the command
    QTextStream& out;
    QTextStream& errors;
};

}
