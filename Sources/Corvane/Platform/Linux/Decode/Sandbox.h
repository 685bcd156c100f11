#pragma once

#include "Foundation/Result.h"

namespace corvane {

/// Permanently restricts this process to reading files that are already open: afterwards nothing can be opened,
/// connected or started, and memory is limited. Any other system call fails with EPERM.
Result<void> enterSandbox();

}
