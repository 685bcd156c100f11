#pragma once

#include "Terminal/Grid/TextKernels.h"

namespace corvane::terminal {

/// Whether the processor supports the other functions.
bool hasTextAvx512();
TextKernels textKernelsAvx512();

}
