#pragma once

#include "Foundation/Literals.h"
#include "Presentation/Choice.h"
#include "Work/WorkCreateFlows.h"

#include <QObject>

namespace corvane {

/// The sheet for creating something: a context, an item, a note or a question.
class WorkCreate : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool open READ isOpen NOTIFY changed)
    Q_PROPERTY(QString flow READ flow NOTIFY changed) ///< context, item, note or ask
    Q_PROPERTY(QString heading READ heading NOTIFY changed)
    Q_PROPERTY(QString place READ place NOTIFY changed) ///< where it will be added
    Q_PROPERTY(QString noContext READ noContext NOTIFY changed)
    Q_PROPERTY(QStringList contexts READ contexts NOTIFY changed) ///< to choose from
    Q_PROPERTY(QString chosenContext READ chosenContext NOTIFY changed)
    Q_PROPERTY(QString title READ title WRITE setTitle NOTIFY changed)
    Q_PROPERTY(QString titleLabel READ titleLabel NOTIFY changed)
    Q_PROPERTY(QString summary READ summary WRITE setSummary NOTIFY changed)
    Q_PROPERTY(QString summaryLabel READ summaryLabel NOTIFY changed)
    Q_PROPERTY(QString kind READ kind WRITE setKind NOTIFY changed)
    Q_PROPERTY(QString owner READ owner WRITE setOwner NOTIFY changed)
    Q_PROPERTY(QString priority READ priority WRITE setPriority NOTIFY changed)
    Q_PROPERTY(QString urgency READ urgency WRITE setUrgency NOTIFY changed)
    Q_PROPERTY(bool toLumo READ toLumo WRITE setToLumo NOTIFY changed)
    Q_PROPERTY(QString riskText READ riskText NOTIFY changed) ///< other effects; empty for none
    Q_PROPERTY(QString error READ error NOTIFY changed)
    Q_PROPERTY(QStringList priorities READ priorities CONSTANT)
public:
    WorkCreate(LocalDB& db, QObject* parent); ///< the database outlives it

    /// Without a context in the place, the person may choose one of `contexts`.
    void setPlace(const WorkPlace& place, const QString& contextNoun, const QList<WorkContextRow>& contexts);
    const WorkPlace& placed() const { return m_chosen ? *m_chosen : m_place; } ///< with the chosen context

    bool isOpen() const { return m_open; }
    QString flow() const;
    QString heading() const;
    QString place() const;
    QString noContext() const { return u"In no %1"_s.arg(m_contextNoun); }
    QStringList contexts() const;
    QString chosenContext() const;
    const QString& title() const { return m_draft.title; }
    void setTitle(const QString& title) { edit(m_draft.title, title); }
    QString titleLabel() const;
    const QString& summary() const { return m_draft.summary; }
    void setSummary(const QString& summary) { edit(m_draft.summary, summary); }
    QString summaryLabel() const;
    const QString& kind() const { return m_draft.kind; }
    void setKind(const QString& kind) { edit(m_draft.kind, kind); }
    const QString& owner() const { return m_draft.owner; }
    void setOwner(const QString& owner) { edit(m_draft.owner, owner); }
    const QString& priority() const { return m_draft.priority; }
    void setPriority(const QString& priority) { edit(m_draft.priority, priority); }
    const QString& urgency() const { return m_draft.askUrgency; }
    void setUrgency(const QString& urgency) { edit(m_draft.askUrgency, urgency); }
    bool toLumo() const { return asksLumo(m_draft); }
    void setToLumo(bool toLumo);
    QString riskText() const;
    const QString& error() const { return m_error; }
    QStringList priorities() const { return { u"high"_s, u"normal"_s, u"low"_s }; }

    Q_INVOKABLE void begin(const QString& flow);
    Q_INVOKABLE void beginQuickAction(const QString& title, const QString& subtitle);
    Q_INVOKABLE void chooseContext(const QString& title); ///< empty: none
    Q_INVOKABLE void save();
    Q_INVOKABLE void cancel();

Q_SIGNALS:
    void changed();
    void contextSaved(const QString& id);
    void askSaved(const corvane::OpsAskRow& ask, bool forLumo);
    void wrote();

private:
    void show(const WorkDraft& draft);
    void edit(QString& field, const QString& value);
    std::optional<Error> write();

    LocalDB& m_db;
    WorkPlace m_place;
    std::optional<WorkPlace> m_chosen;
    QList<WorkContextRow> m_contexts;
    QString m_contextNoun = u"context"_s;
    WorkDraft m_draft;
    bool m_open = false;
    QString m_error;
};

}
