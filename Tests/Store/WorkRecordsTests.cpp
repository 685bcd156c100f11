#include "Store/WorkRecords.h"

#include "Support/StoreTest.h"

namespace corvane {

class WorkRecordsTest : public StoreTest {
protected:
    WorkRecordsTest() { open(); }

    template <typename Record> static QStringList ids(const QList<Record>& records)
    {
        QStringList ids;
        for (const Record& record : records)
            ids.append(record.id);
        return ids;
    }
};

TEST_F(WorkRecordsTest, decisionsThatWaitComeByRiskOverAllModules)
{
    m_db->exec("INSERT INTO work_decision(id, context_id, module, title, status, proposal, risk, updated_at) VALUES"
               "('odd', NULL, 'ops', 't', 'proposed', 'p', 'cosmic', '2026-01-09T00:00:00Z'),"
               "('high', 'ctx', 'cx', 't', 'proposed', 'p', 'high', '2026-01-01T00:00:00Z'),"
               "('external', NULL, 'gtm', 't', 'proposed', 'p', 'external', '2026-01-01T00:00:00Z'),"
               "('credential', NULL, 'gtm', 't', 'proposed', 'p', 'credential', '2026-01-01T00:00:00Z'),"
               "('money-old', NULL, 'ops', 't', 'proposed', 'p', 'money', '2026-01-01T00:00:00Z'),"
               "('money-new', NULL, 'dev', 't', 'proposed', 'p', 'money', '2026-01-02T00:00:00Z'),"
               "('gone', NULL, 'dev', 't', 'rejected', 'p', 'money', '2026-01-03T00:00:00Z');");
    EXPECT_EQ(ids(fetchPendingWorkDecisions(*m_db, 50)),
        (QStringList { "money-new", "money-old", "credential", "external", "high", "odd" }));
    EXPECT_EQ(ids(fetchPendingWorkDecisions(*m_db, 2)), (QStringList { "money-new", "money-old" }));
    EXPECT_EQ(ids(fetchWorkDecisions(*m_db, "dev", {}, 50)), (QStringList { "gone", "money-new" }));
    EXPECT_EQ(fetchWorkDecision(*m_db, "odd"),
        (WorkDecisionRecord { "odd", "", "ops", "t", "proposed", "p", "", "cosmic", "", "2026-01-09T00:00:00Z" }));
    EXPECT_EQ(fetchWorkDecision(*m_db, "none"), std::nullopt);
}

}
