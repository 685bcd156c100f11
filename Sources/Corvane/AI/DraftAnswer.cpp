#include "AI/DraftAnswer.h"

#include "Foundation/Json.h"
#include "Foundation/Literals.h"
#include "Foundation/Text.h"

namespace corvane {

namespace {

constexpr int repairLimit = 4000;

std::optional<AIDraftResponseMetadata> decodedMetadata(const QJsonObject& object)
{
    const auto intent = textValue(object, "intent"_L1);
    const auto tone = textValue(object, "tone"_L1);
    const auto language = textValue(object, "language"_L1);
    const QJsonValue confidence = object.value("confidence"_L1);
    const auto labels = textsValue(object, "used_message_labels"_L1);
    const auto noteIds = textsValue(object, "used_note_ids"_L1);
    const auto warnings = textsValue(object, "warnings"_L1);
    const QJsonValue sends = object.value("send_side_effect"_L1);
    if (!intent || !tone || !language || !confidence.isDouble() || !labels || !noteIds || !warnings || !sends.isBool())
        return std::nullopt;
    return AIDraftResponseMetadata { *intent, *tone, *language, confidence.toDouble(), *labels, *noteIds, *warnings,
        sends.toBool() };
}

/// Every key must exist and have its type.
std::optional<AIStructuredDraftResponse> decodedDraft(const QString& text)
{
    const auto object = jsonObject(text.toUtf8());
    if (!object)
        return std::nullopt;
    const auto draft = textValue(*object, "draft"_L1);
    const auto metadata = decodedMetadata(object->value("metadata"_L1).toObject());
    if (!draft || !metadata)
        return std::nullopt;
    return AIStructuredDraftResponse { *draft, *metadata };
}

bool hasFewerCharacters(const QString& text, int limit)
{
    return firstCharacters(text, limit - 1).size() == text.size();
}

}

Result<AIStructuredDraftResponse> parseDraftAnswer(const QString& answer, const DraftExpectation& expected)
{
    if (const auto decoded = decodedDraft(extractJSONObject(answer).value_or(answer)))
        return validateDraftResponse(*decoded, expected);
    const QString text = stripCodeFence(answer);
    if (text.isEmpty() || !hasFewerCharacters(text, repairLimit))
        return failure(describe(AISchemaValidatorError::MalformedResponse));
    const AIDraftResponseMetadata metadata {
        .intent = expected.intent,
        .tone = expected.tone,
        .language = u"unknown"_s,
        .confidence = 0.35,
        .usedMessageLabels = expected.fallbackLabels,
        .usedNoteIds = {},
        .warnings = { u"Model returned plain text; Corvane repaired it into a draft schema."_s },
    };
    return validateDraftResponse({ text, metadata }, expected);
}

std::optional<QString> extractJSONObject(const QString& text)
{
    const qsizetype start = text.indexOf(u'{');
    if (start < 0)
        return std::nullopt;
    int depth = 0;
    bool inString = false;
    for (qsizetype at = start; at < text.size(); ++at) {
        const QChar unit = text.at(at);
        if (unit == u'\\')
            ++at; // skips the escaped character
        else if (unit == u'"')
            inString = !inString;
        else if (!inString && unit == u'{')
            ++depth;
        else if (!inString && unit == u'}' && --depth == 0)
            return text.sliced(start, at - start + 1);
    }
    return std::nullopt;
}

QString stripCodeFence(const QString& text)
{
    const QString fence = u"```"_s;
    QString inside = text.trimmed();
    if (!inside.startsWith(fence))
        return inside;
    inside.remove(0, inside.indexOf(u'\n') + 1);
    const qsizetype end = inside.lastIndexOf(fence);
    if (end >= 0)
        inside.truncate(end);
    return inside.trimmed();
}

}
