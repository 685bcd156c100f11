#pragma once

#include "AI/AISchemaValidator.h"

namespace corvane {

/// What a model answered as text, as a draft that passed the gate. An answer that is not the JSON that was asked
/// for is taken as the draft itself while it is shorter than 4000 characters.
Result<AIStructuredDraftResponse> parseDraftAnswer(const QString& answer, const DraftExpectation& expected);

/// The first "{" and all through the "}" that closes it; nothing where none does.
std::optional<QString> extractJSONObject(const QString& text);

/// The inside of a Markdown code fence, where the text begins with one; trimmed in any case.
QString stripCodeFence(const QString& text);

}
