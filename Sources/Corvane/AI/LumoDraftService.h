#pragma once

#include "AI/AISchemaValidator.h"
#include "AI/LocalAIModelSpec.h"
#include "AI/LumoDraftPrompt.h"
#include "Foundation/Cancellation.h"

#include <QObject>
#include <qcoro/qcorotask.h>

namespace corvane {

class LumoAI;
class Scheduler;

/// A generated text for the composer. Only a value: the user decides what happens to it.
struct LumoDraftResult {
    QString id;
    QString intent;
    QString operationLabel;
    QString draft;
    LocalAIModelSpec model;
    AIDraftResponseMetadata responseMetadata;
    QList<LocalAIMessageCitation> citations;
    QString promptFingerprint;
    qint64 generatedAt = 0; ///< milliseconds since the epoch

    LumoDraftResult addingWarnings(const QStringList& warnings) const;
};

enum class LumoDraftServiceError { EmptyThread, EmptyInput };
QString describe(LumoDraftServiceError error);

/// Replies and rewrites for the composer. Every result has passed `AISchemaValidator`, and its warnings list what is
/// not supported by its prompt. Errors are for the user.
class LumoDraftService : public QObject {
    Q_OBJECT
public:
    /// Both outlive the service.
    LumoDraftService(LumoAI& ai, const Scheduler& scheduler, QObject* parent = nullptr);

    /// The database whose memory is added to every prompt; it outlives the drafts. Without one there is no memory.
    void setMemoryDB(LocalDB& db) { m_memoryDB = &db; }

    /// `messages` oldest first; if none has text, nothing is asked. Whatever `model` the caller has displayed, `LumoAI`
    /// chooses who answers.
    QCoro::Task<Result<LumoDraftResult>> draftReply(LumoDraftCRMContext context, QList<UnifiedMsgRow> messages,
        QString style, LocalAIModelSpec model, CancelHandle cancel = {});

    /// A rewrite of the composer's text. An empty target language means English.
    QCoro::Task<Result<LumoDraftResult>> rewrite(QString text, LumoDraftRewriteAction action, QString targetLanguage,
        LumoDraftCRMContext context, QList<UnifiedMsgRow> messages, QString style, CancelHandle cancel = {});

private:
    QString instructionsWithMemory(const LumoDraftPrompt& prompt, const QString& contactId) const;
    QCoro::Task<Result<AIStructuredDraftResponse>> generateReply(
        QString instructions, QString prompt, DraftExpectation expected, CancelHandle cancel);
    LumoDraftResult result(const LumoDraftPrompt& prompt, const QString& instructions, const QString& intent,
        const QString& operationLabel, const AIStructuredDraftResponse& response) const;

    LumoAI& m_ai;
    const Scheduler& m_scheduler;
    LocalDB* m_memoryDB = nullptr;
};

/// Call it when the user accepted the result. A failure is only logged.
void storeDraftMetadata(
    LocalDB& db, const QString& contactId, const std::optional<QString>& conversationId, const LumoDraftResult& result);

}
