#pragma once

#include "Shell/TextCall.h"

namespace corvane {

/// `corvane backup [--encrypt] [--secrets] [--no-media] FILE`, or `--verify FILE`. It may run beside the program.
int runBackup(const TextCall& call);

/// `corvane restore [--into FOLDER] [--replace] FILE`.
int runRestore(const TextCall& call);

}
