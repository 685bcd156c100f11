#pragma once

#include "Inbox/Assistant/GenerationPanel.h"

#include <qcoro/qcorotask.h>

namespace corvane {

struct AIServices;

/// A question about the person whose thread is open, answered from what is known here.
class AskLumo final : public corvane::GenerationPanel {
    Q_OBJECT
    Q_PROPERTY(QString heading READ heading NOTIFY changed) ///< "Ask Lumo about Ana"
    Q_PROPERTY(QString placeholder READ placeholder CONSTANT)
    Q_PROPERTY(QString question READ question NOTIFY changed) ///< that is being, or was, answered
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
    QString actionLabel() const; ///< "Ask", or that nobody is there to answer
    bool canAsk() const { return !backend().isEmpty() && !m_contact.id.isEmpty(); }

    Q_INVOKABLE void ask(const QString& question); ///< a blank one does nothing
    Q_INVOKABLE void lookForBackend(); ///< who is there may have come or gone since the last look

private:
    QCoro::Task<> run(QString question);
    void forget() override;

    LocalDB& m_db;
    AIServices& m_services;
    QString m_question;
    QString m_answer;
};

}
