#pragma once

#include <QString>
#include <optional>

namespace corvane {

/// Whether a new passphrase is asked for twice.
enum class Ask { Once, Twice };

/// What a person types at the terminal, which does not show it; where standard input is no terminal, its first line.
/// Nothing where it is empty, or the two differ, which standard error then says.
std::optional<QString> askPassphrase(Ask ask);

}
