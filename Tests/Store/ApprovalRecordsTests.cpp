#include "Foundation/Literals.h"
#include "Store/Approvals/ApprovalRecords.h"

#include "Store/Approvals/CrmProposals.h"
#include "Store/Approvals/DraftApprovals.h"
#include "Store/Approvals/WorkDecisions.h"
#include "Store/Core/Transaction.h"
#include "Support/StoreTest.h"
#include "Support/WaitingItems.h"

namespace corvane {

class ApprovalRecordsTest : public StoreTest {
protected:
    ApprovalRecordsTest() { open(); }

    void insert(const QString& id, const QString& body, const QString& status = "pending")
    {
        writeDraft(*m_db, id, "Ana", body, status);
    }

    QString hashOf(const QString& id) { return draftHash(*fetchDraft(*m_db, id)); }
    QString status(const QString& id) { return fetchDraft(*m_db, id).value_or(PendingDraft()).status; }

    /// The decision log as "kind id action" lines.
    QStringList told()
    {
        return m_db->rows("SELECT kind || ' ' || subject_id || ' ' || action FROM approval_record ORDER BY seq;", {},
            [](const SqlRow& row) { return row.text(0); });
    }

    /// The result of a check after a change that bypasses the triggers.
    QString saysAfter(const QString& sql)
    {
        m_db->exec("BEGIN; DROP TRIGGER approval_record_keeps; DROP TRIGGER approval_record_holds; "
                   "DROP TRIGGER approval_record_continues;");
        m_db->exec(sql);
        const RecordCheck check = checkRecords(*m_db);
        m_db->exec("ROLLBACK;");
        EXPECT_FALSE(check.sound);
        return check.words;
    }
};

TEST_F(ApprovalRecordsTest, eachDecisionAndWhatCameOfItIsOneLineWithoutAnyText)
{
    EXPECT_EQ(checkRecords(*m_db).words, "No decision has been recorded yet.");
    insert("a", "secret words");
    insert("b", "more secret words");
    insert("c", "from the control chat", "approved");
    recordUndo(*m_db, "draft", "a", hashOf("a"));
    EXPECT_EQ(approveDraft(*m_db, "a", hashOf("a")), Decided::Taken);
    EXPECT_EQ(approveDraft(*m_db, "a", hashOf("a")), Decided::AlreadySo);
    const DraftClaim first = DraftClaim::claim(*m_db, "a");
    ASSERT_TRUE(first.draft);
    EXPECT_EQ(first.draft->row().body, "secret words");
    EXPECT_TRUE(unclaimDraft(*m_db, *first.draft)) << "a second attempt is the same delivery, and no line";
    EXPECT_TRUE(DraftClaim::claim(*m_db, "a").draft);
    EXPECT_FALSE(DraftClaim::claim(*m_db, "a").draft) << "only one gets it";
    acknowledgeDraft(*m_db, "main", "a", "placed", {}, {});
    acknowledgeDraft(*m_db, "main", "a", "placed", {}, {});
    acknowledgeDraft(*m_db, "main", "a", "sent", u"p1"_s, {});
    acknowledgeDraft(*m_db, "main", "a", "failed", {}, "late");
    EXPECT_EQ(status("a"), "sent") << "what was sent stays sent";
    EXPECT_TRUE(editDraft(*m_db, "b", "better words"));
    EXPECT_EQ(rejectDraft(*m_db, "b"), Decided::Taken);
    EXPECT_EQ(rejectDraft(*m_db, "b"), Decided::AlreadySo);
    acknowledgeDraft(*m_db, "main", "b", "failed", {}, "late");
    EXPECT_FALSE(editDraft(*m_db, "b", "again"));
    EXPECT_EQ(status("b"), "rejected") << "no engine brings it back";
    EXPECT_TRUE(DraftClaim::claim(*m_db, "c").draft);
    failUnacknowledgedDraft(*m_db, "c");
    EXPECT_EQ(status("c"), "failed");
    EXPECT_TRUE(mayHaveGoneOut(*fetchDraft(*m_db, "c")));

    writeDecision(*m_db, "d", "Pay", "100", "", "money");
    writeDecision(*m_db, "e", "x", "", "", "odd");
    const QString seen = decisionHash(*fetchWorkDecision(*m_db, "d"));
    m_db->exec("UPDATE work_decision SET proposal='900' WHERE id='d';");
    EXPECT_EQ(approveWorkDecision(*m_db, "d", "Oskel", seen), Decided::Changed);
    EXPECT_EQ(fetchWorkDecision(*m_db, "d")->status, "proposed");
    m_db->exec("UPDATE work_decision SET proposal='100' WHERE id='d';");
    EXPECT_EQ(approveWorkDecision(*m_db, "d", "Oskel", seen), Decided::Taken);
    EXPECT_EQ(approveWorkDecision(*m_db, "d", "Oskel", seen), Decided::AlreadySo);
    EXPECT_EQ(rejectWorkDecision(*m_db, "d", "Oskel"), Decided::Refused);
    EXPECT_EQ(rejectWorkDecision(*m_db, "e", "Oskel"), Decided::Taken);
    EXPECT_EQ(approveWorkDecision(*m_db, "gone", "Oskel", seen), Decided::Refused);
    writeProposal(*m_db, "f", "task", "Call", "{}");
    writeProposal(*m_db, "g", "note", "Note", R"({"body":"x"})");
    writeProposal(*m_db, "h", "task", "No", "{}");
    EXPECT_EQ(applyCRMUpdateProposal(*m_db, "f", proposalHash(*crmProposal(*m_db, "h"))), Decided::Changed);
    EXPECT_TRUE(applyAsSeen(*m_db, "f"));
    EXPECT_FALSE(applyAsSeen(*m_db, "g")) << "nobody is linked";
    EXPECT_EQ(rejectCRMUpdateProposal(*m_db, "h"), Decided::Taken);
    EXPECT_EQ(latestRecords(*m_db, 2).first().subjectId, "h");

    EXPECT_EQ(told(),
        QStringList({ "draft a undo", "draft a approve", "draft a placed", "draft a sent", "draft b edit",
            "draft b reject", "draft c approve_elsewhere", "draft c failed", "decision d approve", "decision e reject",
            "proposal f apply", "proposal h reject" }));
    const RecordCheck check = checkRecords(*m_db);
    EXPECT_TRUE(check.sound);
    EXPECT_TRUE(check.words.startsWith("The decision log is intact: 12 lines, the last with the hash "));
}

TEST_F(ApprovalRecordsTest, whatAPersonDoesWithADraftThatWaitsElsewhereIsRecorded)
{
    insert("a", "x", "approved");
    EXPECT_EQ(takeBackDraft(*m_db, "a"), Decided::Taken);
    EXPECT_EQ(takeBackDraft(*m_db, "a"), Decided::AlreadySo);
    insert("b", "x", "placed");
    EXPECT_EQ(takeBackDraft(*m_db, "b"), Decided::Refused);
    EXPECT_EQ(confirmDraftSent(*m_db, "b"), Decided::Taken);
    EXPECT_EQ(rejectDraft(*m_db, "b"), Decided::Refused) << "it is out";
    insert("c", "x", "placed");
    EXPECT_EQ(rejectDraft(*m_db, "c"), Decided::Taken);
    insert("d", "x", "approved");
    failApprovedDrafts(*m_db, fetchDraft(*m_db, "d")->accountId, "gone");
    EXPECT_EQ(status("d"), "failed");
    EXPECT_EQ(told(), QStringList({ "draft a undo", "draft b sent", "draft c reject", "draft d failed" }));
}

TEST_F(ApprovalRecordsTest, whatFailsBeforeItGoesOutIsRecordedWhereItStillWaits)
{
    insert("a", "x");
    insert("b", "x", "sent");
    const OutgoingFile file { "/o/1", "plan.pdf", 7, "ab" };
    EXPECT_EQ(returnDraft(*m_db, "b", { file }), Decided::Refused);
    ASSERT_EQ(returnDraft(*m_db, "a", { file }), Decided::Changed);
    const auto returned = fetchDraft(*m_db, "a");
    EXPECT_EQ(filesFromText(returned->files), QList<OutgoingFile> { file });
    EXPECT_EQ(returned->error, describe(DraftFailure::Changed));
    failWaitingDraft(*m_db, "a", "no files");
    failWaitingDraft(*m_db, "b", "too late");
    EXPECT_EQ(status("a") + fetchDraft(*m_db, "a")->error, "failedno files");
    EXPECT_EQ(status("b"), "sent");
    insert("c", "x", "approved");
    const DraftClaim claim = DraftClaim::claim(*m_db, "c");
    ASSERT_TRUE(claim.draft);
    failClaimedDraft(*m_db, *claim.draft, "no engine");
    EXPECT_EQ(status("c") + fetchDraft(*m_db, "c")->error, "failedno engine");
    EXPECT_FALSE(mayHaveGoneOut(*fetchDraft(*m_db, "c")));
    failClaimedDraft(*m_db, *claim.draft, "again");
    EXPECT_EQ(fetchDraft(*m_db, "c")->error, "no engine");
    insert("d", "x", "sending");
    insert("e", "x", "approved");
    EXPECT_TRUE(failRestoredDrafts(*m_db));
    EXPECT_EQ(status("d") + status("e") + status("b"), "failedfailedsent");
    EXPECT_TRUE(mayHaveGoneOut(*fetchDraft(*m_db, "d")));
    EXPECT_EQ(told(),
        QStringList({ "draft a return", "draft a failed", "draft c approve_elsewhere", "draft c failed",
            "draft d failed", "draft e failed" }));
}

TEST_F(ApprovalRecordsTest, whatDiffersFromWhatWasApprovedGoesBackToThePerson)
{
    const QString reason = "This draft changed after you approved it. Read it again before you decide.";
    const QStringList columns { "body", "channel", "account_id", "external_id" };
    for (const QString& column : columns) {
        insert(column, "as shown");
        const QString seen = hashOf(column);
        const QString change = u"UPDATE outbound_draft SET %1='other' WHERE id='%1';"_s.arg(column);
        EXPECT_EQ(approveDraft(*m_db, column, seen), Decided::Taken);
        m_db->exec(change);
        const DraftClaim claim = DraftClaim::claim(*m_db, column);
        EXPECT_FALSE(claim.draft);
        EXPECT_TRUE(claim.returned);
        EXPECT_EQ(status(column) + fetchDraft(*m_db, column)->error, "pending" + reason);
        EXPECT_EQ(approveDraft(*m_db, column, seen), Decided::Changed) << "it was changed inside the undo window";
        EXPECT_EQ(approveDraft(*m_db, column, hashOf(column)), Decided::Taken);
        EXPECT_TRUE(DraftClaim::claim(*m_db, column).draft);
    }
    // Different lists must not have equal hashes, even if their concatenations are equal.
    EXPECT_NE(fieldsHash({ "ab", "c" }), fieldsHash({ "a", "bc" }));
    EXPECT_NE(fieldsHash({ "1:a", "" }), fieldsHash({ "", "1:a" }));
    EXPECT_EQ(fieldsHash({ "draft" }), "d492bd801320b51e9bee3efec7050f357b92ab8cc6eb56ecb346c76b384515ab")
        << "of 5:draft";
}

TEST_F(ApprovalRecordsTest, aRetryNeedsAnApprovalOfItsOwn)
{
    insert("a", "x");
    ASSERT_EQ(approveDraft(*m_db, "a", hashOf("a")), Decided::Taken);
    ASSERT_TRUE(DraftClaim::claim(*m_db, "a").draft);
    acknowledgeDraft(*m_db, "main", "a", "failed", {}, "no such chat");
    EXPECT_FALSE(DraftClaim::claim(*m_db, "a").draft);
    EXPECT_EQ(approveDraft(*m_db, "a", hashOf("a")), Decided::Taken);
    EXPECT_EQ(rejectDraft(*m_db, "a"), Decided::Taken) << "until it is at the engine";
    EXPECT_FALSE(DraftClaim::claim(*m_db, "a").draft);
    EXPECT_EQ(approveDraft(*m_db, "a", hashOf("a")), Decided::Refused);
    EXPECT_EQ(approveDraft(*m_db, "gone", {}), Decided::Refused);
    EXPECT_EQ(m_db->scalar("SELECT COUNT(*) FROM draft_approval;"), "0");
}

TEST_F(ApprovalRecordsTest, aTextThatIsNotWhatItReadsAsFailsInsteadOfGoingOut)
{
    insert("a", "x", "approved");
    m_db->exec("UPDATE outbound_draft SET body=CAST(x'61ff62' AS TEXT) WHERE id='a';");
    EXPECT_FALSE(DraftClaim::claim(*m_db, "a").draft);
    EXPECT_EQ(status("a"), "failed");
    EXPECT_EQ(fetchDraft(*m_db, "a")->error, "The text of this draft can't be read as it is stored.");
}

TEST_F(ApprovalRecordsTest, aStepThatCannotBeRecordedDoesNotHappen)
{
    insert("a", "x");
    m_db->exec("CREATE TRIGGER full BEFORE INSERT ON approval_record BEGIN SELECT RAISE(ABORT, 'disk full'); END;");
    EXPECT_EQ(approveDraft(*m_db, "a", hashOf("a")), Decided::Refused);
    EXPECT_EQ(rejectDraft(*m_db, "a"), Decided::Refused);
    EXPECT_FALSE(editDraft(*m_db, "a", "y"));
    EXPECT_EQ(status("a") + fetchDraft(*m_db, "a")->body, "pendingx");
    m_db->exec("UPDATE outbound_draft SET status='approved';");
    EXPECT_FALSE(DraftClaim::claim(*m_db, "a").draft);
    EXPECT_EQ(status("a"), "approved");
    EXPECT_EQ(m_db->scalar("SELECT COUNT(*) FROM draft_approval;"), "0");
    EXPECT_FALSE(m_db->inTransaction());
}

TEST_F(ApprovalRecordsTest, theRecordOnlyGrowsAndACheckSaysWhereItWasCut)
{
    for (const QString& id : { "a", "b", "c" }) {
        insert(id, "x");
        ASSERT_EQ(approveDraft(*m_db, id, hashOf(id)), Decided::Taken);
    }
    for (const QString& attempt : { "UPDATE approval_record SET action='reject' WHERE seq=2;",
             "DELETE FROM approval_record WHERE seq=3;", "INSERT INTO approval_record VALUES(5,1,'','','','','','');",
             "INSERT INTO approval_record VALUES(4,1,'draft','x','approve','','','');",
             "INSERT OR REPLACE INTO approval_record SELECT seq, at, kind, subject_id, 'reject', content_hash, "
             "previous_hash, hash FROM approval_record WHERE seq=3;" })
        m_db->exec(attempt);
    EXPECT_EQ(told(), QStringList({ "draft a approve", "draft b approve", "draft c approve" }));
    EXPECT_TRUE(checkRecords(*m_db).sound);

    const QString broken = "The decision log is broken: ";
    EXPECT_EQ(saysAfter("UPDATE approval_record SET action='reject' WHERE seq=2;"),
        broken + "line 2 was changed after it was written.");
    EXPECT_EQ(saysAfter("DELETE FROM approval_record WHERE seq=2;"), broken + "line 2 is missing.");
    EXPECT_EQ(saysAfter("DELETE FROM approval_record WHERE seq=1;"), broken + "line 1 is missing.");
    EXPECT_EQ(saysAfter("DELETE FROM approval_record WHERE seq=3;"), "The approval of c is missing in the log.");
    EXPECT_EQ(saysAfter("INSERT INTO draft_approval VALUES('forged','h',1);"),
        "The approval of forged is missing in the log.");
    EXPECT_EQ(saysAfter("DROP TABLE approval_record;"), "This database has no decision log.");

    // A forged line in place of another one, with a valid hash of its own.
    ApprovalRecord line { 2, 1, "draft", "b", "reject", "", "", "" };
    line.hash = fieldsHash({ "approval_record", "2", "1", "draft", "b", "reject", "", "" });
    EXPECT_EQ(saysAfter(u"UPDATE approval_record SET at=1, action='reject', content_hash='', "
                        "previous_hash='', hash='%1' WHERE seq=2;"_s.arg(line.hash)),
        broken + "line 2 does not continue the line before it.");
}

}
