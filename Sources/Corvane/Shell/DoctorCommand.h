#pragma once

#include "Shell/TextCall.h"

namespace corvane {

/// `corvane doctor [--fix] [--json]`. It may run beside the program. The exit code: 0 if all is well, 1 for
/// warnings, 2 for failures and wrong usage.
int runDoctor(const TextCall& call);

}
