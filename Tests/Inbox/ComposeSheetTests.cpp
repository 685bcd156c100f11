#include "InboxViewTest.h"
#include "Store/Approvals/OutboundQueries.h"
#include "Store/Messages/IngestQueries.h"
#include "Support/Await.h"

using namespace corvane;

namespace {

class ComposeSheetTest : public InboxViewTest {
protected:
    ComposeSheetTest() { receiveFromAnaAndBen(); }
};

}

TEST_F(ComposeSheetTest, aMessageToANewPersonWaitsForApproval)
{
    ComposeSheet& sheet = *inbox.composeSheet();
    sheet.open();
    EXPECT_EQ(sheet.accountId(), account.id.toString());
    EXPECT_EQ(sheet.property("recipientLabel"), "Recipient");
    EXPECT_EQ(sheet.property("recipientExample"), "+34 600 000 000");
    EXPECT_EQ(sheet.emptyText(), "");
    EXPECT_TRUE(sheet.shown());
    sheet.setRecipient(" +49 (170) 123-45 ");
    EXPECT_TRUE(sheet.hasValidRecipient());
    EXPECT_FALSE(sheet.valid()) << "no message";
    sheet.submit();
    sheet.setMessage("good day");
    EXPECT_TRUE(sheet.valid());
    sheet.submit();
    EXPECT_FALSE(sheet.shown());
    EXPECT_EQ(sheet.message(), "");
    EXPECT_EQ(inbox.person()->selectedId(), "ct:WHATSAPP:4917012345@s.whatsapp.net");
    EXPECT_EQ(cell("SELECT source || '|' || external_id || '|' || body || '|' || status FROM outbound_draft;"),
        "compose|4917012345@s.whatsapp.net|good day|pending");
    EXPECT_EQ(commands("send").size(), 0);
}

TEST_F(ComposeSheetTest, somebodyKnownKeepsTheirNameAndADeletedConversationTakesNoDraft)
{
    engines.db().exec("UPDATE unified_conversation SET deleted_at=1;");
    EXPECT_FALSE(inbox.composeNew(account, "49171", { "again" }));
    engines.db().exec("UPDATE unified_conversation SET deleted_at=NULL;");
    EXPECT_TRUE(inbox.composeNew(account, "+49 171", { "again" }));
    EXPECT_EQ(inbox.person()->selected().name, "Ana Ruiz");
}

TEST_F(ComposeSheetTest, whatCannotBeQueuedStaysInTheSheet)
{
    ComposeSheet& sheet = *inbox.composeSheet();
    const Account mail = accounts.add("Mail", Channel::Email);
    sheet.open();
    sheet.setAccountId(mail.id.toString());
    sheet.setAccountId("nonsense");
    EXPECT_EQ(sheet.accountId(), mail.id.toString());
    EXPECT_EQ(sheet.property("recipientLabel"), "Email address");
    EXPECT_EQ(sheet.property("recipientExample"), "name@example.com");
    QStringList offered;
    for (const AccountChoice& choice : sheet.accounts())
        offered.append(choice.label + ' ' + choice.channel);
    EXPECT_EQ(offered, QStringList({ "Main · WhatsApp WHATSAPP", "Mail · Email EMAIL" }));
    const QSignalSpy changes(&sheet, &ComposeSheet::changed);
    for (int again = 0; again < 2; ++again) {
        sheet.setRecipient("new");
        sheet.setMessage("hi");
        sheet.setSubject("none");
    }
    EXPECT_EQ(changes.size(), 3);
    sheet.submit();
    EXPECT_TRUE(sheet.shown()) << "it has no address";
    sheet.attachments()->add({ QUrl::fromLocalFile(home.path("gone.pdf")) });
    EXPECT_EQ(sheet.errorText(), "gone.pdf can't be read.");
    sheet.close();
    EXPECT_FALSE(sheet.shown());
    sheet.open();
    EXPECT_EQ(sheet.errorText(), "");
    sheet.setRecipient(" New@X.de ");
    sheet.setMessage("good day");
    rememberFeatures(engines.db(), mail.slug, { true, 1000, true });
    sheet.setAccountId(mail.id.toString());
    EXPECT_TRUE(sheet.takesSubject());
    sheet.setSubject("Plans");
    sheet.attachments()->paste({}, "picture");
    ASSERT_TRUE(await([&] { return sheet.attachments()->isReady(); }));
    engines.db().exec("CREATE TRIGGER full BEFORE INSERT ON outbound_draft BEGIN SELECT RAISE(ABORT, 'full'); END;");
    sheet.submit();
    EXPECT_EQ(sheet.errorText(), "Couldn't queue the draft for this conversation.");
    EXPECT_TRUE(sheet.shown());
    engines.db().exec("DROP TRIGGER full;");
    sheet.submit();
    EXPECT_FALSE(sheet.shown());
    EXPECT_EQ(inbox.person()->selectedId(), "ct:EMAIL:new@x.de");
    EXPECT_TRUE(cell("SELECT subject || files FROM outbound_draft;").startsWith("Plans[{"));
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
    EXPECT_EQ(recipientExample(Channel::Telegram), "");
    EXPECT_EQ(recipientExample(Channel::Sms), "+34 600 000 000");
    EXPECT_EQ(recipientAddress(Channel::Sms, "600 11"), "60011");
    EXPECT_EQ(recipientAddress(Channel::Telegram, " @Ana "), "@Ana");
    EXPECT_EQ(recipientAddress(Channel::WhatsApp, "+٤٩ 170"), "49170@s.whatsapp.net");
    EXPECT_EQ(recipientAddress(Channel::Sms, " +49 (170) 12 "), "+4917012");
    EXPECT_EQ(recipientAddress(Channel::Sms, "0049 170 12"), "+4917012");
}
