#include "Foundation/Literals.h"
#include "Store/Approvals/DraftApprovals.h"
#include "Store/Core/Workspaces.h"
#include "Store/Messages/IngestQueries.h"
#include "Store/Sync/SyncQueries.h"
#include "Support/Drafts.h"
#include "Support/StoreTest.h"

namespace corvane {

class OutboundTest : public StoreTest {
protected:
    OutboundTest()
    {
        open();
        m_conversation = ensureConversation(*m_db, "SMS", "main", "34600", u"Ana"_s, 5);
    }

    QString queue(const char* body)
    {
        EXPECT_TRUE(queueDraft(*m_db, m_conversation, QString::fromUtf8(body), "compose"));
        return fetchDrafts(*m_db, { DraftStatus::Pending }, 50).last().id;
    }

    QString m_conversation;
};

TEST_F(OutboundTest, aDraftIsQueuedForItsConversation)
{
    const QString id = queue("hello");
    EXPECT_TRUE(id.startsWith(u"od:%1:"_s.arg(m_clock.nowMs())));
    const QList<PendingDraft> expected { { id, m_conversation, "SMS", "main", "34600", "Ana", "hello", "pending",
        "compose", "", "", "" } };
    EXPECT_EQ(fetchDrafts(*m_db, { DraftStatus::Failed, DraftStatus::Pending }, 50), expected);
    EXPECT_EQ(fetchDrafts(*m_db, { DraftStatus::Approved }, 50).size(), 0);
    EXPECT_EQ(fetchDrafts(*m_db, {}, 50).size(), 0);
    m_db->exec("UPDATE unified_conversation SET title=NULL;");
    m_clock.advance(seconds(1));
    queue("untitled");
    EXPECT_EQ(fetchDrafts(*m_db, { DraftStatus::Pending }, 50).last().title, "34600");
}

TEST_F(OutboundTest, theSubjectAndTheFilesBelongToTheDraftAndToItsHash)
{
    const OutgoingMessage message { "see \u201cplan\u201d", "Plan", { { "/o/1/plan.pdf", "plan.pdf", 7, "ab" } } };
    ASSERT_TRUE(queueDraft(*m_db, m_conversation, message, "compose"));
    const PendingDraft draft = fetchDrafts(*m_db, { DraftStatus::Pending }, 50).first();
    EXPECT_EQ((OutgoingMessage { draft.body, draft.subject, *filesFromText(draft.files) }), message);
    EXPECT_EQ(fetchDraftFiles(*m_db), message.files);

    const QString seen = draftHash(draft);
    for (const char* change : { "subject='Other'", "files=replace(files,'\"ab\"','\"cd\"')", "files=NULL" }) {
        m_db->exec(u"SAVEPOINT before; UPDATE outbound_draft SET %1;"_s.arg(change));
        EXPECT_EQ(approveDraft(*m_db, draft.id, seen), Decided::Changed) << change;
        m_db->exec("ROLLBACK TO before; RELEASE before;");
    }
    EXPECT_EQ(approveDraft(*m_db, draft.id, seen), Decided::Taken);

    const QString other = queue("text alone");
    m_db->exec("UPDATE outbound_draft SET files='[{}]' WHERE body='text alone';");
    EXPECT_FALSE(fetchDraftFiles(*m_db)) << "nobody knows which files it needs";
    markDraft(*m_db, other, "rejected");
    markDraft(*m_db, draft.id, "sent");
    EXPECT_EQ(fetchDraftFiles(*m_db), QList<OutgoingFile>());
}

TEST_F(OutboundTest, draftsComeInTheOrderOfUrgency)
{
    for (const char* state : { "placed", "sending", "pending", "failed", "pending" }) {
        m_clock.advance(seconds(1));
        markDraft(*m_db, queue(state), QString::fromUtf8(state));
    }
    QStringList order;
    for (const PendingDraft& draft :
        fetchDrafts(*m_db, { DraftStatus::Failed, DraftStatus::Pending, DraftStatus::Sending, DraftStatus::Placed }, 4))
        order.append(draft.status);
    EXPECT_EQ(order, (QStringList { "failed", "pending", "pending", "sending" }));
    m_db->exec("UPDATE outbound_draft SET workspace_id='elsewhere';");
    EXPECT_EQ(fetchDrafts(*m_db, { DraftStatus::Failed, DraftStatus::Pending }, 50).size(), 0);
}

TEST_F(OutboundTest, aDraftInFlightIsNotEdited)
{
    const QString id = queue("first");
    updateDraftBody(*m_db, id, "second");
    markDraft(*m_db, id, "sending");
    updateDraftBody(*m_db, id, "third");
    EXPECT_EQ(cell("SELECT body FROM outbound_draft;"), "second");
}

TEST_F(OutboundTest, syncHealthIsListedWithUnknownSourcesLast)
{
    m_db->exec("INSERT INTO sync_health(source, status, last_started_at, cursor, counts_json, last_error, updated_at)"
               " VALUES('zzz','ok',NULL,0,'{}',NULL,1), ('corvane_ingest','ok',NULL,0,'{}',NULL,1),"
               " ('crm','ok',NULL,0,'{}',NULL,1), ('bootstrap','error',7,3,'{\"a\":1}','down',1),"
               " ('outbound_drafts','ok',NULL,0,'{}',NULL,1), ('inbox','ok',NULL,0,'{}',NULL,1);");
    const auto rows = fetchSyncHealthRows(*m_db);
    QStringList sources;
    for (const SyncHealthRow& row : rows)
        sources.append(row.source);
    EXPECT_EQ(sources, (QStringList { "bootstrap", "inbox", "outbound_drafts", "crm", "corvane_ingest", "zzz" }));
    EXPECT_EQ(rows.first(), (SyncHealthRow { "bootstrap", "error", 7, std::nullopt, 3, "{\"a\":1}", "down" }));
}

TEST_F(OutboundTest, aPullIsAskedForInTheActiveWorkspace)
{
    selectWorkspace(*m_db, "w1");
    const QString id = queueWebPullSync(*m_db, "settings");
    EXPECT_TRUE(id.startsWith(u"sync:%1:"_s.arg(m_clock.nowMs())));
    EXPECT_EQ(table("SELECT id, workspace_id, kind, status, source, requested_at, started_at FROM sync_command"),
        QStringList { id + u"|w1|web_pull|pending|settings|%1|-"_s.arg(m_clock.nowMs()) });
}

}
