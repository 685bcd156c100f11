#pragma once

#include "Presentation/Form.h"
#include "Work/WorkCreateFlows.h"

namespace corvane {

/// The sheet for creating something: a context, an item, a note or a question. A save that fails keeps what was typed.
class WorkCreate final : public corvane::Form {
    Q_OBJECT
    Q_PROPERTY(QString noContext READ noContext NOTIFY changed)
    Q_PROPERTY(QStringList contexts READ contexts NOTIFY changed) ///< to choose from
    Q_PROPERTY(QString chosenContext READ chosenContext NOTIFY changed)
    Q_PROPERTY(QString priorityLabel READ priorityLabel NOTIFY changed) ///< empty if it has none
    Q_PROPERTY(QString priority READ priority WRITE setPriority NOTIFY changed) ///< of an item, or a question's urgency
    Q_PROPERTY(QStringList priorities READ priorities CONSTANT)
    Q_PROPERTY(bool forLumo READ forLumo NOTIFY changed) ///< it may be answered by Lumo
    Q_PROPERTY(bool toLumo READ toLumo WRITE setToLumo NOTIFY changed)
public:
    WorkCreate(LocalDB& db, QObject* parent); ///< the database outlives it

    /// Without a context in the place, the person may choose one of `contexts`.
    void setPlace(const WorkPlace& place, const QString& contextNoun, const QList<WorkContextRow>& contexts);
    const WorkPlace& placed() const { return m_chosen ? *m_chosen : m_place; } ///< with the chosen context

    bool isOpen() const override { return m_open; }
    QString title() const override;
    QString hint() const override; ///< where it will be added
    QString buttonLabel() const override;
    bool complete() const override { return true; } ///< `submit` reports what is missing
    QString message() const override; ///< why it was not saved, or what else it will do
    QString messageKind() const override;

    QString noContext() const;
    QStringList contexts() const;
    QString chosenContext() const;
    QString priorityLabel() const;
    const QString& priority() const;
    void setPriority(const QString& priority);
    QStringList priorities() const;
    bool forLumo() const { return m_draft.flow == WorkCreateFlow::Ask; }
    bool toLumo() const { return asksLumo(m_draft); }
    void setToLumo(bool toLumo);

    /// `flow` is context, item, note or ask; an empty `kind` is the usual one.
    Q_INVOKABLE void begin(const QString& flow, const QString& kind = {}, const QString& title = {});
    Q_INVOKABLE void beginQuickAction(const QString& title, const QString& subtitle);
    Q_INVOKABLE void chooseContext(const QString& title); ///< empty: none
    void submit() override;
    void close() override;

Q_SIGNALS:
    void contextSaved(const QString& id);
    void askSaved(const corvane::OpsAskRow& ask, bool forLumo);
    void wrote();

private:
    void edited() override;
    void show(const WorkDraft& draft);
    WorkDraft draft() const; ///< with the content of the fields
    QString riskText() const;
    std::optional<Error> write(const WorkDraft& draft);

    LocalDB& m_db;
    WorkPlace m_place;
    std::optional<WorkPlace> m_chosen;
    QList<WorkContextRow> m_contexts;
    QString m_contextNoun;
    WorkDraft m_draft; ///< its initial content, and what is chosen outside the fields
    bool m_open = false;
    QString m_error;
};

}
