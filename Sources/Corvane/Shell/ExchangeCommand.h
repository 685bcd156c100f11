#pragma once

#include "Shell/TextCall.h"

namespace corvane {

int runExport(const TextCall& call); ///< `corvane export FOLDER`

/// `corvane import [--account NAME] PATH`: an exported folder, or an mbox, .eml, .vcf or .ics file.
int runImport(const TextCall& call);

}
