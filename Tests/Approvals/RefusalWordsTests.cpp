#include "Approvals/RefusalWords.h"

#include "Support/StoreTest.h"
#include "Support/WaitingItems.h"

using namespace corvane;

namespace {

class RefusalWords : public StoreTest {
protected:
    QString words(ApprovalKind kind, const QString& id) { return refusalWords(db, { kind, id }); }

    void writeEvent(const QString& id, const QString& status, const QString& error = {})
    {
        EXPECT_TRUE(db.run("INSERT INTO calendar_command(id, workspace_id, title, start_ms, end_ms, status, error, "
                           "created_at) VALUES(?,'local','Lunch',1000,2000,?,?,0);",
            { id, status, error }));
    }

    LocalDB& db = open();
    const QString gone = u"It is no longer there."_s;
    const QString notSaved = u"It couldn't be saved. Try again."_s;
    const QString rejected = u"Already rejected elsewhere."_s;
};

}

TEST_F(RefusalWords, tellWhatAnotherProgramMadeOfIt)
{
    const auto draft = [&](const QString& status) {
        writeDraft(db, status, u"Ana"_s, u"hello"_s, status);
        return words(ApprovalKind::Draft, status);
    };
    EXPECT_EQ(draft("rejected"), rejected);
    EXPECT_EQ(draft("sent"), "Already sent.");
    EXPECT_EQ(draft("pending"), notSaved);
    EXPECT_EQ(draft("failed"), notSaved);
    EXPECT_EQ(draft("approved"), "Already approved elsewhere.");
    EXPECT_EQ(words(ApprovalKind::Draft, "none"), gone);

    const auto proposal = [&](const QString& status, const QString& error = {}) {
        writeProposal(db, status + error, u"task"_s, u"Call"_s, u"{}"_s);
        db.run("UPDATE crm_update_proposal SET status=?, error=? WHERE id=?;", { status, error, status + error });
        return words(ApprovalKind::Proposal, status + error);
    };
    EXPECT_EQ(proposal("applied"), "Already applied elsewhere.");
    EXPECT_EQ(proposal("rejected"), rejected);
    EXPECT_EQ(proposal("pending"), notSaved);
    EXPECT_EQ(proposal("pending", "No contact."), "No contact.");
    EXPECT_EQ(words(ApprovalKind::Proposal, "none"), gone);

    const auto decision = [&](const QString& status) {
        writeDecision(db, status, u"Deploy"_s, u"now"_s, {}, {});
        db.run("UPDATE work_decision SET status=? WHERE id=?;", { status, status });
        return words(ApprovalKind::Decision, status);
    };
    EXPECT_EQ(decision("approved"), "Already approved elsewhere.");
    EXPECT_EQ(decision("rejected"), rejected);
    EXPECT_EQ(decision("proposed"), notSaved);
    EXPECT_EQ(words(ApprovalKind::Decision, "none"), gone);

    writeEvent("done", "done");
    writeEvent("rejected", "failed", "Rejected.");
    writeEvent("failed", "failed", "It takes none.");
    writeEvent("pending", "pending");
    EXPECT_EQ(words(ApprovalKind::Event, "done"), "Already added elsewhere.");
    EXPECT_EQ(words(ApprovalKind::Event, "rejected"), rejected);
    EXPECT_EQ(words(ApprovalKind::Event, "failed"), "It takes none.");
    EXPECT_EQ(words(ApprovalKind::Event, "pending"), notSaved);
    EXPECT_EQ(words(ApprovalKind::Event, "none"), gone);
}
