#include "Store/Approvals/DraftStatus.h"

#include "Foundation/Literals.h"
#include "Store/Approvals/DraftApprovals.h"
#include "Store/Approvals/OutgoingMessage.h"
#include "Store/Core/Restored.h"
#include "Support/StoreTest.h"
#include "Support/WaitingItems.h"

namespace corvane {

namespace {

class DraftStatusTest : public StoreTest {
protected:
    DraftStatusTest() { open(); }

    QString status(const QString& id) { return fetchDraft(*m_db, id).value_or(PendingDraft()).status; }

    /// Every step with a draft of that status; true for the steps that say they were done.
    QList<bool> triedSteps()
    {
        const OutgoingFile file { "/o/1", "plan.pdf", 7, "ab" };
        QList<bool> done { approveDraft(*m_db, "p", draftHash(fetchDraft(*m_db, "p").value_or(PendingDraft())))
                == Decided::Taken,
            returnDraft(*m_db, "p", { file }) == Decided::Changed, rejectDraft(*m_db, "p") == Decided::Taken,
            takeBackDraft(*m_db, "a") == Decided::Taken, confirmDraftSent(*m_db, "l") == Decided::Taken,
            editDraft(*m_db, "p", "y"), failRestoredDrafts(*m_db), DraftClaim::claim(*m_db, "a").draft.has_value() };
        failWaitingDraft(*m_db, "p", "x");
        failApprovedDrafts(*m_db, "main", "x");
        acknowledgeDraft(*m_db, "main", "s", "sent", {}, {});
        failUnacknowledgedDraft(*m_db, "s");
        recordUndo(*m_db, "draft", "p", "h");
        return done;
    }
};

}

TEST(DraftStatus, aWordAllowsItsStepsAndNoOther)
{
    using enum DraftStep;
    const QList<DraftStep> steps { Decide, Reject, TakeBack, HandOver, Acknowledge, Confirm };
    const auto allowed = [&](const QString& word) {
        QString may;
        for (const DraftStep step : steps)
            may += allows(draftStatus(word), step) ? '1' : '0';
        return may;
    };
    for (const auto& [word, may] : { std::pair("pending", "110000"), std::pair("approved", "011100"),
             std::pair("sending", "000010"), std::pair("placed", "010011"), std::pair("sent", "000000"),
             std::pair("failed", "110000"), std::pair("rejected", "000000"), std::pair("odd", "000000") })
        EXPECT_EQ(allowed(word), may) << word;
    EXPECT_EQ(draftStatusWord(draftStatus(u"placed")), "placed");
    EXPECT_EQ(draftStatusWord(DraftStatus::Other), "");
    PendingDraft draft;
    draft.status = "failed";
    for (const DraftFailure failure : { DraftFailure::Unacknowledged, DraftFailure::Restored }) {
        draft.error = describe(failure);
        EXPECT_TRUE(mayHaveGoneOut(draft));
    }
    draft.error = describe(DraftFailure::Uncertain, u"The line broke."_s);
    EXPECT_EQ(draft.error, "It may have gone out. The line broke.");
    EXPECT_TRUE(mayHaveGoneOut(draft));
    draft.status = "pending";
    EXPECT_FALSE(mayHaveGoneOut(draft));
    draft.status = "failed";
    for (const DraftFailure failure :
        { DraftFailure::Changed, DraftFailure::Unreadable, DraftFailure::EarlierTextUnread, DraftFailure::AccountGone,
            DraftFailure::NoFiles, DraftFailure::FileGone, DraftFailure::FileChanged }) {
        draft.error = describe(failure, u"a.pdf"_s);
        EXPECT_GT(draft.error.size(), 20);
        EXPECT_FALSE(mayHaveGoneOut(draft)) << draft.error.toStdString();
    }
    EXPECT_EQ(describe(DraftFailure::AccountGone, u"shop"_s), "Account shop is no longer connected");
}

TEST(OutgoingMessage, theFilesOfADraftAreReadOnlyWhole)
{
    const QList<OutgoingFile> files { { "/o/1", "a.pdf", 7, "ab" }, { "/o/2", "b.pdf", 5, "cd" } };
    EXPECT_EQ(filesFromText(filesText(files)), files);
    EXPECT_EQ(totalBytes(files), 12);
    EXPECT_EQ(filesText({}), "");
    EXPECT_EQ(filesFromText({}), QList<OutgoingFile>());
    for (const char* key : { "path", "name", "bytes", "sha256" })
        EXPECT_FALSE(filesFromText(filesText(files).replace(QLatin1StringView(key), "other"_L1))) << key;
    for (const char* text : { "{}", "[1]", "[", "[{}]" })
        EXPECT_FALSE(filesFromText(QString::fromLatin1(text))) << text;
}

TEST_F(DraftStatusTest, noStepIsTakenWhereItCannotBeRecorded)
{
    for (const auto& [id, status] :
        { std::pair("p", "pending"), std::pair("a", "approved"), std::pair("s", "sending"), std::pair("l", "placed") })
        writeDraft(*m_db, id, "Ana", "x", status);
    const auto rows = [&] {
        return table("SELECT id, status, body, error FROM outbound_draft ORDER BY rowid;");
    };
    const QStringList before = rows();
    m_db->exec("CREATE TRIGGER full BEFORE INSERT ON approval_record BEGIN SELECT RAISE(ABORT, 'disk full'); END;");
    EXPECT_EQ(triedSteps().count(true), 0);
    EXPECT_EQ(rows(), before);
    m_db->exec("DROP TRIGGER full;");
    m_db->close();
    EXPECT_EQ(triedSteps().count(true), 0) << "a file that is closed takes nothing";
    ASSERT_TRUE(m_db->reopen());
    EXPECT_EQ(rows(), before);
    EXPECT_EQ(cell("SELECT COUNT(*) FROM approval_record;"), "0");
    for (const Decided decided : { takeBackDraft(*m_db, "none"), confirmDraftSent(*m_db, "none"),
             rejectDraft(*m_db, "none"), returnDraft(*m_db, "none", {}) })
        EXPECT_EQ(decided, Decided::Refused);
    EXPECT_EQ(triedSteps(), (QList<bool> { true, false, true, true, true, false, true, false }));
}

TEST_F(DraftStatusTest, approvedDraftsAreListedForTheirAccountsInTheirOrder)
{
    for (const char* id : { "c", "a", "b" }) {
        writeDraft(*m_db, id, "Ana", "x", "approved");
        m_clock.advance(Milliseconds(1));
    }
    writeDraft(*m_db, "s", "Ana", "x", "sending");
    m_db->exec("UPDATE outbound_draft SET account_id='shop' WHERE id='a';");
    const auto ids = [](const QList<PendingDraft>& drafts) {
        QStringList ids;
        for (const PendingDraft& draft : drafts)
            ids.append(draft.id);
        return ids.join(',');
    };
    EXPECT_EQ(ids(fetchApprovedDrafts(*m_db, { "main" }, 9)), "c,b");
    EXPECT_EQ(ids(fetchApprovedDrafts(*m_db, { "main", "shop" }, 2)), "c,a");
    EXPECT_EQ(ids(fetchApprovedDrafts(*m_db, {}, 9)), "");
    QStringList of;
    for (const DraftOfAccount& draft : fetchApprovedIds(*m_db))
        of.append(draft.id + ' ' + draft.accountId);
    EXPECT_EQ(of.join(','), "c main,a shop,b main");
    QStringList accounts = accountsWithApprovedDrafts(*m_db);
    accounts.sort();
    EXPECT_EQ(accounts, (QStringList { "main", "shop" }));
    EXPECT_EQ(fetchSendingIds(*m_db), QStringList("s"));
    EXPECT_TRUE(moveDraft(*m_db, "s", DraftStatus::Sending, DraftStatus::Placed));
    EXPECT_FALSE(moveDraft(*m_db, "s", DraftStatus::Sending, DraftStatus::Sent));
    failApprovedDrafts(*m_db, "main", "gone");
    EXPECT_EQ(status("a") + status("b") + status("c"), "approvedfailedfailed") << "of that account alone";
}

TEST_F(DraftStatusTest, whatABackupHeldInWorkIsSettledAndItsFilesAreFoundInTheirNewPlace)
{
    writeDraft(*m_db, "a", "Ana", "x", "approved");
    m_db->run("UPDATE outbound_draft SET files=?;", { filesText({ { "/old/o/1", "old.pdf", 7, "/old/" } }) });
    m_db->exec(
        "INSERT INTO ai_requests(id, prompt, status, created_at) VALUES('p','p','pending',1),"
        "('r','p','processing',1),('d','p','done',1);"
        "INSERT INTO sync_command(id, workspace_id, kind, status, source, requested_at) "
        "VALUES('s','local','web_pull','running','x',1),('t','local','web_pull','done','x',1);"
        "INSERT INTO calendar_command(id, workspace_id, title, start_ms, end_ms, status, created_at, updated_at) "
        "VALUES('c','local','Lunch',1,2,'pending',1,1),('e','local','Lunch',1,2,'done',1,1);"
        "INSERT INTO unified_message(id, conversation_id, ts, media_path) VALUES('m','c',1,'/old/a.png'),"
        "('n','c',2,'/older/b.png'),('o','c',3,NULL);"
        "INSERT INTO contact(id, avatar_path) VALUES('ct','/old/c.png');");
    const auto states = [&] {
        return table("SELECT status FROM ai_requests ORDER BY id;")
            + table("SELECT status FROM sync_command ORDER BY id;")
            + table("SELECT status FROM calendar_command ORDER BY id;");
    };
    m_db->exec("CREATE TRIGGER full BEFORE UPDATE ON calendar_command BEGIN SELECT RAISE(ABORT, 'full'); END;");
    EXPECT_FALSE(settleRestored(*m_db));
    EXPECT_EQ(states().first() + status("a"), "doneapproved") << "all or nothing";
    m_db->exec("DROP TRIGGER full;");
    EXPECT_TRUE(settleRestored(*m_db));
    EXPECT_EQ(states(), (QStringList { "done", "error", "error", "failed", "done", "failed", "done" }));
    EXPECT_EQ(status("a"), "failed");
    EXPECT_EQ(cell("SELECT error FROM sync_command WHERE id='s';"), "The profile was restored from a backup.");

    EXPECT_TRUE(moveFilePaths(*m_db, "/old", "/old"));
    EXPECT_TRUE(moveFilePaths(*m_db, "/old", "/new"));
    EXPECT_EQ(table("SELECT media_path FROM unified_message ORDER BY id;") + table("SELECT avatar_path FROM contact;"),
        (QStringList { "/new/a.png", "/older/b.png", "-", "/new/c.png" }));
    EXPECT_EQ(
        filesFromText(fetchDraft(*m_db, "a")->files)->first(), (OutgoingFile { "/new/o/1", "old.pdf", 7, "/old/" }))
        << "only paths";
    m_db->exec("CREATE TRIGGER full BEFORE UPDATE ON contact BEGIN SELECT RAISE(ABORT, 'full'); END;");
    EXPECT_FALSE(moveFilePaths(*m_db, "/new", "/third"));
    EXPECT_EQ(cell("SELECT media_path FROM unified_message;"), "/new/a.png");
    m_db->exec("DROP TRIGGER full; DROP TABLE dev_browser_session;");
    EXPECT_TRUE(moveFilePaths(*m_db, "/new", "/third")) << "a table that is missing holds no path";
}

}
