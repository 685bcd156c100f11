#include "AI/LumoGuidedDraftResult.h"

#include "Foundation/Json.h"

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
    QJsonObject result { { QStringLiteral("type"), QLatin1StringView(type) },
        { QStringLiteral("description"), description } };
    if (QLatin1StringView(type) == QLatin1StringView("array"))
        result.insert(QStringLiteral("items"), QJsonObject { { QStringLiteral("type"), QStringLiteral("string") } });
    return result;
}

}

QJsonObject guidedDraftSchema()
{
    const QJsonObject properties {
        { bodyKey,
            property("string",
                QStringLiteral("Composer-ready message body. It must not include citations or a subject line.")) },
        { intentKey,
            property("string", QStringLiteral("The drafting intent. For reply drafts this must be draft_reply.")) },
        { citationsKey,
            property("array", QStringLiteral("Local message labels used to ground this draft, such as M1 or M2.")) },
        { warningsKey,
            property("array",
                QStringLiteral("Brief warnings for uncertainty or missing local context. Empty when no warning is "
                               "needed.")) },
        { sendKey,
            property("boolean",
                QStringLiteral("Must always be false. Draft generation cannot send, approve, book, pay, or complete "
                               "anything.")) },
    };
    return { { QStringLiteral("type"), QStringLiteral("object") }, { QStringLiteral("properties"), properties },
        { QStringLiteral("required"), QJsonArray { bodyKey, intentKey, citationsKey, warningsKey, sendKey } },
        { QStringLiteral("additionalProperties"), false } };
}

QString guidedDraftPromptAddition()
{
    return QStringLiteral("\nGuided draft schema:\n"
                          "- body: composer-ready reply text.\n"
                          "- intent: draft_reply.\n"
                          "- citations: local message labels used, for example [\"M1\"].\n"
                          "- warnings: uncertainty or missing-context notes only.\n"
                          "- send_side_effect: false.");
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
        .language = QStringLiteral("unknown"),
        .confidence = 1.0,
        .usedMessageLabels = guided.citations,
        .usedNoteIds = {},
        .warnings = guided.warnings,
        .sendSideEffect = guided.sendSideEffect,
    };
    return { guided.body, metadata };
}

}
