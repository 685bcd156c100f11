#include "Inbox/Assistant/DraftAssistant.h"

#include "AI/AIServices.h"
#include "AI/DraftContext.h"
#include "Foundation/Ids.h"
#include "Foundation/Literals.h"
#include "Foundation/MachineWords.h"
#include "Inbox/Assistant/AssistantContext.h"
#include "Inbox/Compose/Composer.h"

#include <algorithm>

namespace corvane {

namespace {

struct Rewrite {
    LumoDraftRewriteAction action;
    const char* key;
    const char* busy;
};

constexpr Rewrite offeredRewrites[] {
    { LumoDraftRewriteAction::Shorten, "shorten", "Shortening" },
    { LumoDraftRewriteAction::Warmer, "warmer", "Making warmer" },
    { LumoDraftRewriteAction::Grammar, "grammar", "Fixing grammar" },
};

QString rewriteIntent()
{
    return u"rewrite_text"_s;
}

}

DraftAssistant::DraftAssistant(const Surroundings& surroundings, QObject* parent)
    : GenerationPanel(surroundings.ai.ai, parent)
    , m_db(surroundings.db)
    , m_drafts(surroundings.ai.drafts)
    , m_translations(surroundings.ai.translations)
    , m_composer(surroundings.composer)
{
}

bool DraftAssistant::isRewrite() const
{
    return m_result && m_result->intent == rewriteIntent();
}

QList<Citation> DraftAssistant::citations() const
{
    return m_result ? citationChoices(m_result->citations, m_result->responseMetadata.usedMessageLabels)
                    : QList<Citation>();
}

QString DraftAssistant::caption() const
{
    return u"Composer draft only"_s;
}

QList<Choice> DraftAssistant::rewrites() const
{
    QList<Choice> choices;
    for (const Rewrite& rewrite : offeredRewrites)
        choices.append({ QString::fromLatin1(rewrite.key), corvane::operationLabel(rewrite.action) });
    return choices;
}

QStringList DraftAssistant::languages() const
{
    return TranslationService::languages();
}

void DraftAssistant::draftReply()
{
    if (m_contact.id.isEmpty())
        return;
    runDraft(u"Drafting"_s, [this](CancelHandle cancel) {
        return m_drafts.draftReply(
            draftContext(m_db, m_contact), localThread(m_db, m_contact), defaultDraftStyle(), m_ai.modelSpec(), cancel);
    });
}

void DraftAssistant::rewrite(const QString& action)
{
    const auto offered = std::ranges::find_if(
        offeredRewrites, [&](const Rewrite& rewrite) { return action == QLatin1StringView(rewrite.key); });
    if (offered == std::end(offeredRewrites) || !hasText())
        return;
    runDraft(QString::fromLatin1(offered->busy),
        [this, offered](CancelHandle cancel) { return rewritten(m_composer.text(), offered->action, {}, cancel); });
}

void DraftAssistant::translate(const QString& language)
{
    if (!hasText())
        return;
    runDraft(u"Translating"_s,
        [this, language](CancelHandle cancel) { return translated(m_composer.text(), language, cancel); });
}

void DraftAssistant::accept()
{
    take(false);
}

void DraftAssistant::replace()
{
    take(true);
}

QCoro::Task<> DraftAssistant::runDraft(QString label, Operation operation)
{
    const CancelHandle cancel = begin(u"%1 with %2"_s.arg(label, m_ai.availableName().value_or(u"LumoAI"_s)),
        [this, label, operation] { runDraft(label, operation); });
    Result<LumoDraftResult> result = co_await operation(cancel);
    if (cancel.isCancelled())
        co_return;
    if (result) {
        m_result = *std::move(result);
        show(State::Ready, m_result->operationLabel);
    } else if (!m_ai.availableName()) {
        showMissingModel();
    } else {
        show(State::Error, result.error().message);
    }
}

QCoro::Task<Result<LumoDraftResult>> DraftAssistant::translated(QString text, QString language, CancelHandle cancel)
{
    const auto translation = co_await m_translations.translate(
        text, language,
        [this, cancel](const QString& words) {
            if (!cancel.isCancelled())
                show(State::Loading, words);
        },
        cancel);
    if (cancel.isCancelled())
        co_return cancelled();
    if (translation) {
        LumoDraftResult result;
        result.id = uuidText();
        result.intent = rewriteIntent();
        result.operationLabel = corvane::operationLabel(LumoDraftRewriteAction::Translate);
        result.draft = translation->text;
        result.model = { translation->modelName };
        result.responseMetadata.warnings = translation->warnings;
        co_return result;
    }
    show(State::Loading, u"Falling back to LumoAI translate..."_s);
    const QString error = translation.error().message;
    const auto result = co_await rewritten(text, LumoDraftRewriteAction::Translate, language, cancel);
    if (!result)
        co_return std::unexpected(result.error());
    co_return result->addingWarnings({ atStart(machineWords::localTranslation)
        + u" was unavailable or failed mid-flight; LumoAI fallback translated this draft. Error: "_s + error });
}

QCoro::Task<Result<LumoDraftResult>> DraftAssistant::rewritten(
    QString text, LumoDraftRewriteAction action, QString language, CancelHandle cancel)
{
    return m_drafts.rewrite(text, action, language, draftContext(m_db, m_contact), localThread(m_db, m_contact),
        defaultDraftStyle(), cancel);
}

bool DraftAssistant::hasText()
{
    if (m_contact.id.isEmpty())
        return false;
    if (m_composer.canSend())
        return true;
    dismiss();
    show(State::Error, describe(LumoDraftServiceError::EmptyInput));
    return false;
}

void DraftAssistant::showMissingModel()
{
    show(State::MissingModel, u"No model and no Codex CLI"_s,
        u"Start %1 or install Codex CLI. Current backend: none"_s.arg(machineWords::localModel));
}

void DraftAssistant::take(bool inPlace)
{
    if (!m_result)
        return;
    storeDraftMetadata(m_db, effectiveContactId(m_db, m_contact.id), newestConversation(m_db, m_contact.id), *m_result);
    m_composer.apply(m_result->draft, inPlace ? Composer::Placement::Instead : Composer::Placement::After);
    dismiss();
}

}
