#pragma once

#include "Platform/TextInsertion.h"

#include <optional>

namespace corvane {

/// Inserts text at the cursor of this program, like an input method. Does nothing while another program has the focus.
std::optional<InsertionOutcome> insertIntoOwnWindow(const QString& text);

}
