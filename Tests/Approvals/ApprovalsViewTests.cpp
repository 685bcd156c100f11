#include "Approvals/ApprovalsView.h"
#include "Foundation/Literals.h"

#include "Approvals/ApprovalsStore.h"
#include "Calls/RecordedCalls.h"
#include "Engines/AccountStore.h"
#include "Store/Approvals/EventRequests.h"
#include "Store/Approvals/WorkDecisions.h"
#include "Store/Messages/IngestQueries.h"
#include "Support/EngineWorld.h"
#include "Support/Print.h"
#include "Support/Rows.h"
#include "Support/WaitingItems.h"

#include <QAbstractItemModelTester>
#include <QSignalSpy>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

class ApprovalsViewTest : public testing::Test, protected EngineWorld {
protected:
    ApprovalsViewTest() { store.attach(delivery, calls); }

    LocalDB& db() { return engines.db(); }

    void look()
    {
        delivery.refresh();
        store.refresh();
    }

    QString shown(const QString& key, const QByteArray& role)
    {
        const QAbstractItemModel& rows = *view.rows();
        for (int row = 0; row < rows.rowCount(); ++row) {
            const QModelIndex index = rows.index(row, 0);
            if (index.data(rows.roleNames().key("key")).toString() == key)
                return index.data(rows.roleNames().key(role)).toString();
        }
        return "-";
    }

    QString words(const QString& key, const QByteArrayList& roles)
    {
        QStringList parts;
        for (const QByteArray& role : roles)
            parts.append(shown(key, role));
        return parts.join('|');
    }

    QString draftStatus(const QString& id) { return cell("SELECT status FROM outbound_draft WHERE id=?;", { id }); }

    RecordedCalls calls { engines.db() };
    ApprovalsStore store { centre, notifier, clock };
    AccountStore accounts { home.paths().applicationSupport };
    DraftActions actions { store, engines, accounts };
    ApprovalsView view { store, actions, engines.db(), clock };
    QAbstractItemModelTester tester { view.rows(), QAbstractItemModelTester::FailureReportingMode::Fatal };
};

}

TEST_F(ApprovalsViewTest, everyKindStandsUnderItsHeadInItsOwnWords)
{
    writeDraft(db(), "d1", "Ana", "See you at three");
    writeDraft(db(), "d2", "", "Again", "failed");
    writeDraft(db(), "d3", "Ben", "In the browser", "placed");
    writeDraft(db(), "d4", "Cy", "On its way", "sending");
    writeProposal(db(), "p1", "task", "Call back", R"({"title":"Call Ana"})");
    writeProposal(db(), "p2", "horoscope", "Stars", "no json");
    writeDecision(db(), "w1", "Pay the invoice", "Transfer 300", "It is due", "money");
    writeDecision(db(), "w2", "Odd", "Do it", " ", "weird-word");
    look();

    const QByteArrayList draft { "head", "title", "body", "approveLabel", "canDecide", "canEdit", "stateText" };
    EXPECT_EQ(words("draft:d1", draft),
        "Outbound Messages|AI wants to send to Ana · WHATSAPP|See you at three|Approve|true|true|");
    EXPECT_EQ(words("draft:d2", draft), "Outbound Messages|Local send failed to +1 · WHATSAPP|Again|Retry|true|true|");
    EXPECT_TRUE(shown("draft:d2", "failureReason").startsWith("Send failed — engine did not report"));
    EXPECT_EQ(shown("draft:d1", "failureReason"), "");
    db().exec("UPDATE outbound_draft SET error='It changed.' WHERE id IN ('d1','d3');");
    look();
    EXPECT_EQ(shown("draft:d1", "failureReason"), "It changed.") << "why it waits for a person again";
    EXPECT_EQ(shown("draft:d3", "failureReason"), "");
    EXPECT_EQ(words("draft:d3", { "canDecide", "stateText" }), "false|Placed — awaiting LinkedIn confirmation");
    EXPECT_EQ(words("draft:d4", { "canDecide", "stateText", "secondsLeft" }), "false|Sending…|0");
    EXPECT_EQ(words("proposal:p1", { "head", "title", "body", "detail", "approveLabel", "canEdit" }),
        "CRM Updates|Call back|Call Ana|Task|Apply|false");
    EXPECT_EQ(words("proposal:p2", { "title", "body", "detail" }), "Stars||Horoscope");
    const QByteArrayList decision { "head", "title", "body", "why", "riskText", "riskTone", "approveLabel" };
    EXPECT_EQ(words("decision:w1", decision),
        "Agent Decisions|Pay the invoice|Transfer 300|Why: It is due|money risk|money|Approve");
    EXPECT_EQ(words("decision:w2", decision), "Agent Decisions|Odd|Do it||weird-word risk||Approve");
    EXPECT_EQ(view.waitingText(), "6 waiting for your approval");
    EXPECT_EQ(view.heads().title("Outbound Messages"), "Outbound Messages  4");
    EXPECT_EQ(view.emptyLines(), QStringList());
    EXPECT_EQ(waitingForDecision(store), 6);
}

TEST_F(ApprovalsViewTest, anEventSaysWhenAndWhereItWouldBe)
{
    CalCommand event;
    event.title = "Lunch";
    event.startMs = clock.nowMs();
    event.endMs = event.startMs + 3'600'000;
    event.location = "Hall";
    event.calendar = "Work";
    const QString today = eventWords(event, clock.nowMs());
    EXPECT_TRUE(today.endsWith(" · Hall · Work")) << qPrintable(today);
    EXPECT_EQ(eventRow(event, clock.nowMs(), {}).detail, today);
    event.location.clear();
    event.startMs -= 1'800'000;
    EXPECT_NE(eventWords(event, clock.nowMs()).section(" · ", 0, -2), today.section(" · ", 0, -3));
    EXPECT_FALSE(eventWords(event, clock.nowMs()).contains("Hall"));
}

TEST_F(ApprovalsViewTest, whereNothingWaitsItSaysSoForEachKind)
{
    EXPECT_EQ(view.count(), 0);
    EXPECT_EQ(view.badge(), "");
    EXPECT_EQ(view.emptyTitle(), "No pending approvals");
    EXPECT_TRUE(view.emptyText().startsWith("Nothing is waiting on you. "));
    EXPECT_TRUE(view.settingsEmptyText().startsWith("No approvals yet — appears when an agent queues a send, "));
    EXPECT_EQ(view.heads().title("CRM Updates"), "CRM Updates");
    EXPECT_FALSE(view.stepBack());
    EXPECT_EQ(view.emptyLines(),
        QStringList(
            { "No message drafts waiting.", "No CRM update proposals waiting.", "No agent decisions waiting." }));
    writeDecision(db(), "w1", "Deploy", "now", "", "high");
    look();
    EXPECT_EQ(view.badge(), "1");
    EXPECT_EQ(view.emptyLines(), QStringList({ "No message drafts waiting.", "No CRM update proposals waiting." }));
    db().exec("DROP TABLE work_decision;");
    look();
    EXPECT_EQ(view.count(), 0);
}

TEST_F(ApprovalsViewTest, anApprovedDraftCountsDownAndCanBeTakenBackUntilItGoesOut)
{
    writeDraft(db(), "d1", "Ana", "hello");
    look();
    view.approve("draft:d1");
    view.approve("draft:d1");
    EXPECT_EQ(words("draft:d1", { "stateText", "secondsLeft", "canDecide", "canEdit" }), "Sending…|5|false|false");
    EXPECT_EQ(view.waiting(), 0);
    EXPECT_EQ(waitingForDecision(store), 0);
    view.reject("draft:d1");
    view.edit("draft:d1");
    EXPECT_EQ(view.editor()->draftId(), "");
    clock.advance(seconds(3));
    EXPECT_EQ(shown("draft:d1", "secondsLeft"), "2");
    view.undo("draft:d1");
    EXPECT_EQ(words("draft:d1", { "stateText", "secondsLeft", "canDecide" }), "|0|true");
    clock.advance(seconds(10));
    EXPECT_EQ(draftStatus("d1"), "pending");

    view.approve("draft:d1");
    EXPECT_EQ(shown("draft:d1", "secondsLeft"), "5");
    clock.advance(Milliseconds(5010));
    EXPECT_EQ(draftStatus("d1"), "approved") << "its account has never run";
    EXPECT_TRUE(shown("draft:d1", "stateText").startsWith("Waits for the engine of "));
    const qsizetype timers = clock.pendingTimers();
    view.undo("draft:d1");
    view.approve("draft:nobody");
    EXPECT_EQ(clock.pendingTimers(), timers);
}

TEST_F(ApprovalsViewTest, anEditKeepsItsWordsUntilTheRowHasThem)
{
    writeDraft(db(), "d1", "Ana", "hello");
    writeDraft(db(), "d2", "Ben", "another");
    writeProposal(db(), "p1", "task", "Call back", "{}");
    look();
    DraftEdit& editor = *view.editor();
    view.edit("proposal:p1");
    view.edit("draft:nobody");
    EXPECT_EQ(editor.draftId(), "");
    view.edit("draft:d1");
    EXPECT_EQ(editor.text(), "hello");
    view.approve("draft:d1");
    EXPECT_EQ(shown("draft:d1", "secondsLeft"), "0") << "what is edited is not approved";
    editor.setText(" \n");
    editor.save();
    EXPECT_EQ(editor.draftId(), "d1");
    editor.setText("good day");
    view.edit("draft:d2");
    EXPECT_EQ(editor.draftId() + editor.text() + editor.problem(), "d1good daySave or close this text first.");
    db().exec("CREATE TRIGGER full BEFORE UPDATE ON outbound_draft BEGIN SELECT RAISE(ABORT, 'disk full'); END;");
    editor.save();
    EXPECT_EQ(editor.text() + '|' + editor.problem(), "good day|It couldn't be saved. Try again.");
    db().exec("DROP TRIGGER full;");
    editor.save();
    EXPECT_EQ(editor.draftId(), "");
    EXPECT_EQ(shown("draft:d1", "body"), "good day");

    view.edit("draft:d1");
    editor.setText("better words");
    db().exec("UPDATE outbound_draft SET status='sent' WHERE id='d1';");
    look();
    EXPECT_EQ(
        editor.text() + '|' + editor.problem(), "better words|Already sent. Your text stays here until you close it.");
    EXPECT_EQ(words("draft:d1", { "canDecide", "canEdit" }), "false|false") << "it stays for its words";
    EXPECT_FALSE(editor.canSave());
    EXPECT_TRUE(view.stepBack());
    EXPECT_EQ(shown("draft:d1", "title"), "-");
    EXPECT_EQ(cell("SELECT body FROM outbound_draft WHERE id='d1';"), "good day");
}

TEST_F(ApprovalsViewTest, aRiskyDecisionIsAskedAboutOnceMoreWithWhatItPaysToWhom)
{
    writeDecision(db(), "w1", "Pay", "Transfer 412.80 EUR to Arcillas del Sur for invoice 311.", "", "money");
    writeDecision(db(), "w2", "Pay", "300", "", "low");
    look();
    EXPECT_EQ(view.askingRow(), -1);
    view.log()->setShown(true);
    view.approve("decision:w1");
    EXPECT_FALSE(view.log()->shown()) << "the question is in the other list";
    EXPECT_EQ(view.askingRow(), column(*view.rows(), "key").indexOf("decision:w1"));
    EXPECT_EQ(view.asking(), "decision:w1");
    EXPECT_EQ(shown("decision:w1", "question"), "Approve this payment: 412.80 EUR to Arcillas del Sur?");
    view.approve("decision:w2");
    clock.advance(seconds(6));
    EXPECT_EQ(
        cell("SELECT group_concat(status) FROM (SELECT status FROM work_decision ORDER BY id);"), "proposed,approved");
    db().exec("UPDATE work_decision SET proposal='Transfer 9000 EUR' WHERE id='w1';");
    look();
    EXPECT_EQ(view.asking(), "") << "it is not what was asked about";
    view.confirm();
    view.approve("decision:w1");
    EXPECT_TRUE(view.stepBack());
    EXPECT_EQ(view.asking(), "");
    EXPECT_FALSE(view.stepBack());
    view.confirm();
    EXPECT_EQ(shown("decision:w1", "secondsLeft"), "0");
    centre.post(notifications::approvalAction, {}, { { "kind", "decision" }, { "id", "w1" }, { "action", "approve" } });
    EXPECT_EQ(view.asking(), "decision:w1") << "from a banner";
    view.confirm();
    EXPECT_EQ(words("decision:w1", { "stateText", "secondsLeft" }), "Approving…|5");
    clock.advance(seconds(5));
    EXPECT_EQ(cell("SELECT status FROM work_decision WHERE id='w1';"), "approved");

    writeDraft(db(), "d1", "Ana", "hello", "sending");
    failUnacknowledgedDraft(db(), "d1");
    look();
    view.approve("draft:d1");
    EXPECT_EQ(view.asking(), "draft:d1") << "a retry could send it twice";
    EXPECT_EQ(shown("draft:d1", "question"), "This may have gone out already. Send it again?");
    view.stepBack();
    centre.post(
        notifications::approvalAction, {}, { { "kind", "draft_failed" }, { "id", "d1" }, { "action", "approve" } });
    EXPECT_EQ(view.asking() + draftStatus("d1"), "draft:d1failed");
}

TEST_F(ApprovalsViewTest, aRowThatWasPressedKeepsItsPlaceUntilThePointerLeavesOrTwoSecondsPass)
{
    for (const QString& id : { "w1", "w2", "w3" })
        writeDecision(db(), id, id, "", "", "");
    look();
    auto& rows = static_cast<HoldingListModel&>(*view.rows());
    rows.setPointerInside(true);
    view.reject("decision:w2");
    clock.advance(seconds(5));
    EXPECT_EQ(words("decision:w2", { "held", "stateText", "canDecide" }), "true|Rejected|false");
    EXPECT_EQ(view.waiting(), 2);
    clock.advance(Milliseconds(1999));
    EXPECT_EQ(rows.rowCount(), 3);
    clock.advance(Milliseconds(1));
    EXPECT_EQ(rows.rowCount(), 2);
    view.approve("decision:w1");
    clock.advance(seconds(5));
    EXPECT_EQ(rows.rowCount(), 2);
    rows.setPointerInside(false);
    EXPECT_EQ(rows.rowCount(), 1);
}

TEST_F(ApprovalsViewTest, whatWasDecidedStandsInAListWithWhatCameOfIt)
{
    DecisionLog& log = *view.log();
    const auto lines = [&] {
        QStringList told;
        for (int row = 0; row < log.rows()->rowCount(); ++row) {
            QStringList parts;
            for (const char* role : { "verdict", "who", "title", "body", "outcome" })
                parts.append(log.rows()->index(row, 0).data(log.rows()->roleNames().key(role)).toString());
            told.append(parts.join('|'));
        }
        return told;
    };
    log.setShown(true);
    EXPECT_EQ(lines(), QStringList());
    writeDraft(db(), "d1", "Ana", "hello");
    writeDraft(db(), "d2", "Ben", "from elsewhere", "approved");
    writeProposal(db(), "p1", "task", "Call back", R"({"title":"Call Ana"})");
    writeDecision(db(), "w1", "Deploy", "now", "", "");
    look();
    view.approve("draft:d1");
    clock.advance(seconds(5));
    ASSERT_TRUE(DraftClaim::claim(db(), "d1").draft && DraftClaim::claim(db(), "d2").draft);
    acknowledgeDraft(db(), "main", "d1", "failed", {}, "no such chat");
    look();
    view.approve("draft:d1");
    view.approve("proposal:p1");
    view.reject("decision:w1");
    clock.advance(seconds(5));
    ASSERT_TRUE(DraftClaim::claim(db(), "d1").draft);
    acknowledgeDraft(db(), "main", "d1", "sent", u"m1"_s, {});
    db().exec("UPDATE crm_update_proposal SET title='Other'; DELETE FROM work_decision;");
    log.setShown(false);
    log.setShown(true);
    EXPECT_EQ(lines(),
        QStringList({ "Rejected|You|A decision|It is no longer stored.|",
            "Applied|You|Other|It was changed after this.|", "Approved|You|Message to Ana|hello|Sent",
            "Approved|Another program|Message to Ben|from elsewhere|", "Approved|You|Message to Ana|hello|Not sent" }));
    EXPECT_FALSE(log.hasOlder());
}

TEST_F(ApprovalsViewTest, theListOfTheDecidedFollowsWhileItIsShownAndReadsOlderLinesWhenAsked)
{
    DecisionLog& log = *view.log();
    for (const QString& id : { "c1", "c2" }) {
        db().run("INSERT INTO calendar_command(id, workspace_id, title, start_ms, end_ms, status, created_at) "
                 "VALUES(?,'local','Lunch',1000,2000,'pending',0);",
            { id });
        ASSERT_EQ(rejectEvent(db(), id), Decided::Taken);
    }
    db().exec("DELETE FROM calendar_command WHERE id='c1';");
    writeProposal(db(), "p1", "task", "Call", "{}");
    writeDraft(db(), "d1", "", "hello");
    ASSERT_EQ(rejectCRMUpdateProposal(db(), "p1"), Decided::Taken);
    ASSERT_EQ(rejectDraft(db(), "d1"), Decided::Taken);
    const auto lines = [&](const QByteArray& role) {
        return column(*log.rows(), role);
    };
    const QSignalSpy changes(&log, &DecisionLog::changed);
    view.refresh();
    EXPECT_EQ(changes.size(), 0);
    writeDecision(db(), "w0", "Deploy", "", "", "");
    EXPECT_EQ(view.count(), 0);
    view.refresh();
    EXPECT_EQ(view.count(), 1);
    db().exec("DELETE FROM work_decision;");
    EXPECT_TRUE(log.emptyText().startsWith("What you approve, apply or reject appears here"));
    log.setShown(true);
    log.setShown(true);
    EXPECT_EQ(changes.size(), 2);
    EXPECT_EQ(lines("title"), QStringList({ "Message to 1@s.whatsapp.net", "Call", "Lunch", "A calendar event" }));
    EXPECT_EQ(lines("kind"), QStringList({ "draft", "proposal", "event", "event" }));
    EXPECT_EQ(lines("tone").join(',') + lines("day").first(), "bad,bad,bad,badToday");
    EXPECT_EQ(lines("platform"), QStringList({ "WHATSAPP", "", "", "" }));
    EXPECT_EQ(lines("body")[3], "It is no longer stored.");
    EXPECT_EQ(lines("body")[2].section(u' ', 0, 0), eventWords({}, 0).section(u' ', 0, 0)) << "at the epoch's day";
    db().exec("DELETE FROM outbound_draft; DELETE FROM crm_update_proposal;");
    for (const QString& id : { "w1", "w2" }) {
        writeDecision(db(), id, id, QString(300, u'x'), "", "");
        look();
        ASSERT_EQ(rejectWorkDecision(db(), id, id == "w1" ? "Ben" : "Oskel"), Decided::Taken);
        look();
        EXPECT_EQ(lines("title").first(), id);
    }
    EXPECT_EQ(lines("who").mid(0, 3), QStringList({ "You", "Ben", "You" }));
    EXPECT_EQ(lines("body").first(), QString(240, u'x'));
    EXPECT_EQ(lines("title").mid(2, 2), QStringList({ "A message", "A change to the CRM" }));
    const qsizetype read = changes.size();
    writeDecision(db(), "w3", "w3", "", "", "");
    look();
    EXPECT_EQ(changes.size(), read) << "nothing was decided";
    log.setShown(false);
    for (int n = 0; n < 300; ++n) {
        const QString id = u"more%1"_s.arg(n);
        writeDecision(db(), id, id, "", "", "");
        rejectWorkDecision(db(), id, "Oskel");
    }
    look();
    EXPECT_EQ(lines("title").first(), "w2") << "it is not shown";
    log.setShown(true);
    EXPECT_EQ(lines("title").size(), 300);
    EXPECT_TRUE(log.hasOlder());
    log.showOlder();
    EXPECT_EQ(lines("title").size(), 306);
    EXPECT_FALSE(log.hasOlder());
}

TEST_F(ApprovalsViewTest, anEditIsTakenBackOneStepAtATimeAndNoticesAreDismissed)
{
    writeDraft(db(), "d1", "Ana", "hello");
    look();
    view.edit("draft:d1");
    EXPECT_TRUE(view.stepBack());
    EXPECT_EQ(view.editor()->draftId() + view.editor()->text(), "");
    const QSignalSpy texts(view.editor(), &DraftEdit::textChanged);
    view.editor()->close();
    view.editor()->save();
    EXPECT_EQ(texts.size(), 0);
    db().exec("UPDATE outbound_draft SET body='other';");
    view.approve("draft:d1");
    clock.advance(seconds(5));
    EXPECT_EQ(view.notice(), "Ana: Changed since you saw it.");
    view.dismissNotice();
    EXPECT_EQ(view.notice(), "");
    EXPECT_EQ(draftStatus("d1"), "pending");
}

TEST_F(ApprovalsViewTest, aProposalAboutNobodyIsAppliedOnceAPersonSaysWhomItIsAbout)
{
    ensureConversation(db(), "EMAIL", "main", "jose@example.com", "José Ortega", 20);
    ensureConversation(db(), "WHATSAPP", "main", "34600@s.whatsapp.net", "Ben", 10);
    writeProposal(db(), "p1", "note", "Link contact, then add call note", R"({"body":"Wants two sizes."})");
    look();
    view.approve("proposal:p1");
    clock.advance(seconds(5));
    EXPECT_EQ(shown("proposal:p1", "failureReason"), "No contact linked. Open CRM and link this call first.");
    EXPECT_EQ(words("proposal:p1", { "detail", "linkLabel" }), "Note|Link contact");

    ContactPick& link = *view.link();
    const auto offered = [&] {
        QStringList names;
        for (const auto& person : link.people())
            names.append(person.name);
        return names.join(',');
    };
    link.begin("p1");
    EXPECT_EQ(offered(), "José Ortega,Ben");
    link.setQuery(" JOSÉ ");
    EXPECT_EQ(offered(), "José Ortega");
    link.choose("ct:EMAIL:gone");
    EXPECT_EQ(link.errorText(), "Couldn't link it, try again.");
    EXPECT_EQ(link.subject(), "p1");
    link.choose("ct:EMAIL:jose@example.com");
    EXPECT_EQ(link.subject(), "");
    EXPECT_EQ(words("proposal:p1", { "title", "detail", "linkLabel", "failureReason" }),
        "Add call note|Note · José Ortega|Change contact|");
    link.begin("p1");
    EXPECT_TRUE(view.stepBack());
    EXPECT_EQ(link.subject(), "");
    link.begin("p1");
    view.approve("proposal:p1");
    clock.advance(seconds(5));
    EXPECT_EQ(link.subject(), "") << "it no longer waits";
    EXPECT_EQ(cell("SELECT contact_id FROM contact_note WHERE body='Wants two sizes.';"), "ct:EMAIL:jose@example.com");
}
