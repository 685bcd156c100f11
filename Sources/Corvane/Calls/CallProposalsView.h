#pragma once

#include "Calls/CallRows.h"

#include <QHash>

namespace corvane {

class RecordedCalls;

/// The CRM changes that a call proposes, for the user to decide.
class CallProposalsView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QList<corvane::CallProposalRow> rows READ rows NOTIFY changed)
public:
    explicit CallProposalsView(RecordedCalls& recorded, QObject* parent = nullptr); ///< `recorded` outlives it

    void show(const QString& callId); ///< with an empty id: none

    const QList<CallProposalRow>& rows() const { return m_rows; }

    Q_INVOKABLE void applyProposal(const QString& id);
    Q_INVOKABLE void rejectProposal(const QString& id);

Q_SIGNALS:
    void changed();
    void refused(const QString& why);

private:
    void decide(const QString& id, bool apply);

    RecordedCalls& m_recorded;
    QString m_callId;
    QList<CallProposalRow> m_rows;
    QHash<QString, QString> m_seen; ///< their hashes as shown
};

}
