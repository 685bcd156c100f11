#pragma once

#include "Shell/TextCall.h"

namespace corvane {

/// `corvane doctor [--fix] [--json]`. It may run beside the program. The exit code: 0 where all is well, 1 where
/// there are warnings, 2 for failures, or for wrong use.
int runDoctor(const TextCall& call);

}
