#include "Foundation/Literals.h"
#include "Store/Approvals/CrmProposals.h"
#include "Store/Messages/IngestQueries.h"
#include "Store/People/ContactInfo.h"
#include "Store/People/CrmRecords.h"
#include "Support/StoreTest.h"
#include "Support/WaitingItems.h"

namespace corvane {

class CrmTest : public StoreTest {
protected:
    CrmTest()
    {
        open();
        ensureConversation(*m_db, "EMAIL", "main", "ana@example.com", "Ana", 1);
    }

    void propose(const char* id, const char* kind, const char* payload, const std::optional<QString>& contact = {},
        const std::optional<QString>& call = {}, const char* title = "Add call note")
    {
        m_db->run("INSERT INTO crm_update_proposal(id, call_id, contact_id, kind, title, payload_json, confidence, "
                  "created_at, updated_at) VALUES(?,?,?,?,?,?,0.4,?,0);",
            { QString::fromUtf8(id), call, contact, QString::fromUtf8(kind), QString::fromUtf8(title),
                QString::fromUtf8(payload), m_clock.nowMs() });
    }

    void call(const char* id)
    {
        m_db->run("INSERT INTO call_recording(id, started_at, created_at, updated_at) VALUES(?,?,0,0);",
            { QString::fromUtf8(id), m_clock.nowMs() });
    }

    CRMUpdateProposal at(const char* id) { return crmProposal(*m_db, id).value_or(CRMUpdateProposal()); }

    /// The queue of changes for the web, as "entity/action".
    QStringList queued()
    {
        return m_db->rows("SELECT entity_type, action FROM crm_mutation_queue WHERE origin='native-ui' ORDER BY rowid;",
            {}, [](const SqlRow& row) { return row.text(0) + u'/' + row.text(1); });
    }

    const QString ana = "ct:EMAIL:ana@example.com";
};

TEST_F(CrmTest, aNoteWithoutAContactWaitsUntilOneIsLinked)
{
    propose("p", "note", R"({"body":"  Wants a quote \n"})");
    EXPECT_FALSE(applyAsSeen(*m_db, "p"));
    EXPECT_EQ(at("p").status, "pending");
    EXPECT_EQ(at("p").error, "No contact linked. Open CRM and link this call first.");
    EXPECT_EQ(at("p").bodyPreview(), "  Wants a quote \n");

    EXPECT_FALSE(linkCRMUpdateProposal(*m_db, "p", " "));
    EXPECT_FALSE(linkCRMUpdateProposal(*m_db, "p", "ct:EMAIL:nobody"));
    EXPECT_FALSE(linkCRMUpdateProposal(*m_db, "none", ana));
    EXPECT_TRUE(linkCRMUpdateProposal(*m_db, "p", ana));
    EXPECT_EQ(at("p").error, "");
    EXPECT_DOUBLE_EQ(at("p").confidence, 0.98);

    EXPECT_TRUE(applyAsSeen(*m_db, "p"));
    EXPECT_EQ(applyCRMUpdateProposal(*m_db, "p", proposalHash(at("p"))), Decided::AlreadySo) << "once is enough";
    EXPECT_FALSE(linkCRMUpdateProposal(*m_db, "p", ana));
    EXPECT_EQ(rejectCRMUpdateProposal(*m_db, "p"), Decided::Refused) << "what was applied stays applied";
    EXPECT_EQ(table("SELECT status, applied_at, rejected_at, error FROM crm_update_proposal;"),
        QStringList(u"applied|%1|-|-"_s.arg(m_clock.nowMs())));
    ASSERT_EQ(fetchNotes(*m_db, ana).size(), 1);
    EXPECT_EQ(fetchNotes(*m_db, ana).first().body, "Wants a quote");
    EXPECT_EQ(queued(), QStringList("contact_note/create"));
}

TEST_F(CrmTest, aProposalThatCannotBeAppliedSaysWhyAndStays)
{
    propose("empty", "note", R"({"body":" "})", ana);
    propose("garbage", "note", "{\"body\":", ana);
    propose("list", "note", "[1]", ana);
    propose("deal", "deal", "{}", ana);
    for (const char* id : { "empty", "garbage", "list", "deal", "none" })
        EXPECT_FALSE(applyAsSeen(*m_db, id)) << id;
    for (const char* id : { "empty", "garbage", "list" })
        EXPECT_EQ(at(id).error, "Call note payload is empty.") << id;
    EXPECT_EQ(at("deal").error, "Unsupported proposal kind: deal");
    propose("timeless", "event", R"({"title":"Lunch","startMs":20,"endMs":"30"})", ana);
    EXPECT_FALSE(applyAsSeen(*m_db, "timeless"));
    EXPECT_EQ(at("timeless").error, "The event has no time.");
    EXPECT_EQ(rejectCRMUpdateProposal(*m_db, "timeless"), Decided::Taken);
    EXPECT_EQ(fetchCRMUpdateProposals(*m_db, "pending", 10).size(), 4);

    EXPECT_EQ(rejectCRMUpdateProposal(*m_db, "deal"), Decided::Taken);
    EXPECT_EQ(rejectCRMUpdateProposal(*m_db, "deal"), Decided::AlreadySo);
    EXPECT_EQ(rejectCRMUpdateProposal(*m_db, "none"), Decided::Refused);
    EXPECT_EQ(applyCRMUpdateProposal(*m_db, "deal", proposalHash(at("deal"))), Decided::Refused);
    EXPECT_EQ(at("deal").status, "rejected");
    EXPECT_EQ(at("deal").error, "");
    EXPECT_EQ(fetchCRMUpdateProposals(*m_db, "pending", 10).size(), 3);
    EXPECT_EQ(fetchCRMUpdateProposals(*m_db, "", 10).size(), 5);
    EXPECT_EQ(fetchCRMUpdateProposals(*m_db, "", 2).size(), 2);
}

TEST_F(CrmTest, aNoteThatCannotBeSavedIsStillProposed)
{
    propose("p", "note", R"({"body":"hi"})", ana);
    m_db->exec("CREATE TRIGGER full BEFORE INSERT ON contact_note BEGIN SELECT RAISE(ABORT, 'disk full'); END;");
    EXPECT_FALSE(applyAsSeen(*m_db, "p"));
    EXPECT_EQ(at("p").status, "pending");
    EXPECT_FALSE(at("p").error.isEmpty());
    EXPECT_EQ(queued(), QStringList());

    m_db->exec("DROP TRIGGER full; CREATE TRIGGER stuck BEFORE UPDATE ON crm_update_proposal WHEN NEW.status='applied' "
               "BEGIN SELECT RAISE(ABORT, 'disk full'); END;");
    EXPECT_FALSE(applyAsSeen(*m_db, "p"));
    EXPECT_EQ(fetchNotes(*m_db, ana).size(), 0) << "or the next try would write it twice";
    m_db->exec("DROP TRIGGER stuck;");
    EXPECT_TRUE(applyAsSeen(*m_db, "p"));
    EXPECT_EQ(fetchNotes(*m_db, ana).size(), 1);
}

TEST_F(CrmTest, aTaskTakesTheProposalsTitleWhereThePayloadHasNone)
{
    propose("bare", "task", "", {}, {}, "Send the quote");
    propose("full", "task", R"({"title":" Ring back ","due":"Friday","priority":"High","status":"Doing"})", ana);
    EXPECT_TRUE(applyAsSeen(*m_db, "bare"));
    EXPECT_TRUE(applyAsSeen(*m_db, "full"));
    EXPECT_EQ(at("full").bodyPreview(), " Ring back \nDue: Friday\nPriority: High");
    EXPECT_EQ(table("SELECT title, due, priority, status, contact_id FROM crm_task ORDER BY rowid;"),
        (QStringList { "Send the quote||Normal|To do|-", "Ring back|Friday|High|Doing|" + ana }));
    EXPECT_EQ(queued(), (QStringList { "task/create", "task/create" }));
}

TEST_F(CrmTest, anAppliedEventIsAskedOfTheCalendar)
{
    propose("e", "event",
        R"({"title":"Lunch","startMs":1763982000000,"endMs":1763985600000,"location":"Bar Sol","calendar":"Work"})",
        ana);
    EXPECT_EQ(at("e").bodyPreview(), "Mon 24 Nov 2025, 12:00 to 13:00\nBar Sol");
    EXPECT_TRUE(applyAsSeen(*m_db, "e"));
    propose("late", "event", R"({"startMs":1763982000000,"endMs":1764068400000,"notes":"Two\ndays"})");
    EXPECT_EQ(at("late").bodyPreview(), "Mon 24 Nov 2025, 12:00 to Tue 25 Nov 2025, 12:00\nTwo\ndays");
    propose("bare", "event", R"({"location":"Bar Sol"})");
    EXPECT_EQ(at("bare").bodyPreview(), "Bar Sol");
    for (const char* span : { R"({"startMs":0,"endMs":5})", R"({"startMs":5,"endMs":5})", R"({"endMs":5})" }) {
        propose(span, "event", span);
        EXPECT_FALSE(applyAsSeen(*m_db, span)) << span;
    }
    propose("usual", "task", R"({"title":"Call","priority":"Normal"})");
    EXPECT_EQ(at("usual").bodyPreview(), "Call");
    EXPECT_TRUE(callProposals(*m_db, "c").isEmpty());
    EXPECT_EQ(table("SELECT title, start_ms, end_ms, location, calendar, status FROM calendar_command;"),
        QStringList("Lunch|1763982000000|1763985600000|Bar Sol|Work|pending"));
}

TEST_F(CrmTest, linkingOneProposalOfACallLinksTheCallAndAllThatWait)
{
    call("c");
    call("other");
    propose("note", "note", "{}", {}, "c", "Link contact, or drop it");
    propose("task", "task", "{}", {}, "c", "Link contact, or something");
    propose("applied", "note", "{}", {}, "c", "Link contact, long ago");
    propose("elsewhere", "note", "{}", {}, "other", "Link contact, please");
    m_db->exec("UPDATE crm_update_proposal SET status='applied' WHERE id='applied';"
               "UPDATE crm_update_proposal SET confidence=0.99 WHERE id='task';");
    EXPECT_TRUE(linkCRMUpdateProposal(*m_db, "task", ana));
    EXPECT_EQ(table("SELECT id, title, contact_id, confidence FROM crm_update_proposal ORDER BY rowid;"),
        (QStringList { "note|Add call note|" + ana + "|0.98", "task|Link contact, or something|" + ana + "|0.99",
            "applied|Link contact, long ago|-|0.4", "elsewhere|Link contact, please|-|0.4" }));
    EXPECT_EQ(
        table("SELECT id, contact_id FROM call_recording ORDER BY rowid;"), (QStringList { "c|" + ana, "other|-" }));
}

TEST_F(CrmTest, twoNotesOfOneMomentAreBothKept)
{
    const auto first = addNote(*m_db, ana, "one");
    const auto second = addNote(*m_db, ana, "two");
    ASSERT_TRUE(first && second);
    EXPECT_EQ(*first, u"note:%1:"_s.arg(m_clock.nowMs()) + ana);
    EXPECT_NE(*first, *second);
    EXPECT_EQ(fetchNotes(*m_db, ana).size(), 2);
    EXPECT_EQ(table("SELECT payload_json FROM crm_mutation_queue WHERE entity_id='" + *second + "';"),
        QStringList(uR"({"body":"two","contact_id":"%1","ts":%2})"_s.arg(ana).arg(m_clock.nowMs())));
}

TEST_F(CrmTest, aDoneTaskShowsOnlyWhenAskedFor)
{
    const auto open = insertCRMTask(*m_db, ana, { .title = "Ring back", .due = {} });
    for (const char* status : { "Done", "done", "Closed", "COMPLETED" })
        insertCRMTask(*m_db, ana, { .title = "Old", .due = {}, .status = QString::fromUtf8(status) });
    const auto tasks = [&](DoneTasks done) {
        return fetchContactTasks(*m_db, ana, done, 12);
    };
    ASSERT_EQ(tasks(DoneTasks::Leave).size(), 1);
    EXPECT_EQ(tasks(DoneTasks::Leave).first().id, *open);
    EXPECT_EQ(tasks(DoneTasks::Leave).first().priority, "Normal");
    EXPECT_EQ(tasks(DoneTasks::Include).size(), 5);

    EXPECT_TRUE(completeCRMTask(*m_db, *open));
    EXPECT_TRUE(completeCRMTask(*m_db, *open));
    EXPECT_EQ(tasks(DoneTasks::Leave).size(), 0);
    EXPECT_EQ(queued().count("task/update"), 1) << "two changes of one task wait as one";
    EXPECT_EQ(queued().count("task/create"), 5);
    EXPECT_TRUE(reopenCRMTask(*m_db, *open, "Doing"));
    EXPECT_EQ(tasks(DoneTasks::Leave).first().status, "Doing");
    EXPECT_EQ(cell("SELECT payload_json FROM crm_mutation_queue WHERE action='update';"), R"({"status":"Doing"})");
    const qsizetype before = queued().size();
    EXPECT_FALSE(completeCRMTask(*m_db, "none"));
    EXPECT_FALSE(reopenCRMTask(*m_db, "none", "Doing"));
    EXPECT_FALSE(moveCRMDeal(*m_db, "none", "Proposal"));
    m_db->exec("CREATE TRIGGER full BEFORE INSERT ON crm_task BEGIN SELECT RAISE(ABORT, 'full'); END;"
               "CREATE TRIGGER full2 BEFORE INSERT ON crm_deal BEGIN SELECT RAISE(ABORT, 'full'); END;");
    EXPECT_FALSE(insertCRMTask(*m_db, { .title = "Lost", .due = {} }));
    EXPECT_FALSE(insertCRMTask(*m_db, ana, { .title = "Lost", .due = {} }));
    EXPECT_FALSE(insertCRMDeal(*m_db, ana, { "Lost", "Proposal", "1", "", {} }));
    EXPECT_EQ(queued().size(), before) << "what was not written is not told to the web";
}

TEST_F(CrmTest, aDealCountsInItsStageByTheNumberThatItsValueTells)
{
    for (const auto& [stage, value] : { std::pair("Proposal", "$12.5k"), std::pair("Proposal", "abc"),
             std::pair("", "7"), std::pair("Won back", "Sum: 3"), std::pair("Prospecting", "1.2.3"),
             std::pair("Closed Won", "99999999999999999999"), std::pair("Closed Won", "1 m") })
        ASSERT_TRUE(insertCRMDeal(*m_db, ana, { u"D"_s, stage, value, u"Acme"_s, {} }));
    EXPECT_EQ(fetchCRMPipelineStageSummaries(*m_db),
        (QList<CRMPipelineStageSummary> { { "Prospecting", 1, 0 }, { "Proposal", 2, 12500 },
            { "Closed Won", 2, std::numeric_limits<qint64>::max() }, { "Unstaged", 1, 7 },
            { "Won back", 1, 3'000'000 } }));
    EXPECT_EQ(dealValue("-0.9"), 0);
    EXPECT_EQ(fetchContactDeals(*m_db, ana, 10).size(), 7);
    EXPECT_EQ(cell("SELECT close_date FROM crm_deal;"), "-");
    EXPECT_EQ(queued().count("deal/create"), 7);
    m_db->exec("UPDATE crm_deal SET deleted_at=1;");
    EXPECT_EQ(fetchCRMPipelineStageSummaries(*m_db).size(), 0);
}

TEST_F(CrmTest, theInfoOfAContactNamesNothingTwice)
{
    m_db->run("INSERT INTO contact_identity(id, contact_id, channel, handle, email, phone) "
              "VALUES('i',?,'SMS','+34','ANA@example.com','34');",
        { ana });
    insertCRMDeal(*m_db, ana, { "One", "Proposal", "1", "Acme", {} });
    insertCRMDeal(*m_db, ana, { "Two", "Proposal", "1", "", {} });
    insertCRMDeal(*m_db, ana, { "Three", "Proposal", "1", "ACME", {} });
    const ContactInfoRow info = fetchContactInfo(*m_db, ana);
    EXPECT_EQ(info.emails, QStringList("ana@example.com"));
    EXPECT_EQ(info.phones, QStringList("34"));
    EXPECT_EQ(info.platforms, (QStringList { "EMAIL", "SMS" }));
    EXPECT_EQ(info.handles, (QStringList { "ana@example.com", "+34" }));
    EXPECT_EQ(info.companies.size(), 1);
    EXPECT_EQ(fetchContactInfo(*m_db, "ct:SMS:nobody"), ContactInfoRow());
}

TEST_F(CrmTest, messagesNotesAndCallsAreOneStory)
{
    using Kind = ActivityRow::Kind;
    const auto message = [&](const char* id, const char* body, qint64 ts) {
        IncomingMessage incoming;
        incoming.conversationExternalId = "ana@example.com";
        incoming.providerMsgId = QString::fromUtf8(id);
        incoming.body = QString::fromUtf8(body);
        incoming.ts = ts;
        storeMessage(*m_db, "EMAIL", "main", incoming);
    };
    const qint64 now = m_clock.nowMs();
    message("1", "hello", now - 30);
    message("2", "", now - 20); // a voice message with a transcript
    m_db->exec("INSERT INTO audio_transcript(message_id, transcript, created_at, updated_at) "
               "VALUES('wa:msg:2','spoken',0,0);");
    message("3", "", now - 10); // an image without text
    addNote(*m_db, ana, "noted");
    m_clock.advance(Milliseconds(1));
    call("c");
    m_db->run("UPDATE call_recording SET contact_id=?;", { ana });
    QStringList told;
    const QList<ActivityRow> story = fetchContactActivity(*m_db, ana, 10);
    for (const ActivityRow& row : story)
        told.append(row.text);
    EXPECT_EQ(told, (QStringList { "Call recording", "noted", "spoken", "hello" }));
    EXPECT_EQ(story.first().kind, Kind::Call);
    EXPECT_EQ(story.first().processingStatus, "queued");
    EXPECT_EQ(story.last().channel, "EMAIL");
    EXPECT_EQ(fetchContactActivity(*m_db, ana, 2).size(), 2);
}

TEST_F(CrmTest, aForgottenMemoryIsGoneUnlessItIsKeptAfterAll)
{
    m_db->exec("INSERT INTO work_memory_entries VALUES('b','contact:" + ana
        + "','second','2025-02-01T00:00:00Z'),"
          "('a','contact:"
        + ana + "','first','2025-01-01T00:00:00Z'),('o','owner','mine','2025-01-01T00:00:00Z');");
    const QString scope = "contact:" + ana;
    EXPECT_EQ(fetchMemoryEntries(*m_db, scope), (QList<MemoryEntry> { { "a", "first" }, { "b", "second" } }));
    const auto forgotten = forgetMemoryEntry(*m_db, "a");
    ASSERT_TRUE(forgotten.has_value());
    EXPECT_EQ(cell("SELECT COUNT(*) FROM work_memory_entries;"), "2");
    EXPECT_FALSE(forgetMemoryEntry(*m_db, "a"));
    EXPECT_TRUE(keepMemoryEntry(*m_db, *forgotten));
    EXPECT_EQ(fetchMemoryEntries(*m_db, scope).first().id, "a") << "where it stood";
    EXPECT_EQ(fetchAllMemoryEntries(*m_db, 9),
        (QList<ScopedMemoryEntry> {
            { "o", "owner", "", "mine" }, { "a", scope, "Ana", "first" }, { "b", scope, "Ana", "second" } }));
    EXPECT_EQ(fetchAllMemoryEntries(*m_db, 1).size(), 1);
    m_db->exec("DROP TABLE work_memory_entries;");
    EXPECT_EQ(fetchMemoryEntries(*m_db, scope), QList<MemoryEntry>());
    EXPECT_FALSE(forgetMemoryEntry(*m_db, "b"));
    EXPECT_FALSE(keepMemoryEntry(*m_db, *forgotten));
    EXPECT_TRUE(fetchAllMemoryEntries(*m_db, 9).isEmpty());
}

}
