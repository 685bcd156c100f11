#pragma once

#include "AI/LocalAIMessageCitation.h"
#include "AI/LocalAIModelSpec.h"
#include "Foundation/Cancellation.h"

#include <QObject>
#include <qcoro/qcorotask.h>

namespace corvane {

class LumoAI;
class Scheduler;
struct NoteRow;

struct LocalAIThreadSummary {
    QString id;
    QString contactName;
    LocalAIModelSpec model;
    QString text; ///< unmodified; refers to messages by labels such as "[M3]"
    QList<LocalAIMessageCitation> citations; ///< the messages that it is based on
    qint64 generatedAt = 0; ///< milliseconds since the epoch
};

enum class LumoAISummaryServiceError { EmptyThread };
QString describe(LumoAISummaryServiceError error);

/// Summarises a thread and answers questions about a contact, from local rows only. It writes nothing and sends
/// nothing. Errors are for the user.
class LumoAISummaryService : public QObject {
    Q_OBJECT
public:
    /// Both outlive the service.
    LumoAISummaryService(LumoAI& ai, const Scheduler& scheduler, QObject* parent = nullptr);

    /// `messages` oldest first; if none has text, nothing is asked.
    QCoro::Task<Result<LocalAIThreadSummary>> summarize(
        QString contactName, QList<UnifiedMsgRow> messages, CancelHandle cancel = {});

    /// `notes` newest first, `messages` oldest first.
    QCoro::Task<Result<QString>> ask(QString contactName, QList<NoteRow> notes, QList<UnifiedMsgRow> messages,
        QString question, CancelHandle cancel = {});

private:
    LumoAI& m_ai;
    const Scheduler& m_scheduler;
};

}
