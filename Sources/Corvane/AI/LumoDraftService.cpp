#include "AI/LumoDraftService.h"

#include "AI/DraftAnswer.h"
#include "AI/LumoAI.h"
#include "AI/LumoGuidedDraftResult.h"
#include "AI/UngroundedFacts.h"
#include "Foundation/Ids.h"
#include "Foundation/Literals.h"
#include "Foundation/Scheduler.h"
#include "Store/Assistant/DraftQueries.h"

#include <QPointer>

namespace corvane {

namespace {

const QString replyIntent = u"draft_reply"_s;
const QString rewriteIntent = u"rewrite_text"_s;

QStringList groundingWarnings(const QString& draft, const QString& context)
{
    const QStringList facts = ungroundedFacts(draft, context);
    if (facts.isEmpty())
        return {};
    return { u"Not in the local context: "_s + facts.join(u", "_s) };
}

}

LumoDraftResult LumoDraftResult::addingWarnings(const QStringList& warnings) const
{
    LumoDraftResult result = *this;
    result.responseMetadata.warnings += warnings;
    return result;
}

QString describe(LumoDraftServiceError error)
{
    return error == LumoDraftServiceError::EmptyThread ? u"There are no local text messages to draft from."_s
                                                       : u"There is no composer text to rewrite."_s;
}

LumoDraftService::LumoDraftService(LumoAI& ai, const Scheduler& scheduler, QObject* parent)
    : QObject(parent)
    , m_ai(ai)
    , m_scheduler(scheduler)
{
}

QCoro::Task<Result<LumoDraftResult>> LumoDraftService::draftReply(
    LumoDraftCRMContext context, QList<UnifiedMsgRow> messages, QString style, LocalAIModelSpec, CancelHandle cancel)
{
    const QPointer<LumoDraftService> self(this);
    const LumoDraftPrompt prompt = makeDraftReplyPrompt(context, messages, style);
    if (prompt.citations.isEmpty())
        co_return failure(describe(LumoDraftServiceError::EmptyThread));
    const QString instructions = instructionsWithMemory(prompt, context.contactId);
    const DraftExpectation expected { replyIntent, style, labels(prompt.citations), {} };
    const auto response = co_await generateReply(instructions, prompt.prompt, expected, cancel);
    if (!self)
        co_return cancelled();
    if (!response)
        co_return std::unexpected(response.error());
    co_return result(prompt, instructions, replyIntent, u"Draft reply"_s, *response);
}

QCoro::Task<Result<AIStructuredDraftResponse>> LumoDraftService::generateReply(
    QString instructions, QString prompt, DraftExpectation expected, CancelHandle cancel)
{
    LumoAI& ai = m_ai;
    const QPointer<LumoAI> asked(&ai);
    const bool guided = co_await ai.answersUnderSchema();
    if (!asked || cancel.isCancelled())
        co_return cancelled();
    if (!guided) {
        const Result<QString> answer = co_await ai.respond(instructions, prompt, cancel);
        if (!answer)
            co_return std::unexpected(answer.error());
        co_return parseDraftAnswer(*answer, expected);
    }
    const Result<QJsonObject> answer = co_await ai.respondGenerating(
        instructions, prompt + guidedDraftPromptAddition(), guidedDraftSchema(), cancel);
    if (!answer)
        co_return std::unexpected(answer.error());
    const auto draft = decodedGuidedDraft(*answer);
    if (!draft)
        co_return failure(describe(AISchemaValidatorError::MalformedResponse));
    co_return validateDraftResponse(draftResponse(*draft, expected.tone), expected);
}

QCoro::Task<Result<LumoDraftResult>> LumoDraftService::rewrite(QString text, LumoDraftRewriteAction action,
    QString targetLanguage, LumoDraftCRMContext context, QList<UnifiedMsgRow> messages, QString style,
    CancelHandle cancel)
{
    const QPointer<LumoDraftService> self(this);
    const QString composed = text.trimmed();
    if (composed.isEmpty())
        co_return failure(describe(LumoDraftServiceError::EmptyInput));
    const LumoDraftPrompt prompt = makeRewritePrompt(composed, action, targetLanguage, context, messages, style);
    const QString instructions = instructionsWithMemory(prompt, context.contactId);
    const Result<QString> answer = co_await m_ai.respond(instructions, prompt.prompt, cancel);
    if (!self)
        co_return cancelled();
    if (!answer)
        co_return std::unexpected(answer.error());
    // It is based on the composer's text; the thread sets the tone, unless the answer cites a message.
    const DraftExpectation expected { rewriteIntent, style, {}, quotedFacts(composed) };
    const auto response = parseDraftAnswer(*answer, expected);
    if (!response)
        co_return std::unexpected(response.error());
    LumoDraftResult rewritten = result(prompt, instructions, rewriteIntent, operationLabel(action), *response);
    rewritten.citations.removeIf(
        [&used = rewritten.responseMetadata.usedMessageLabels](
            const LocalAIMessageCitation& citation) { return !used.contains(citation.label); });
    co_return rewritten;
}

QString LumoDraftService::instructionsWithMemory(const LumoDraftPrompt& prompt, const QString& contactId) const
{
    return m_memoryDB ? prompt.instructions + memorySnapshot(*m_memoryDB, contactId) : prompt.instructions;
}

LumoDraftResult LumoDraftService::result(const LumoDraftPrompt& prompt, const QString& instructions,
    const QString& intent, const QString& operationLabel, const AIStructuredDraftResponse& response) const
{
    const LumoDraftResult result {
        .id = uuidText(),
        .intent = intent,
        .operationLabel = operationLabel,
        .draft = response.draft,
        .model = m_ai.modelSpec(),
        .responseMetadata = response.metadata,
        .citations = prompt.citations,
        .promptFingerprint = prompt.promptFingerprint,
        .generatedAt = m_scheduler.nowMs(),
    };
    return result.addingWarnings(groundingWarnings(response.draft, instructions + u'\n' + prompt.prompt));
}

void storeDraftMetadata(
    LocalDB& db, const QString& contactId, const std::optional<QString>& conversationId, const LumoDraftResult& result)
{
    QStringList messageIds;
    for (const LocalAIMessageCitation& citation : result.citations)
        messageIds.append(citation.id);
    insertDraftMetadata(db,
        { contactId, conversationId, result.intent, result.model.displayName, result.promptFingerprint, result.id,
            messageIds, result.responseMetadata.warnings });
}

}
