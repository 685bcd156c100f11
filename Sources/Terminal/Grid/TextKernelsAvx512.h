#pragma once

#include "Terminal/Grid/TextKernels.h"

namespace corvane::terminal {

/// Whether this processor has what the others take.
bool hasTextAvx512();
TextKernels textKernelsAvx512();

}
