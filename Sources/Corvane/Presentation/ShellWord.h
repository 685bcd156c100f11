#pragma once

#include <QString>

namespace corvane {

/// One word for a POSIX shell in a line that a terminal shows or takes as typed: without line ends and the control
/// characters that a terminal acts on, quoted or not.
QString typedShellWord(const QString& text);

}
