#include "AI/LumoGuidedDraftResult.h"

#include "Foundation/Json.h"
#include "Foundation/Literals.h"

#include <QJsonArray>

namespace corvane {

namespace {

const QLatin1StringView bodyKey("body");
const QLatin1StringView intentKey("intent");
const QLatin1StringView citationsKey("citations");
const QLatin1StringView warningsKey("warnings");
const QLatin1StringView sendKey("send_side_effect");

QJsonObject property(const char* type, const QString& description)
{
    QJsonObject result { { u"type"_s, QLatin1StringView(type) }, { u"description"_s, description } };
    if (QLatin1StringView(type) == "array"_L1)
        result.insert(u"items"_s, QJsonObject { { u"type"_s, u"string"_s } });
    return result;
}

}

QJsonObject guidedDraftSchema()
{
    const QJsonObject properties {
        { bodyKey,
            property("string", u"Composer-ready message body. It must not include citations or a subject line."_s) },
        { intentKey, property("string", u"The drafting intent. For reply drafts this must be draft_reply."_s) },
        { citationsKey, property("array", u"Local message labels used to ground this draft, such as M1 or M2."_s) },
        { warningsKey,
            property("array",
                u"Brief warnings for uncertainty or missing local context. Empty when no warning is "
                "needed."_s) },
        { sendKey,
            property("boolean",
                u"Must always be false. Draft generation cannot send, approve, book, pay, or complete "
                "anything."_s) },
    };
    return { { u"type"_s, u"object"_s }, { u"properties"_s, properties },
        { u"required"_s, QJsonArray { bodyKey, intentKey, citationsKey, warningsKey, sendKey } },
        { u"additionalProperties"_s, false } };
}

QString guidedDraftPromptAddition()
{
    return u"\nGuided draft schema:\n"
           "- body: composer-ready reply text.\n"
           "- intent: draft_reply.\n"
           "- citations: local message labels used, for example [\"M1\"].\n"
           "- warnings: uncertainty or missing-context notes only.\n"
           "- send_side_effect: false."_s;
}

std::optional<LumoGuidedDraftResult> decodedGuidedDraft(const QJsonObject& object)
{
    const auto body = textValue(object, bodyKey);
    const auto intent = textValue(object, intentKey);
    const auto citations = textsValue(object, citationsKey);
    const auto warnings = textsValue(object, warningsKey);
    const QJsonValue sends = object.value(sendKey);
    if (!body || !intent || !citations || !warnings || !sends.isBool())
        return std::nullopt;
    return LumoGuidedDraftResult { *body, *intent, *citations, *warnings, sends.toBool() };
}

AIStructuredDraftResponse draftResponse(const LumoGuidedDraftResult& guided, const QString& tone)
{
    const AIDraftResponseMetadata metadata {
        .intent = guided.intent,
        .tone = tone,
        .language = u"unknown"_s,
        .confidence = 1.0,
        .usedMessageLabels = guided.citations,
        .usedNoteIds = {},
        .warnings = guided.warnings,
        .sendSideEffect = guided.sendSideEffect,
    };
    return { guided.body, metadata };
}

}
