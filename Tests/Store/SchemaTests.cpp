#include "Foundation/Literals.h"
#include "Support/Places.h"
#include "Support/StoreTest.h"

#include <QDir>
#include <QFile>

namespace corvane {

class SchemaTest : public StoreTest {
protected:
    QStringList shape() { return table("SELECT type, name, tbl_name, sql FROM sqlite_master ORDER BY type, name"); }
    QStringList tables() { return table("SELECT name FROM sqlite_master WHERE type='table' ORDER BY name"); }

    /// Creates the database file before the program opens it, as an older version would have.
    void prepare(const char* sql)
    {
        QDir().mkpath(m_home.paths().applicationSupport);
        OtherProcess(path()).exec(sql);
    }
};

TEST_F(SchemaTest, aFreshFileHoldsEveryTable)
{
    open();
    const QStringList expected { "_sync_state", "account_features", "ai_requests", "approval_record", "ask",
        "audio_transcript", "calendar_command", "calendar_event", "call_auto_record_state", "call_recording",
        "call_recording_rule", "call_summary", "call_transcript", "cloud_keep_local", "cloud_left_out",
        "cloud_sync_cursor", "company", "contact", "contact_identity", "contact_merge", "contact_note", "contact_tag",
        "crm_deal", "crm_mutation_queue", "crm_task", "crm_update_proposal", "deal", "dev_browser_session", "dev_srs",
        "draft_approval", "draft_metadata", "engine_info", "engine_settings", "meeting_prep_cache", "message",
        "outbound_draft", "pipeline", "project", "sync_command", "sync_health", "sync_workspace",
        "sync_workspace_selection", "tab", "unified_conversation", "unified_message", "update", "work_agent",
        "work_context", "work_decision", "work_evidence", "work_item", "work_memory", "work_memory_entries",
        "work_message", "work_session" };
    EXPECT_EQ(tables(), expected);
    const QStringList first = shape();
    open();
    EXPECT_EQ(shape(), first) << "a second start changes nothing";
    EXPECT_EQ(m_log.lines(), QStringList());
}

TEST_F(SchemaTest, anOlderFileGrowsAndKeepsItsRows)
{
    open();
    const QStringList current = tables();
    const QStringList indexes = table("SELECT name FROM sqlite_master WHERE type='index' ORDER BY name");
    m_db.reset();
    QFile::remove(path());
    prepare("CREATE TABLE unified_conversation (id TEXT PRIMARY KEY, workspace_id TEXT, channel TEXT, account_id TEXT,"
            " external_id TEXT, title TEXT, contact_id TEXT, last_ts INTEGER, unread INTEGER, updated_at INTEGER,"
            " deleted_at INTEGER);"
            "CREATE TABLE unified_message (id TEXT PRIMARY KEY, workspace_id TEXT, conversation_id TEXT,"
            " direction TEXT, body TEXT, sender TEXT, ts INTEGER, provider_msg_id TEXT, attachments TEXT,"
            " updated_at INTEGER, deleted_at INTEGER);"
            "CREATE TABLE contact (id TEXT PRIMARY KEY, workspace_id TEXT, display_name TEXT, updated_at INTEGER,"
            " deleted_at INTEGER);"
            "CREATE TABLE draft_metadata (id TEXT PRIMARY KEY, workspace_id TEXT NOT NULL DEFAULT 'local');"
            "CREATE TABLE audio_transcript (message_id TEXT PRIMARY KEY);"
            "CREATE TABLE outbound_draft (id TEXT PRIMARY KEY, workspace_id TEXT NOT NULL DEFAULT 'local',"
            " conversation_id TEXT NOT NULL, channel TEXT NOT NULL, account_id TEXT NOT NULL, external_id TEXT NOT"
            " NULL, title TEXT, body TEXT NOT NULL, status TEXT NOT NULL DEFAULT 'pending', source TEXT DEFAULT"
            " 'mcp', created_at INTEGER NOT NULL, updated_at INTEGER NOT NULL);"
            "INSERT INTO unified_message(id, body) VALUES('wa:msg:1', 'hello');"
            "INSERT INTO draft_metadata(id) VALUES('d');");
    open();
    EXPECT_EQ(tables(), current);
    EXPECT_EQ(table("SELECT name FROM sqlite_master WHERE type='index' ORDER BY name"), indexes);
    EXPECT_EQ(
        table("SELECT id, body, media_type, media_path, status, reaction, reactions, source FROM unified_message"),
        QStringList { "wa:msg:1|hello|-|-|-|-|-|-" });
    EXPECT_EQ(table("SELECT id, contact_id, conversation_id, intent, model, prompt_ref, result_ref, used_message_ids, "
                    "warnings, created_at FROM draft_metadata"),
        QStringList { "d|-|-|draft|-|-|-|-|-|0" });
    EXPECT_TRUE(m_db->columnExists("unified_conversation", "muted"));
    EXPECT_TRUE(m_db->columnExists("audio_transcript", "updated_at"));
    EXPECT_TRUE(m_db->columnExists("outbound_draft", "web_ack_error"));
    EXPECT_EQ(m_log.lines(), QStringList());
}

TEST_F(SchemaTest, requestsUnderAnOldStatusConstraintMoveToANewTableOnce)
{
    prepare("CREATE TABLE ai_requests (id TEXT PRIMARY KEY, instructions TEXT NOT NULL DEFAULT '', prompt TEXT NOT"
            " NULL, status TEXT NOT NULL DEFAULT 'pending' CHECK(status IN ('pending','done','error')), response"
            " TEXT, error TEXT, created_at INTEGER NOT NULL, completed_at INTEGER);"
            "INSERT INTO ai_requests(id, prompt, status, response, created_at, completed_at)"
            " VALUES('a', 'one', 'done', 'yes', 5, 6), ('b', 'two', 'pending', NULL, 7, NULL);");
    open();
    const QString rows = "SELECT id, prompt, status, response, created_at, claimed_at, claimed_by, completed_at FROM "
                         "ai_requests ORDER BY id";
    const QStringList expected { "a|one|done|yes|5|-|-|6", "b|two|pending|-|7|-|-|-" };
    EXPECT_EQ(table(rows), expected);
    EXPECT_TRUE(m_db->run("UPDATE ai_requests SET status='processing', claimed_by='x' WHERE id='b';"));
    EXPECT_FALSE(m_db->tableExists("ai_requests_legacy_status"));
    const QStringList first = shape();
    open();
    EXPECT_EQ(shape(), first);
    EXPECT_EQ(cell("SELECT claimed_by FROM ai_requests WHERE id='b';"), "x");
    EXPECT_EQ(m_log.lines(), QStringList());
}

TEST_F(SchemaTest, aRebuildThatWasCutShortIsFinishedAtTheNextStart)
{
    open();
    m_db->exec("CREATE TABLE ai_requests_legacy_status (id TEXT PRIMARY KEY, instructions TEXT NOT NULL DEFAULT '',"
               " prompt TEXT, status TEXT, response TEXT, error TEXT, created_at INTEGER, claimed_at INTEGER,"
               " completed_at INTEGER);"
               "INSERT INTO ai_requests_legacy_status(id, prompt, status, created_at, claimed_at)"
               " VALUES('a', 'one', 'done', 5, 8), ('b', 'two', 'pending', 7, NULL);"
               "INSERT INTO ai_requests(id, prompt, created_at) VALUES('a', 'newer', 9);");
    open();
    EXPECT_EQ(
        table("SELECT id, prompt, claimed_at FROM ai_requests ORDER BY id"), (QStringList { "a|newer|-", "b|two|-" }));
    EXPECT_FALSE(m_db->tableExists("ai_requests_legacy_status"));
}

TEST_F(SchemaTest, requestsWithoutAConstraintOnlyGetTheMissingColumns)
{
    prepare("CREATE TABLE ai_requests (id TEXT PRIMARY KEY, instructions TEXT, prompt TEXT, status TEXT, response"
            " TEXT, error TEXT, created_at INTEGER, completed_at INTEGER);"
            "INSERT INTO ai_requests(id, status) VALUES('a', 'odd');");
    open();
    EXPECT_EQ(table("SELECT id, status, claimed_at, claimed_by FROM ai_requests"), QStringList { "a|odd|-|-" });
    EXPECT_FALSE(m_db->tableSQL("ai_requests")->contains("CHECK"));
}

TEST_F(SchemaTest, withoutTheBaseFileNothingIsMade)
{
    QFile::remove(m_home.paths().resources + "/local-schema");
    open();
    EXPECT_EQ(m_log.lines(), QStringList { "LocalDB: schema file not found" });
    EXPECT_EQ(tables(), QStringList());
}

TEST_F(SchemaTest, withoutTheOpsFileTheRestStillComes)
{
    QFile::remove(m_home.paths().resources + "/local-schema");
    QDir(m_home.path("")).mkpath("nimb/apps/nimb-local/local-schema"); // the second search path
    QFile::copy(
        CORVANE_SOURCE "/local-schema/schema-v1.sql", m_home.path("nimb/apps/nimb-local/local-schema/schema-v1.sql"));
    open();
    EXPECT_EQ(m_log.lines(),
        (QStringList { "LocalDB: ops schema file not found", "LocalDB exec error: no such table: project" }));
    EXPECT_TRUE(m_db->columnExists("unified_message", "source"));
    EXPECT_TRUE(m_db->tableExists("crm_mutation_queue"));
}

TEST_F(SchemaTest, theStatusPseudoConversationIsDeletedAtEveryStart)
{
    open();
    m_db->exec("INSERT INTO unified_conversation(id, external_id) VALUES('s','status@broadcast'), ('c','1@g.us');");
    open();
    EXPECT_EQ(table("SELECT id, deleted_at FROM unified_conversation ORDER BY id"),
        (QStringList { "c|-", u"s|%1"_s.arg(m_clock.nowMs()) }));
}

}
