#pragma once

#include "Platform/AppPaths.h"

class QTextStream;

namespace corvane {

/// `corvane verify`: checks the record of decisions from its first line to its last and says what it found, in plain
/// words. It only reads, and may run beside the program. Returns the exit code: 0 where the record is whole.
int verifyDecisions(const AppPaths& paths, QTextStream& out);

}
