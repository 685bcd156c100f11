#pragma once

#include "Platform/AppPaths.h"

class QTextStream;

namespace corvane {

/// `corvane verify`: checks the whole decision log and prints the result. It only reads, and may run beside the
/// program. Returns the exit code: 0 if the log is intact.
int verifyDecisions(const AppPaths& paths, QTextStream& out);

}
