#include "Calls/RecordedCalls.h"

#include "Foundation/Literals.h"
#include "Store/Core/LocalDB.h"
#include "Store/Core/StoreWatch.h"

namespace corvane {

namespace {

constexpr int callsShown = 8;
constexpr int proposalsShown = 20;

}

RecordedCalls::RecordedCalls(LocalDB& db, QObject* parent)
    : QObject(parent)
    , m_db(db)
{
    m_db.watch().on(StoreSubject::Work, this, [this] { refresh(); });
}

void RecordedCalls::refresh()
{
    const QList<CallRecordingRow> calls = recentCallRecordings(m_db, callsShown);
    const QList<CRMUpdateProposal> proposals = fetchCRMUpdateProposals(m_db, u"pending"_s, proposalsShown);
    const bool callsChanged = std::exchange(m_recentCalls, calls) != calls;
    if (std::exchange(m_pendingProposals, proposals) != proposals || callsChanged)
        Q_EMIT changed();
}

}
