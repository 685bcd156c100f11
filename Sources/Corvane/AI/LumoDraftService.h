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

/// A generated text for the composer. It is a value and nothing more: what becomes of it the user decides.
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

/// Replies and rewrites for the composer. Every result passed the gate (`AISchemaValidator`), and names among its
/// warnings what stands nowhere in its prompt. A failure carries words for the user.
class LumoDraftService : public QObject {
    Q_OBJECT
public:
    /// Both outlive the service.
    LumoDraftService(LumoAI& ai, const Scheduler& scheduler, QObject* parent = nullptr);

    /// Whose memory goes with every prompt; it outlives every draft. Without one nothing is remembered.
    void setMemoryDB(LocalDB& db) { m_memoryDB = &db; }

    /// `messages` oldest first; without a text among them nothing is asked. Whatever `model` the caller has
    /// shown, `LumoAI` chooses who answers.
    QCoro::Task<Result<LumoDraftResult>> draftReply(LumoDraftCRMContext context, QList<UnifiedMsgRow> messages,
        QString style, LocalAIModelSpec model, CancelHandle cancel = {});

    /// The composer's text, changed. An empty target language means English.
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

/// Once the user took the result over. A failure is only logged.
void storeDraftMetadata(
    LocalDB& db, const QString& contactId, const std::optional<QString>& conversationId, const LumoDraftResult& result);

}
