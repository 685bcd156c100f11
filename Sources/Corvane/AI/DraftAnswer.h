#pragma once

#include "AI/AISchemaValidator.h"

namespace corvane {

/// A validated draft from a model's text answer. An answer that is not the requested JSON is used as the draft itself
/// if it is shorter than 4000 characters.
Result<AIStructuredDraftResponse> parseDraftAnswer(const QString& answer, const DraftExpectation& expected);

/// From the first "{" to its closing "}"; nothing if it is not closed.
std::optional<QString> extractJSONObject(const QString& text);

/// The content of a Markdown code fence if the text starts with one; always trimmed.
QString stripCodeFence(const QString& text);

}
