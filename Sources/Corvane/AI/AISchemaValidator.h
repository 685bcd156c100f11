#pragma once

#include "Foundation/Result.h"

#include <QStringList>

namespace corvane {

/// A model's metadata about its draft.
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

/// The request of a draft: provides what the model left blank, and what must be preserved.
struct DraftExpectation {
    QString intent;
    QString tone;
    QStringList fallbackLabels;
    QStringList requiredQuotedFacts;
};

/// The gate for every generated draft: it must have a text, must not claim to have sent anything, and must keep what
/// was quoted. The result is normalised: well-formed, trimmed, blanks filled, confidence between 0 and 1.
Result<AIStructuredDraftResponse> validateDraftResponse(
    AIStructuredDraftResponse response, const DraftExpectation& expected);

/// The quoted passages, sorted, without duplicates. Two apostrophes count as quotation marks.
QStringList quotedFacts(const QString& text);

}
