#include "Desk/ReplyDrafts.h"

#include "Store/Messages/IngestQueries.h"
#include "Support/FakeLanguageModel.h"
#include "Support/StoreTest.h"

#include <QJsonArray>

using namespace corvane;

namespace {

class ReplyDraftsTest : public StoreTest {
protected:
    ReplyDraftsTest()
    {
        lumo.model.setAvailable();
        const QString id = ensureConversation(db, "WHATSAPP", "main", "49171@s.whatsapp.net", "Ana Ruiz", 1);
        row = fetchInboxGlance(db, 1).value(0);
        EXPECT_EQ(row.conversationId, id);
    }

    void receive(const QString& body)
    {
        db.run("INSERT INTO unified_message(id, conversation_id, body, ts) VALUES('m1',?,?,2);",
            { row.conversationId, body });
    }
    QString said() const { return replies.state(row.conversationId).text; }

    LocalDB& db = open();
    FakeLumo lumo;
    ReplyDrafts replies { db, lumo };
    InboxGlanceRow row;
};

}

TEST_F(ReplyDraftsTest, aReplyQueuesInApprovalsAndEachFailureIsTold)
{
    replies.draft(row);
    EXPECT_EQ(said(), "No text messages in this thread to reply to.");
    receive("Can you do Thursday?");
    InboxGlanceRow unlinked = row;
    unlinked.contactId.clear();
    replies.draft(unlinked);
    EXPECT_EQ(said(), "No CRM contact linked to this thread yet — open it and link first.");
    lumo.model.setUnavailable("no server");
    replies.draft(row);
    EXPECT_EQ(said(),
        "A model on this computer or Codex CLI unavailable — start a model on this computer or install Codex CLI.");

    lumo.model.setAvailable();
    lumo.model.willFail("The model is busy.");
    replies.draft(row);
    EXPECT_EQ(said(), "The model is busy.");
    EXPECT_FALSE(replies.state(row.conversationId).isBusy);
    EXPECT_EQ(db.scalar("SELECT COUNT(*) FROM outbound_draft;"), "0");

    const auto answer = lumo.model.willAnswerLater();
    replies.draft(row);
    replies.draft(row); // ignored while one is in progress
    EXPECT_TRUE(replies.state(row.conversationId).isBusy);
    replies.forgetDone();
    EXPECT_EQ(said(), "Drafting…");
    answer.arrive(QJsonObject { { "body", "Thursday suits me." }, { "intent", "draft_reply" },
        { "citations", QJsonArray { "M1" } }, { "warnings", QJsonArray() }, { "send_side_effect", false } });
    EXPECT_EQ(said(), "Queued in Approvals");
    EXPECT_EQ(db.scalar("SELECT status || '|' || body FROM outbound_draft;"), "pending|Thursday suits me.");

    const auto late = lumo.model.willAnswerLater();
    replies.draft(row);
    db.run("DELETE FROM unified_conversation;");
    late.arrive(QJsonObject { { "body", "Yes." }, { "intent", "draft_reply" }, { "citations", QJsonArray { "M1" } },
        { "warnings", QJsonArray() }, { "send_side_effect", false } });
    EXPECT_EQ(said(), "Couldn't queue the draft for this conversation.");
    replies.forgetDone();
    EXPECT_EQ(said(), "");
}
