#include "Approvals/DraftWords.h"
#include "InboxViewTest.h"
#include "Store/Approvals/OutboundQueries.h"
#include "Store/Messages/IngestQueries.h"

using namespace corvane;

namespace {

class DraftsTest : public InboxViewTest {
protected:
    DraftsTest()
    {
        receiveFromAnaAndBen();
        engines.startDraftWatch();
    }

    QString queue(const QString& text, const QString& source = "mcp")
    {
        EXPECT_TRUE(queueDraft(engines.db(), "wa:" + account.slug + ":49171@s.whatsapp.net", text, source));
        const QString id = cell("SELECT id FROM outbound_draft ORDER BY rowid DESC LIMIT 1;");
        clock.advance(seconds(4));
        return id;
    }

    QString status(const QString& id) { return cell("SELECT status FROM outbound_draft WHERE id=?;", { id }); }
    QString shown(const QByteArray& role) { return column(drafts.rows(), role).value(0); }

    PendingDraftsView& drafts = *inbox.drafts();
    QAbstractItemModelTester draftTester { drafts.rows(), QAbstractItemModelTester::FailureReportingMode::Fatal };
};

PendingDraft draftOf(const QString& status, const QString& source = "mcp")
{
    PendingDraft draft;
    draft.status = status;
    draft.source = source;
    draft.externalId = "4917";
    draft.channel = "WHATSAPP";
    return draft;
}

}

TEST_F(DraftsTest, anApprovalSendsAtOnceAndTheRowSaysWhereItStands)
{
    const QString id = queue("hello");
    EXPECT_EQ(drafts.count(), 1);
    EXPECT_EQ(shown("title"), "AI wants to send to Ana Ruiz · WHATSAPP");
    EXPECT_EQ(shown("statusLabel"), "waiting approval");
    EXPECT_EQ(shown("approveLabel"), "Approve & Send");
    EXPECT_EQ(shown("failureReason"), "");
    drafts.approveDraft(id);
    EXPECT_EQ(commands("send"),
        QStringList(R"({"chatId":"49171@s.whatsapp.net","cmd":"send","draftId":"%1","text":"hello"})")
            .replaceInStrings("%1", id));
    EXPECT_EQ(status(id), "sending");
    EXPECT_EQ(shown("title"), "Sending from local Mac to Ana Ruiz · WHATSAPP");
    EXPECT_EQ(shown("canDecide"), "false");
    drafts.approveDraft(id);
    drafts.reject(id);
    drafts.edit(id, "other words");
    clock.advance(seconds(8));
    EXPECT_EQ(commands("send").size(), 1);
    EXPECT_EQ(status(id), "sending");

    engine().printEvent({ { "type", "sendAck" }, { "draftId", id }, { "status", "refused" } });
    settle();
    EXPECT_EQ(shown("statusLabel"), "failed Send failed");
    EXPECT_EQ(shown("failureReason"), "Send failed");
    EXPECT_EQ(shown("approveLabel"), "Retry Send");
    drafts.approveDraft(id);
    EXPECT_EQ(commands("send").size(), 2);
    engine().printEvent({ { "type", "sendAck" }, { "draftId", id }, { "status", "sent" } });
    settle();
    EXPECT_EQ(drafts.count(), 0);
    EXPECT_EQ(status(id), "sent");
}

TEST_F(DraftsTest, anAccountThatIsGoneFailsTheDraft)
{
    const QString id = queue("hello");
    engines.stop(account);
    accounts.remove(account);
    drafts.approveDraft(id);
    EXPECT_EQ(status(id), "failed");
    EXPECT_EQ(shown("failureReason"), "Account " + account.slug + " is no longer connected");
    drafts.approveDraft(id);
    EXPECT_EQ(status(id), "failed");
    drafts.reject(id);
    EXPECT_EQ(status(id), "rejected");
    EXPECT_EQ(drafts.count(), 0);
}

TEST_F(DraftsTest, anApprovalWakesAnEngineThatWasStopped)
{
    const QString id = queue("hello");
    engines.stop(account);
    launcher.expect(FakeLauncher::stays());
    drafts.approveDraft(id);
    EXPECT_EQ(status(id), "sending");
    EXPECT_EQ(commands("send").size(), 1);
    EXPECT_TRUE(engines.isRunning(account));
}

TEST_F(DraftsTest, whatAnotherProgramChangedMeanwhileIsNotSent)
{
    const QString id = queue("as shown");
    updateDraftBody(engines.db(), id, "other words");
    drafts.approveDraft(id);
    EXPECT_EQ(commands("send").size(), 0);
    EXPECT_EQ(drafts.notice(), "This draft changed while it was shown. Read it again before you decide.");
    EXPECT_EQ(shown("body"), "other words");
    drafts.dismissNotice();
    drafts.approveDraft(id);
    EXPECT_EQ(commands("send").size(), 1);
    EXPECT_EQ(drafts.notice(), "");

    const QString second = queue("sent elsewhere");
    ASSERT_TRUE(moveDraft(engines.db(), second, "pending", "sent"));
    drafts.reject(second);
    EXPECT_EQ(status(second), "sent");
    EXPECT_NE(drafts.notice(), "");
}

TEST_F(DraftsTest, aWaitingDraftIsEditedAndOneAtATimeIsConfirmed)
{
    const QString first = queue("one");
    const QString second = queue("two");
    drafts.askToConfirm(first);
    drafts.askToConfirm(second);
    EXPECT_EQ(drafts.confirmDraft(), second);
    drafts.cancelConfirm();
    EXPECT_EQ(drafts.confirmDraft(), "");
    drafts.edit(first, "  \n");
    EXPECT_EQ(shown("body"), "one") << "an empty message is no edit";
    drafts.edit(first, "one and a half");
    EXPECT_EQ(shown("body"), "one and a half");
    drafts.askToConfirm(first);
    engines.db().exec("UPDATE outbound_draft SET status='sent';");
    clock.advance(seconds(4));
    EXPECT_EQ(drafts.confirmDraft(), "") << "it has left the list";
    drafts.askToConfirm("od:nobody");
    EXPECT_EQ(drafts.confirmDraft(), "");
}

TEST_F(DraftsTest, aMessageToANewPersonWaitsForApproval)
{
    ComposeSheet& sheet = *inbox.composeSheet();
    sheet.open();
    EXPECT_EQ(sheet.accountId(), account.id.toString());
    EXPECT_EQ(sheet.property("recipientLabel"), "Recipient");
    sheet.setRecipient(" +49 (170) 123-45 ");
    EXPECT_TRUE(sheet.hasValidRecipient());
    EXPECT_FALSE(sheet.valid()) << "no message";
    sheet.submit();
    sheet.setMessage("good day");
    EXPECT_TRUE(sheet.valid());
    sheet.submit();
    EXPECT_FALSE(sheet.shown());
    EXPECT_EQ(sheet.message(), "");
    EXPECT_EQ(inbox.selectedId(), "ct:WHATSAPP:4917012345@s.whatsapp.net");
    EXPECT_EQ(drafts.count(), 1);
    EXPECT_EQ(cell("SELECT source || '|' || external_id || '|' || body FROM outbound_draft;"),
        "compose|4917012345@s.whatsapp.net|good day");
    EXPECT_EQ(commands("send").size(), 0);
    drafts.approveDraft(column(drafts.rows(), "id").first());
    EXPECT_EQ(commands("send").size(), 1);
}

TEST_F(DraftsTest, aDraftOutlivesItsConversationAndSomebodyKnownKeepsTheirName)
{
    const QString id = queue("hello");
    engines.db().exec("UPDATE unified_conversation SET deleted_at=1;");
    clock.advance(seconds(4));
    EXPECT_EQ(shown("title"), "AI wants to send to Ana Ruiz · WHATSAPP");
    drafts.approveDraft(id);
    EXPECT_EQ(commands("send").size(), 1);
    EXPECT_FALSE(inbox.composeNew(account, "49171", "again")) << "a deleted conversation takes no draft";
    engines.db().exec("UPDATE unified_conversation SET deleted_at=NULL;");
    EXPECT_TRUE(inbox.composeNew(account, "+49 171", "again"));
    EXPECT_EQ(inbox.selected().name, "Ana Ruiz");
}

TEST_F(DraftsTest, whatCannotBeQueuedStaysInTheSheet)
{
    ComposeSheet& sheet = *inbox.composeSheet();
    const Account mail = accounts.add("Mail", Channel::Email);
    sheet.open();
    sheet.setAccountId(mail.id.toString());
    sheet.setAccountId("nonsense");
    EXPECT_EQ(sheet.accountId(), mail.id.toString());
    EXPECT_EQ(sheet.property("recipientLabel"), "Email address");
    sheet.setRecipient(" new@x.de ");
    sheet.setMessage("good day");
    engines.db().exec("CREATE TRIGGER full BEFORE INSERT ON outbound_draft BEGIN SELECT RAISE(ABORT, 'full'); END;");
    sheet.submit();
    EXPECT_EQ(sheet.errorText(), "Couldn't queue the draft for this conversation.");
    EXPECT_TRUE(sheet.shown());
    engines.db().exec("DROP TRIGGER full;");
    sheet.submit();
    EXPECT_FALSE(sheet.shown());
    EXPECT_EQ(inbox.selectedId(), "ct:EMAIL:new@x.de");
    accounts.remove(mail);
    accounts.remove(account);
    EXPECT_EQ(sheet.emptyText(), "Connect an account in Settings first.");
    sheet.setRecipient("new@x.de");
    sheet.setMessage("x");
    EXPECT_FALSE(sheet.valid());
}

TEST(ComposeSheetRules, aRecipientIsCheckedByItsChannel)
{
    EXPECT_TRUE(recipientValid(Channel::Email, "a@b.c"));
    EXPECT_FALSE(recipientValid(Channel::Email, "a@b"));
    EXPECT_FALSE(recipientValid(Channel::Email, "a.b"));
    for (const Channel channel : { Channel::WhatsApp, Channel::Sms, Channel::IMessage }) {
        EXPECT_FALSE(recipientValid(channel, "+1 234"));
        EXPECT_TRUE(recipientValid(channel, "+1 23-45"));
        EXPECT_FALSE(recipientValid(channel, "Anastasia"));
    }
    for (const Channel channel : { Channel::LinkedIn, Channel::Telegram, Channel::Discord, Channel::Slack,
             Channel::Instagram, Channel::Messenger }) {
        EXPECT_TRUE(recipientValid(channel, "x"));
        EXPECT_FALSE(recipientValid(channel, " \t"));
    }
    EXPECT_EQ(recipientLabel(Channel::LinkedIn), "LinkedIn profile");
    EXPECT_EQ(recipientLabel(Channel::Telegram), "Recipient");
    EXPECT_EQ(recipientAddress(Channel::WhatsApp, "+٤٩ 170"), "49170@s.whatsapp.net");
    EXPECT_EQ(recipientAddress(Channel::Sms, " +49 170 "), "+49 170");
}

TEST(DraftWords, theLineOverTheThreadSaysWhoseDraftItIs)
{
    EXPECT_EQ(draftStatusTitle(draftOf("placed")), "Placed in browser for 4917 · WHATSAPP");
    EXPECT_EQ(draftStatusTitle(draftOf("Failed")), "Local send failed to 4917 · WHATSAPP");
    EXPECT_EQ(draftStatusTitle(draftOf("pending", "WEB")), "Web draft waiting for local approval · 4917 · WHATSAPP");
    PendingDraft acknowledged = draftOf("pending");
    acknowledged.webAckStatus = "seen";
    EXPECT_EQ(draftStatusTitle(acknowledged), "Web draft waiting for local approval · 4917 · WHATSAPP");
    acknowledged.status = "failed";
    EXPECT_EQ(draftFailureReason(acknowledged),
        "Send failed — engine did not report a reason. Retry or check the account connection.");
    acknowledged.error = " no such chat\n";
    EXPECT_EQ(draftFailureReason(acknowledged), "no such chat");
}
