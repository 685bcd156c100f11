#pragma once

#include <QString>
#include <optional>

namespace corvane {

/// A new passphrase is asked for twice.
enum class Ask { Once, Twice };

/// Reads a passphrase from the terminal without echo, or the first line of standard input if that is not a terminal.
/// Nothing, after a message on standard error, if it is empty or the two differ.
std::optional<QString> askPassphrase(Ask ask);

}
