#pragma once

#include "Foundation/Result.h"

namespace corvane {

/// Takes from this process, for good, what reading a file that is open already does not need: after it nothing can be
/// opened, connected or started, and memory is bounded. What else a library tries fails with EPERM.
Result<void> enterSandbox();

}
