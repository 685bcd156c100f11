#pragma once

#include "Store/Approvals/OutboundQueries.h"

#include <QObject>

namespace corvane {

class ApprovalsStore;

/// The draft that a person edits, one at a time and the same on every surface. The words stay here until the row has
/// them or the person closes them; a row that no longer waits does not take them, and says why.
class DraftEdit : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString draftId READ draftId NOTIFY changed) ///< empty where none is edited
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(QString problem READ problem NOTIFY changed) ///< why the row has not taken the words, or empty
    Q_PROPERTY(bool canSave READ canSave NOTIFY textChanged)
    Q_PROPERTY(bool lost READ lost NOTIFY changed) ///< the row no longer waits: the words can only be copied
public:
    /// The store outlives the object.
    explicit DraftEdit(ApprovalsStore& store, QObject* parent = nullptr);

    const QString& draftId() const { return m_draft.id; }
    const QString& text() const { return m_text; }
    void setText(const QString& text);
    const QString& problem() const { return m_problem; }
    bool canSave() const { return !m_lost && !m_text.trimmed().isEmpty(); }
    bool lost() const { return m_lost; }

    /// With the edited draft where it was, also where it no longer waits: its words keep their place.
    QList<PendingDraft> withLost(QList<PendingDraft> drafts) const;

    Q_INVOKABLE void begin(const QString& draftId); ///< nothing where it does not wait, or other words are kept
    Q_INVOKABLE void save(); ///< ends it where the row took the words
    Q_INVOKABLE void close(); ///< and forgets the words

Q_SIGNALS:
    void changed();
    void textChanged();

private:
    void follow();

    ApprovalsStore& m_store;
    PendingDraft m_draft; ///< as it was last seen waiting
    qsizetype m_place = 0; ///< in the list, then
    QString m_text;
    QString m_problem;
    bool m_lost = false;
};

}
