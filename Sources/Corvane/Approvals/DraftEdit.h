#pragma once

#include "Store/Approvals/OutboundQueries.h"

#include <QObject>

namespace corvane {

class ApprovalsStore;

/// The draft being edited, one at a time and the same on every surface. The edited text stays here until the row has it
/// or the user closes it; a row that is no longer pending refuses it with a reason.
class DraftEdit : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString draftId READ draftId NOTIFY changed) ///< empty if none is edited
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(QString problem READ problem NOTIFY changed) ///< why saving failed, or empty
    Q_PROPERTY(bool canSave READ canSave NOTIFY textChanged)
    Q_PROPERTY(bool lost READ lost NOTIFY changed) ///< the row is no longer pending: the text can only be copied
public:
    /// The store outlives the object.
    explicit DraftEdit(ApprovalsStore& store, QObject* parent = nullptr);

    const QString& draftId() const { return m_draft.id; }
    const QString& text() const { return m_text; }
    void setText(const QString& text);
    const QString& problem() const { return m_problem; }
    bool canSave() const { return !m_lost && !m_text.trimmed().isEmpty(); }
    bool lost() const { return m_lost; }

    /// With the edited draft at its place, even if it is no longer pending.
    QList<PendingDraft> withLost(QList<PendingDraft> drafts) const;

    Q_INVOKABLE void begin(const QString& draftId); ///< does nothing if it is not pending, or another edit is open
    Q_INVOKABLE void save(); ///< closes it if saving succeeded
    Q_INVOKABLE void close(); ///< and discards the text

Q_SIGNALS:
    void changed();
    void textChanged();

private:
    void follow();

    ApprovalsStore& m_store;
    PendingDraft m_draft; ///< as last seen pending
    qsizetype m_place = 0; ///< its last index in the list
    QString m_text;
    QString m_problem;
    bool m_lost = false;
};

}
