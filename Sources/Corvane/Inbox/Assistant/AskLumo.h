#pragma once

#include "Inbox/Assistant/GenerationPanel.h"

#include <qcoro/qcorotask.h>

namespace corvane {

struct AIServices;

/// Answers a question about the open person from local data.
class AskLumo final : public corvane::GenerationPanel {
    Q_OBJECT
    Q_PROPERTY(QString heading READ heading NOTIFY changed) ///< "Ask Lumo about Ana"
    Q_PROPERTY(QString placeholder READ placeholder CONSTANT)
    Q_PROPERTY(QString question READ question NOTIFY changed) ///< the current or last one
    Q_PROPERTY(QString answer READ answer NOTIFY changed)
    Q_PROPERTY(QString footer READ footer NOTIFY changed)
    Q_PROPERTY(QString actionLabel READ actionLabel NOTIFY changed)
    Q_PROPERTY(bool canAsk READ canAsk NOTIFY changed)
public:
    /// Everything outlives the object.
    AskLumo(LocalDB& db, AIServices& ai, QObject* parent = nullptr);

    QString heading() const;
    QString placeholder() const;
    const QString& question() const { return m_question; }
    const QString& answer() const { return m_answer; }
    QString footer() const;
    QString actionLabel() const; ///< "Ask", or why nobody can answer
    bool canAsk() const { return !backend().isEmpty() && !m_contact.id.isEmpty(); }

    Q_INVOKABLE void ask(const QString& question); ///< does nothing if it is blank
    Q_INVOKABLE void lookForBackend(); ///< checks again who can answer

private:
    QCoro::Task<> run(QString question);
    void forget() override;

    LocalDB& m_db;
    AIServices& m_services;
    QString m_question;
    QString m_answer;
};

}
