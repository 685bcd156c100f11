#pragma once

#include <QStringList>

class QTextStream;

namespace corvane {

struct AppPaths;

/// The input of a terminal command. The exit code is 0, 1 on failure, or 2 for wrong usage.
struct TextCall {
    const AppPaths& paths;
    QStringList arguments; ///< after the words of the command
    QTextStream& out;
    QTextStream& errors;
};

}
