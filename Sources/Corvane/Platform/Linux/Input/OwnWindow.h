#pragma once

#include "Platform/TextInsertion.h"

#include <optional>

namespace corvane {

/// Puts text where the cursor is, as an input method does. Nothing while another program has the focus.
std::optional<InsertionOutcome> insertIntoOwnWindow(const QString& text);

}
