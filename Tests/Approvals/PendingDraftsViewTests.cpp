#include "Approvals/PendingDraftsView.h"

#include "Approvals/ApprovalsStore.h"
#include "Approvals/ApprovalsView.h"
#include "Approvals/DraftWords.h"
#include "Calls/RecordedCalls.h"
#include "Engines/AccountStore.h"
#include "Store/Messages/IngestQueries.h"
#include "Support/EngineWorld.h"
#include "Support/Print.h"

#include <QAbstractItemModelTester>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

class PendingDraftsTest : public testing::Test, protected EngineWorld {
protected:
    PendingDraftsTest()
    {
        engines.setAccounts(&accounts);
        launcher.expect(FakeLauncher::stays());
        engines.start(account);
        delivery.startWatch();
        store.attach(delivery, calls);
    }

    QString queue(const QString& text)
    {
        const QString conversation
            = ensureConversation(engines.db(), "WHATSAPP", account.slug, "49171@s.whatsapp.net", "Ana Ruiz", 1);
        EXPECT_TRUE(queueDraft(engines.db(), conversation, text, "mcp"));
        const QString id = cell("SELECT id FROM outbound_draft ORDER BY rowid DESC LIMIT 1;");
        clock.advance(seconds(4));
        return id;
    }

    void send(const QString& id)
    {
        drafts.approveDraft(id);
        clock.advance(seconds(5));
    }

    /// What the first row offers.
    QString offered()
    {
        QStringList ids;
        for (const DraftAction& action :
            static_cast<RowListModel<PendingDraftItem>*>(drafts.rows())->rows().first().actions)
            ids.append(action.id + u':' + action.label);
        return ids.join(u',');
    }

    qsizetype sent() { return launcher.last().commands().size(); }
    QString status(const QString& id) { return cell("SELECT status FROM outbound_draft WHERE id=?;", { id }); }
    QString shown(const QByteArray& role)
    {
        const QAbstractItemModel& rows = *drafts.rows();
        return rows.index(0, 0).data(rows.roleNames().key(role)).toString();
    }

    AccountStore accounts { home.paths().applicationSupport };
    Account account = accounts.add("Main", Channel::WhatsApp);
    RecordedCalls calls { engines.db() };
    ApprovalsStore store { centre, notifier, clock };
    DraftActions actions { store, engines, accounts };
    ApprovalsView panel { store, actions, engines.db(), clock };
    PendingDraftsView drafts { { store, actions, *panel.editor(), engines.db(), accounts, clock } };
    QAbstractItemModelTester tester { drafts.rows(), QAbstractItemModelTester::FailureReportingMode::Fatal };
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

TEST_F(PendingDraftsTest, whatIsArmedInTheBarIsArmedInThePanelAndGoesOutAfterFiveSeconds)
{
    const QString id = queue("hello");
    EXPECT_EQ(shown("title"), "AI wants to send to Ana Ruiz · WHATSAPP");
    EXPECT_EQ(shown("statusLabel"), "waiting approval");
    EXPECT_EQ(shown("approveLabel"), "Approve & Send");
    EXPECT_EQ(shown("failureReason"), "");
    drafts.approveDraft(id);
    EXPECT_EQ(shown("statusLabel") + shown("secondsLeft") + shown("canDecide"), "Sending…5false");
    EXPECT_EQ(panel.waiting(), 0);
    panel.undo("draft:" + id);
    EXPECT_EQ(shown("canDecide"), "true");
    panel.reject("draft:" + id);
    EXPECT_EQ(shown("statusLabel"), "Discarding…");
    drafts.approveDraft(id);
    drafts.undo(id);
    clock.advance(seconds(8));
    EXPECT_EQ(status(id), "pending");

    send(id);
    EXPECT_EQ(launcher.last().commands().first(),
        QJsonObject(
            { { "chatId", "49171@s.whatsapp.net" }, { "cmd", "send" }, { "draftId", id }, { "text", "hello" } }));
    EXPECT_EQ(status(id), "sending");
    EXPECT_EQ(shown("title"), "Sending from this computer to Ana Ruiz · WHATSAPP");
    EXPECT_EQ(shown("canDecide"), "false");

    launcher.last().printEvent({ { "type", "sendAck" }, { "draftId", id }, { "status", "refused" } });
    settle();
    EXPECT_EQ(shown("statusLabel"), "failed Send failed");
    EXPECT_EQ(shown("failureReason"), "Send failed");
    EXPECT_EQ(shown("approveLabel"), "Retry Send");
    send(id);
    EXPECT_EQ(sent(), 2);
    launcher.last().printEvent({ { "type", "sendAck" }, { "draftId", id }, { "status", "sent" } });
    settle();
    EXPECT_EQ(drafts.count(), 0);
    EXPECT_EQ(status(id), "sent");
}

TEST_F(PendingDraftsTest, anAccountThatIsGoneFailsTheDraft)
{
    const QString id = queue("hello");
    engines.stop(account);
    accounts.remove(account);
    send(id);
    EXPECT_EQ(status(id), "failed");
    EXPECT_EQ(shown("failureReason"), "Account " + account.slug + " is no longer connected");
    drafts.reject(id);
    clock.advance(seconds(5));
    EXPECT_EQ(status(id), "rejected");
    EXPECT_EQ(drafts.count(), 0);
}

TEST_F(PendingDraftsTest, anApprovalWakesAnEngineThatWasStopped)
{
    const QString id = queue("hello");
    engines.stop(account);
    launcher.last().exit();
    account.paused = true;
    accounts.update(account);
    launcher.expect(FakeLauncher::stays());
    send(id);
    EXPECT_EQ(status(id), "sending") << "at once";
    EXPECT_TRUE(engines.isRunning(account));
    EXPECT_FALSE(accounts.accounts().first().paused.value_or(false));
}

TEST_F(PendingDraftsTest, whatWaitsForItsEngineOrWasPlacedCanBeDealtWith)
{
    const QString id = queue("hello");
    launcher.last().printEvent({ { "type", "status" }, { "state", "logged_out" } });
    launcher.last().exit();
    settle();
    send(id);
    EXPECT_EQ(shown("title"), "Approved for Ana Ruiz · WHATSAPP");
    EXPECT_EQ(shown("stateText"), "Waits for the engine of Main");
    EXPECT_EQ(shown("failureReason"), "The account is signed out. Sign in again in Settings.");
    EXPECT_EQ(offered(), "start:Start,takeBack:Take back,reject:Reject");
    panel.perform("draft:" + id, "takeBack");
    EXPECT_EQ(status(id), "pending");
    EXPECT_EQ(offered(), "");
    send(id);
    launcher.expect(FakeLauncher::stays());
    drafts.perform(id, "start");
    EXPECT_EQ(status(id), "sending");

    clock.advance(seconds(124));
    EXPECT_EQ(shown("title"), "May have gone out to Ana Ruiz · WHATSAPP");
    EXPECT_EQ(shown("stateText"), "May have gone out");
    EXPECT_EQ(drafts.confirmText(), "Send this message?");
    drafts.askToConfirm(id);
    EXPECT_EQ(drafts.confirmText(), "This may have gone out already. Send it again?");
    send(id);
    launcher.last().printEvent({ { "type", "sendAck" }, { "draftId", id }, { "status", "placed" } });
    settle();
    EXPECT_EQ(offered(), "confirmSent:It was sent,reject:Discard");
    drafts.perform(id, "reject");
    EXPECT_EQ(offered(), "") << "during the countdown";
    drafts.perform(id, "confirmSent");
    EXPECT_EQ(status(id), "placed");
    drafts.undo(id);
    drafts.perform(id, "confirmSent");
    clock.advance(seconds(5));
    EXPECT_EQ(status(id), "sent");
    EXPECT_EQ(drafts.count(), 0);
}

TEST_F(PendingDraftsTest, whatAnotherProgramChangedMeanwhileIsNotSentAndTheRefusalSaysSo)
{
    const QString id = queue("as shown");
    updateDraftBody(engines.db(), id, "other words");
    send(id);
    EXPECT_EQ(sent(), 0);
    EXPECT_EQ(drafts.notice(), "Ana Ruiz: Changed since you saw it.");
    EXPECT_EQ(shown("body"), "other words");
    drafts.dismissNotice();
    EXPECT_EQ(drafts.notice(), "");
    updateDraftBody(engines.db(), id, "third words");
    send(id);
    EXPECT_EQ(drafts.notice(), "Ana Ruiz: Changed since you saw it.");
    send(id);
    EXPECT_EQ(sent(), 1);
    EXPECT_EQ(drafts.notice(), "");
}

TEST_F(PendingDraftsTest, oneAtATimeIsAskedAboutAndNoneThatIsEdited)
{
    const QString first = queue("one");
    const QString second = queue("two");
    drafts.askToConfirm(first);
    drafts.askToConfirm(second);
    EXPECT_EQ(drafts.confirmDraft(), second);
    drafts.cancelConfirm();
    EXPECT_EQ(drafts.confirmDraft(), "");
    panel.editor()->begin(first);
    panel.editor()->setText("one and a half");
    drafts.askToConfirm(first);
    EXPECT_EQ(drafts.confirmDraft(), "");
    engines.db().exec("UPDATE outbound_draft SET status='sent' WHERE body='one';");
    clock.advance(seconds(4));
    EXPECT_EQ(shown("statusLabel"), "No longer waiting") << "its words are still here";
    panel.editor()->close();
    EXPECT_EQ(drafts.count(), 1);
    drafts.askToConfirm(second);
    engines.db().exec("UPDATE outbound_draft SET status='sent';");
    clock.advance(seconds(4));
    EXPECT_EQ(drafts.confirmDraft(), "") << "it has left the list";
}

TEST_F(PendingDraftsTest, aRowThatWasPressedKeepsItsPlaceAndAFileThatIsGoneSaysSo)
{
    const QString id = queue("hello");
    EXPECT_EQ(drafts.editor(), panel.editor());
    engines.db().run("UPDATE outbound_draft SET files=?;",
        { QString(R"([{"path":"/none/a.pdf","name":"a.pdf","mime":"application/pdf","bytes":5,"sha256":"x"}])") });
    engines.db().exec("UPDATE outbound_draft SET subject='Plans';");
    clock.advance(seconds(4));
    EXPECT_EQ(shown("subject"), "Subject: Plans");
    const auto files = static_cast<RowListModel<PendingDraftItem>*>(drafts.rows())->rows().first().files;
    ASSERT_EQ(files.size(), 1);
    EXPECT_EQ(files[0].name + u'|' + files[0].size + u'|' + files[0].path, "a.pdf|Not there any more|");
    auto& rows = static_cast<HoldingListModel&>(*drafts.rows());
    rows.setPointerInside(true);
    drafts.reject(id);
    EXPECT_EQ(shown("secondsLeft"), "5");
    clock.advance(seconds(5));
    EXPECT_EQ(status(id), "rejected");
    ASSERT_EQ(rows.rowCount(), 1);
    EXPECT_EQ(shown("canDecide") + shown("secondsLeft"), "false0");
}

TEST(DraftWords, theLineOverTheThreadSaysWhoseDraftItIs)
{
    EXPECT_EQ(draftStatusTitle(draftOf("placed")), "Placed in browser for 4917 · WHATSAPP");
    EXPECT_EQ(draftStatusTitle(draftOf("Failed")), "Local send failed to 4917 · WHATSAPP");
    EXPECT_EQ(draftStatusTitle(draftOf("pending", "WEB")), "Web draft waiting for local approval · 4917 · WHATSAPP");
    EXPECT_EQ(draftStatusTitle(draftOf("pending", "Forward")), "You forward to 4917 · WHATSAPP");
    EXPECT_EQ(draftStatusTitle(draftOf("pending", "compose")), "You write to 4917 · WHATSAPP");
    EXPECT_EQ(statusLabel(draftOf("sent")), "sent");
    Account account;
    RuntimeState engine;
    const auto waits = [&](const QString& status) {
        return waitingReason(draftOf(status), account, engine);
    };
    EXPECT_EQ(waits("approved"), "");
    engine.status = WAStatus::Error;
    engine.lastLog = "No disk.";
    EXPECT_EQ(waits("approved"), "The engine is not running. No disk.");
    engine.status = WAStatus::NeedsQR;
    EXPECT_EQ(waits("approved"), "The account waits to be linked in Settings.");
    account.paused = true;
    EXPECT_EQ(waits("approved"), "The account is paused. Start runs its engine, which then sends the message.");
    EXPECT_EQ(waits("pending"), "");
    PendingDraft acknowledged = draftOf("pending");
    acknowledged.webAckStatus = "seen";
    EXPECT_EQ(draftStatusTitle(acknowledged), "Web draft waiting for local approval · 4917 · WHATSAPP");
    acknowledged.status = "failed";
    EXPECT_EQ(draftFailureReason(acknowledged),
        "Send failed — engine did not report a reason. Retry or check the account connection.");
    acknowledged.error = " no such chat\n";
    EXPECT_EQ(draftFailureReason(acknowledged), "no such chat");
    acknowledged.providerMsgId = "p";
    acknowledged.accountName = "Main";
    for (const auto& [status, label] : { std::pair("failed", "failed  no such chat\n"), std::pair("sending", "sending"),
             std::pair("placed", "Placed — awaiting LinkedIn confirmation"), std::pair("sent", "sent - p"),
             std::pair("rejected", "rejected"), std::pair("approved", "Waits for the engine of Main"),
             std::pair("pending", "waiting approval") }) {
        acknowledged.status = status;
        EXPECT_EQ(statusLabel(acknowledged), label);
    }
}
