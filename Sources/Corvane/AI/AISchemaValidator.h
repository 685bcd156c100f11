#pragma once

#include "Foundation/Result.h"

#include <QStringList>

namespace corvane {

/// What a model says of the draft that it made.
struct AIDraftResponseMetadata {
    QString intent;
    QString tone;
    QString language;
    double confidence = 0;
    QStringList usedMessageLabels;
    QStringList usedNoteIds;
    QStringList warnings;
    bool sendSideEffect = false;

    bool operator==(const AIDraftResponseMetadata&) const = default;
};

struct AIStructuredDraftResponse {
    QString draft;
    AIDraftResponseMetadata metadata;

    bool operator==(const AIStructuredDraftResponse&) const = default;
};

enum class AISchemaValidatorError { QuotedFactChanged, EmptyDraft, MalformedResponse, SendSideEffectRequested };
QString describe(AISchemaValidatorError error, const QString& fact = {});

/// What a draft was asked for: it fills what the model left blank, and says what must have survived.
struct DraftExpectation {
    QString intent;
    QString tone;
    QStringList fallbackLabels;
    QStringList requiredQuotedFacts;
};

/// The gate that every generated draft passes: it has a text, claims no send, and kept what was quoted. The
/// result is tidied: well-formed, trimmed, blanks filled, the confidence within 0 and 1.
Result<AIStructuredDraftResponse> validateDraftResponse(
    AIStructuredDraftResponse response, const DraftExpectation& expected);

/// What stands in quotation marks, sorted, each once. Two apostrophes count as quotation marks.
QStringList quotedFacts(const QString& text);

}
