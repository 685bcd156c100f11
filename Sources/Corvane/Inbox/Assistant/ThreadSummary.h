#pragma once

#include "AI/LumoAISummaryService.h"
#include "Inbox/Assistant/AssistantContext.h"
#include "Inbox/Assistant/GenerationPanel.h"

namespace corvane {

struct AIServices;

/// A short summary of the open thread, with the messages that it cites.
class ThreadSummary final : public corvane::GenerationPanel {
    Q_OBJECT
    Q_PROPERTY(QString html READ html NOTIFY changed) ///< labels such as M3 link to the message's id
    Q_PROPERTY(QString text READ text NOTIFY changed)
    Q_PROPERTY(QString modelName READ modelName NOTIFY changed)
    Q_PROPERTY(QList<corvane::Citation> citations READ citations NOTIFY changed) ///< that it names
public:
    /// Everything outlives the object.
    ThreadSummary(LocalDB& db, AIServices& ai, QObject* parent = nullptr);

    QString html() const;
    QString text() const { return m_summary ? m_summary->text : QString(); }
    QString modelName() const { return m_summary ? m_summary->model.displayName : QString(); }

    QList<Citation> citations() const;

    Q_INVOKABLE void summarize();

private:
    QCoro::Task<> run();
    void forget() override { m_summary.reset(); }

    LocalDB& m_db;
    LumoAISummaryService& m_summaries;
    std::optional<LocalAIThreadSummary> m_summary;
};

}
