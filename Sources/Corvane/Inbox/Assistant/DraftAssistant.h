#pragma once

#include "AI/LumoDraftService.h"
#include "Inbox/Assistant/AssistantContext.h"
#include "Inbox/Assistant/GenerationPanel.h"
#include "Presentation/Choice.h"

namespace corvane {

class Composer;
class TranslationService;
struct AIServices;

/// Generates texts for the composer: a reply, or a rewrite of its text. The result is a preview that the user accepts
/// or not; nothing here can send.
class DraftAssistant final : public corvane::GenerationPanel {
    Q_OBJECT
    Q_PROPERTY(QString draft READ draft NOTIFY changed)
    Q_PROPERTY(QString modelName READ modelName NOTIFY changed)
    Q_PROPERTY(bool isRewrite READ isRewrite NOTIFY changed) ///< of the composer's text, not next to it
    Q_PROPERTY(QStringList warnings READ warnings NOTIFY changed)
    Q_PROPERTY(QList<corvane::Citation> citations READ citations NOTIFY changed)
    Q_PROPERTY(QString caption READ caption CONSTANT)
    Q_PROPERTY(QList<corvane::Choice> rewrites READ rewrites CONSTANT)
    Q_PROPERTY(QStringList languages READ languages CONSTANT) ///< for translation
public:
    struct Surroundings {
        LocalDB& db;
        AIServices& ai;
        Composer& composer;
    };

    /// Everything outlives the assistant.
    explicit DraftAssistant(const Surroundings& surroundings, QObject* parent = nullptr);

    QString draft() const { return m_result ? m_result->draft : QString(); }
    QString operationLabel() const { return m_result ? m_result->operationLabel : QString(); }
    QString modelName() const { return m_result ? m_result->model.displayName : QString(); }
    bool isRewrite() const;
    QStringList warnings() const { return m_result ? m_result->responseMetadata.warnings : QStringList(); }
    QList<Citation> citations() const; ///< those that the draft cites
    QString caption() const;
    QList<Choice> rewrites() const;
    QStringList languages() const;

    Q_INVOKABLE void draftReply();
    Q_INVOKABLE void rewrite(const QString& action); ///< a key of `rewrites`
    Q_INVOKABLE void translate(const QString& language);
    Q_INVOKABLE void accept(); ///< appends to the composer's text
    Q_INVOKABLE void replace(); ///< replaces the composer's text

private:
    using Operation = std::function<QCoro::Task<Result<LumoDraftResult>>(CancelHandle)>;

    QCoro::Task<> runDraft(QString label, Operation operation);
    QCoro::Task<Result<LumoDraftResult>> translated(QString text, QString language, CancelHandle cancel);
    QCoro::Task<Result<LumoDraftResult>> rewritten(
        QString text, LumoDraftRewriteAction action, QString language, CancelHandle cancel);
    bool hasText(); ///< whether the composer has one; else reports it
    void showMissingModel();
    void take(bool inPlace);
    void forget() override { m_result.reset(); }

    LocalDB& m_db;
    LumoDraftService& m_drafts;
    TranslationService& m_translations;
    Composer& m_composer;
    std::optional<LumoDraftResult> m_result;
};

}
