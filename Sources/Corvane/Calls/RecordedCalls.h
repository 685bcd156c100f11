#pragma once

#include "Store/Approvals/CrmProposals.h"
#include "Store/Work/CallQueries.h"

#include <QObject>

namespace corvane {

/// What several screens show of recorded calls, and the CRM changes that they propose.
class RecordedCalls : public QObject {
    Q_OBJECT
public:
    /// `db` outlives the object.
    explicit RecordedCalls(LocalDB& db, QObject* parent = nullptr);

    LocalDB& db() { return m_db; }
    void refresh();

    const QList<CallRecordingRow>& recentCalls() const { return m_recentCalls; } ///< the 8 newest
    const QList<CRMUpdateProposal>& pendingProposals() const { return m_pendingProposals; } ///< the 20 newest

Q_SIGNALS:
    void changed();

private:
    LocalDB& m_db;
    QList<CallRecordingRow> m_recentCalls;
    QList<CRMUpdateProposal> m_pendingProposals;
};

}
