#include "AI/AISchemaValidator.h"

#include "Foundation/Literals.h"

#include <QRegularExpression>
#include <algorithm>
#include <array>

namespace corvane {

namespace {

void fillIfBlank(QString& text, const QString& fallback)
{
    if (text.trimmed().isEmpty())
        text = fallback;
}

/// Regular expressions never match in a text with a lone surrogate.
QString wellFormed(const QString& text)
{
    return QString::fromUtf8(text.toUtf8());
}

}

QString describe(AISchemaValidatorError error, const QString& fact)
{
    switch (error) {
    case AISchemaValidatorError::QuotedFactChanged:
        return u"The rewrite changed quoted client text: \"%1\"."_s.arg(fact);
    case AISchemaValidatorError::EmptyDraft:
        return u"LumoAI returned an empty draft."_s;
    case AISchemaValidatorError::MalformedResponse:
        return u"LumoAI response was not a valid draft shape."_s;
    case AISchemaValidatorError::SendSideEffectRequested:
        return u"LumoAI tried to mark the draft as sent. Drafts cannot send themselves."_s;
    }
    Q_UNREACHABLE();
}

Result<AIStructuredDraftResponse> validateDraftResponse(
    AIStructuredDraftResponse response, const DraftExpectation& expected)
{
    response.draft = wellFormed(response.draft).trimmed();
    if (response.draft.isEmpty())
        return failure(describe(AISchemaValidatorError::EmptyDraft));
    AIDraftResponseMetadata& metadata = response.metadata;
    if (metadata.sendSideEffect)
        return failure(describe(AISchemaValidatorError::SendSideEffectRequested));
    fillIfBlank(metadata.intent, expected.intent);
    fillIfBlank(metadata.tone, expected.tone);
    fillIfBlank(metadata.language, u"unknown"_s);
    metadata.confidence = std::clamp(metadata.confidence, 0.0, 1.0);
    if (metadata.usedMessageLabels.isEmpty())
        metadata.usedMessageLabels = expected.fallbackLabels;
    for (const QString& fact : expected.requiredQuotedFacts) {
        if (!fact.trimmed().isEmpty() && !response.draft.contains(fact))
            return failure(describe(AISchemaValidatorError::QuotedFactChanged, fact));
    }
    return response;
}

QStringList quotedFacts(const QString& text)
{
    static const std::array patterns { QRegularExpression(u"\"([^\"]+)\""_s),
        QRegularExpression(u"\u201C([^\u201D]+)\u201D"_s), QRegularExpression(u"'([^']+)'"_s) };
    QStringList facts;
    for (const QRegularExpression& pattern : patterns) {
        for (const QRegularExpressionMatch& match : pattern.globalMatch(text))
            facts.append(match.captured(1).trimmed());
    }
    facts.removeAll(QString());
    facts.sort();
    facts.removeDuplicates();
    return facts;
}

}
