#include "Approvals/ApprovalsStore.h"
#include "Foundation/Literals.h"

#include "Calendar/CalendarCommands.h"
#include "Calendar/CalendarStore.h"
#include "Calls/RecordedCalls.h"
#include "Engines/EngineProcesses.h"
#include "Store/Messages/IngestQueries.h"
#include "Support/Await.h"
#include "Support/EngineWorld.h"
#include "Support/FakeCalendarSource.h"
#include "Support/LogCapture.h"
#include "Support/Print.h"
#include "Support/WaitingItems.h"

#include <gtest/gtest.h>

using namespace corvane;
namespace {

class ApprovalsTest : public testing::Test {
protected:
    ApprovalsTest()
    {
        world.notifier.bootstrap();
        shop.id = QUuid::createUuid();
        shop.name = shop.slug = u"shop"_s;
        shop.channelRaw = u"WHATSAPP"_s;
        world.launcher.expect(FakeLauncher::stays());
        world.engines.start(shop);
        world.delivery.startWatch();
    }

    void attach(ApprovalsStore& to) { to.attach(world.delivery, *calls); }
    void attach() { attach(store); }

    LocalDB& db() { return world.engines.db(); }

    QString queue(const QString& text)
    {
        const QString conversation = ensureConversation(db(), u"WHATSAPP"_s, u"shop"_s, u"chat"_s, u"Ana"_s, 1);
        EXPECT_TRUE(queueDraft(db(), conversation, text, u"mcp"_s));
        return world.cell(u"SELECT id FROM outbound_draft ORDER BY rowid DESC LIMIT 1;"_s);
    }

    QString status(const QString& id, const QString& table = u"outbound_draft"_s)
    {
        return world.cell(u"SELECT status FROM %1 WHERE id=?;"_s.arg(table), { id });
    }

    /// The banners shown since the last call, as "kind id: title" lines.
    QStringList announced()
    {
        QStringList lines;
        for (const Banner& banner : std::exchange(world.banners.shown, {}))
            lines.append(u"%1 %2: %3"_s.arg(banner.userInfo.value(u"approvalKind"_s).toString(),
                banner.userInfo.value(u"approvalId"_s).toString(), banner.title));
        return lines;
    }

    /// The title and body of the only banner shown since the last call, which must have no buttons.
    QString notice()
    {
        const QList<Banner> shown = std::exchange(world.banners.shown, {});
        EXPECT_EQ(shown.size(), 1);
        if (shown.size() != 1)
            return {};
        EXPECT_TRUE(shown.first().actions.isEmpty());
        EXPECT_EQ(shown.first().userInfo.value(u"approvalKind"_s), u"approval"_s);
        return shown.first().title + u'|' + shown.first().body;
    }

    void press(const QString& kind, const QString& id, const QString& action)
    {
        world.centre.post(notifications::approvalAction, std::nullopt,
            { { u"kind"_s, kind }, { u"id"_s, id }, { u"action"_s, action } });
    }

    QStringList sent()
    {
        QStringList texts;
        for (const QJsonObject& command : world.launcher.last().commands())
            texts.append(command.value(u"text"_s).toString());
        return texts;
    }

    void approve(const QString& id) { store.decide(draftKey(id), Verdict::Approve, seconds(5)); }

    void poll() { world.clock.advance(seconds(5)); }

    LogCapture logs;
    EngineWorld world;
    Account shop;
    std::unique_ptr<RecordedCalls> calls = std::make_unique<RecordedCalls>(world.engines.db());
    ApprovalsStore store { world.centre, world.notifier, world.clock };
};

}

TEST_F(ApprovalsTest, whatWaitsAtLaunchIsSilentAndWhatComesLaterIsAnnouncedOnceInItsOrder)
{
    db().exec(u"ALTER TABLE work_decision RENAME TO kept;"_s);
    queue(u"old"_s);
    writeProposal(db(), u"p0"_s, u"task"_s, u"Call"_s, u"{}"_s);
    attach();
    poll();
    EXPECT_EQ(announced(), QStringList()) << "no table of decisions is no error";
    db().exec(u"CREATE TABLE work_decision(id TEXT);"_s);
    poll();
    EXPECT_EQ(store.decisions().size(), 0) << "a table without its columns";
    db().exec(u"DROP TABLE work_decision; ALTER TABLE kept RENAME TO work_decision;"_s);
    writeDecision(db(), u"d1"_s, u"Pay"_s, u"100"_s, {}, u"unheard-of"_s);
    writeProposal(db(), u"p1"_s, u"unheard-of"_s, u"Stars"_s, u"no json"_s);
    const QString fresh = queue(u"new"_s);
    poll();
    EXPECT_EQ(
        announced(), QStringList({ u"draft %1: Ana"_s.arg(fresh), u"proposal p1: Stars"_s, u"decision d1: Pay"_s }));
    EXPECT_EQ(store.proposals().size(), 2);
    EXPECT_EQ(store.drafts().size(), 2);
    EXPECT_EQ(store.decisions().first().risk, u"unheard-of"_s);
    markDraftFailed(db(), fresh, u"no such chat"_s);
    writeDraft(db(), u"lost"_s, {}, u"x"_s, u"failed"_s);
    attach();
    poll();
    EXPECT_EQ(announced(), QStringList(u"draft_failed lost: 1@s.whatsapp.net"_s)) << "the other is known";
}

TEST_F(ApprovalsTest, aRejectionOrAnEditInsideTheWindowEndsIt)
{
    attach();
    const QString id = queue(u"hello"_s);
    world.delivery.refresh();
    approve(id);
    const qsizetype timers = world.clock.pendingTimers();
    approve(id);
    EXPECT_EQ(world.clock.pendingTimers(), timers) << "pressed twice is one window";
    press(u"draft"_s, id, u"reject"_s);
    EXPECT_FALSE(store.armed(draftKey(id)));
    poll();
    EXPECT_EQ(status(id), u"rejected"_s);
    EXPECT_EQ(sent(), QStringList());

    const QString second = queue(u"  "_s);
    EXPECT_FALSE(store.saveDraftBody(second, u" \n "_s));
    EXPECT_EQ(fetchDraft(db(), second)->body, u"  "_s);
    approve(second);
    EXPECT_TRUE(store.saveDraftBody(second, u" by hand\n"_s));
    poll();
    EXPECT_EQ(status(second), u"pending"_s) << "an edit is a new text, to be approved anew";
    approve(second);
    world.clock.advance(seconds(5));
    EXPECT_EQ(sent(), QStringList(u"by hand"_s));
}

TEST_F(ApprovalsTest, whatWasShownIsWhatIsApproved)
{
    attach();
    const QString id = queue(u"as shown"_s);
    poll();
    ASSERT_EQ(world.banners.shown.size(), 1);
    const Banner first = world.banners.shown.takeFirst();
    // In the panel: another process changes the text during the undo window.
    approve(id);
    updateDraftBody(db(), id, u"changed"_s);
    poll();
    EXPECT_EQ(sent(), QStringList());
    EXPECT_EQ(status(id), u"pending"_s);
    EXPECT_EQ(
        store.drafts().first().error, u"This draft changed after you approved it. Read it again before you decide."_s);
    ASSERT_EQ(announced(), QStringList(u"draft %1: Ana"_s.arg(id))) << "the person is asked again";
    // In a notification: an approval counts only for the announced text.
    updateDraftBody(db(), id, u"changed again"_s);
    world.banners.press(first, u"NIMB_APPROVE"_s);
    EXPECT_EQ(sent(), QStringList());
    ASSERT_EQ(announced().size(), 1);
    world.banners.press(first, u"NIMB_APPROVE"_s);
    EXPECT_EQ(sent(), QStringList(u"changed again"_s));
    world.banners.press(first, u"NIMB_APPROVE"_s);
    EXPECT_EQ(sent().size(), 1);
    EXPECT_EQ(announced(), QStringList()) << "pressed twice is no failure";
    // While the draft waits for its engine.
    markDraftFailed(db(), id, u"no such chat"_s);
    world.launcher.last().writeFailure = u"standard input is full"_s;
    press(u"draft_failed"_s, id, u"approve"_s);
    EXPECT_EQ(status(id), u"approved"_s);
    db().exec(u"UPDATE outbound_draft SET external_id='somebody else';"_s);
    world.launcher.last().writeFailure.clear();
    poll();
    EXPECT_EQ(status(id), u"pending"_s);
    EXPECT_EQ(sent().size(), 1);
    EXPECT_EQ(announced().size(), 1);
}

TEST_F(ApprovalsTest, eachKindIsDecidedFromItsNotification)
{
    attach();
    for (const QString& id : { u"d1"_s, u"d2"_s })
        writeDecision(db(), id, u"Pay"_s, u"100"_s, {}, u"low"_s);
    for (const QString& id : { u"p1"_s, u"p2"_s, u"p3"_s })
        writeProposal(db(), id, u"task"_s, u"Call"_s, u"{}"_s);
    writeProposal(db(), u"p4"_s, u"note"_s, u"Note"_s, u"{}"_s);
    const QString id = queue(u"hello"_s);
    poll();
    EXPECT_EQ(announced().size(), 7);
    press(u"draft"_s, id, u"open"_s);
    press(u"picture"_s, id, u"approve"_s);
    world.centre.post(notifications::approvalAction, std::nullopt, { { u"kind"_s, u"draft"_s }, { u"id"_s, id } });
    EXPECT_EQ(status(id), u"pending"_s);
    press(u"draft"_s, id, u"approve"_s);
    EXPECT_EQ(status(id), u"sending"_s) << "no window here: the press is the confirmation";
    press(u"decision"_s, u"d1"_s, u"approve"_s);
    press(u"decision"_s, u"d2"_s, u"reject"_s);
    EXPECT_EQ(
        world.cell(u"SELECT group_concat(status || decided_by) FROM (SELECT * FROM work_decision ORDER BY id);"_s),
        u"approvedOskel,rejectedOskel"_s);
    EXPECT_EQ(store.decisions().size(), 0);
    press(u"proposal"_s, u"p1"_s, u"approve"_s);
    press(u"proposal"_s, u"p2"_s, u"reject"_s);
    EXPECT_EQ(world.cell(u"SELECT group_concat(status) FROM (SELECT status FROM crm_update_proposal ORDER BY id);"_s),
        u"applied,rejected,pending,pending"_s);
    EXPECT_EQ(world.cell(u"SELECT title FROM crm_task;"_s), u"Call"_s);
    EXPECT_EQ(announced(), QStringList());

    // If the item is gone or cannot be decided, a notice says why and nothing else happens.
    db().exec(u"DELETE FROM crm_update_proposal WHERE id='p3'; DELETE FROM work_decision WHERE id='d1';"_s);
    press(u"proposal"_s, u"p3"_s, u"approve"_s);
    EXPECT_EQ(notice(), u"Couldn't approve|Call: It is no longer there."_s);
    press(u"proposal"_s, u"p4"_s, u"approve"_s);
    EXPECT_EQ(notice(), u"Couldn't approve|Note: No contact linked. Open CRM and link this call first."_s);
    press(u"decision"_s, u"d1"_s, u"reject"_s);
    EXPECT_EQ(notice(), u"Couldn't reject|It is no longer there."_s);
    press(u"decision"_s, u"d2"_s, u"approve"_s);
    EXPECT_EQ(notice(), u"Couldn't approve|Pay: Already rejected elsewhere."_s);
    press(u"draft"_s, u"od:nobody"_s, u"approve"_s);
    EXPECT_EQ(notice(), u"Couldn't approve|It is no longer there."_s);
    press(u"draft"_s, id, u"reject"_s);
    EXPECT_EQ(notice(), u"Couldn't reject|Ana: Already approved elsewhere."_s) << "it is at its engine";
    EXPECT_EQ(status(id), u"sending"_s);
    EXPECT_EQ(sent().size(), 1);
}

TEST_F(ApprovalsTest, everyVerdictCanBeUndoneForFiveSecondsAndIsWrittenAfterThem)
{
    attach();
    writeDecision(db(), u"d1"_s, u"Deploy"_s, u"now"_s, {}, u"low"_s);
    writeDecision(db(), u"d2"_s, u"Deploy"_s, u"now"_s, {}, u"low"_s);
    writeProposal(db(), u"p1"_s, u"task"_s, u"Call"_s, u"{}"_s);
    writeProposal(db(), u"p2"_s, u"task"_s, u"Call"_s, u"{}"_s);
    const QString draft = queue(u"hello"_s);
    poll();
    const QList<std::pair<ApprovalKey, Verdict>> verdicts {
        { draftKey(draft), Verdict::Reject },
        { { ApprovalKind::Proposal, u"p1"_s }, Verdict::Approve },
        { { ApprovalKind::Proposal, u"p2"_s }, Verdict::Reject },
        { { ApprovalKind::Decision, u"d1"_s }, Verdict::Approve },
        { { ApprovalKind::Decision, u"d2"_s }, Verdict::Reject },
    };
    const auto written = [&] {
        return world.cell(
            u"SELECT group_concat(status) FROM (SELECT status FROM outbound_draft UNION ALL SELECT status "
            "FROM (SELECT status FROM crm_update_proposal ORDER BY id) UNION ALL SELECT status FROM "
            "(SELECT status FROM work_decision ORDER BY id));"_s);
    };
    const QString untouched = written();
    for (const auto& [key, verdict] : verdicts)
        store.decide(key, verdict, seconds(5));
    EXPECT_EQ(waitingForDecision(store), 0);
    world.clock.advance(Milliseconds(4999));
    EXPECT_EQ(store.secondsLeft(verdicts.first().first), 1);
    EXPECT_EQ(written(), untouched);
    for (const auto& [key, verdict] : verdicts)
        store.undo(key);
    world.clock.advance(seconds(60));
    EXPECT_EQ(written(), untouched);
    EXPECT_EQ(waitingForDecision(store), 5);

    for (const auto& [key, verdict] : verdicts)
        store.decide(key, verdict, seconds(5));
    // Meanwhile another program decides one item and changes another.
    db().exec(u"UPDATE work_decision SET status='approved' WHERE id='d1'; UPDATE crm_update_proposal SET title='Wire' "
              "WHERE id='p1';"_s);
    world.clock.advance(Milliseconds(4999));
    (void)announced();
    world.clock.advance(Milliseconds(1));
    EXPECT_EQ(written(), u"rejected,pending,rejected,approved,rejected"_s);
    EXPECT_EQ(store.notice(), u"Deploy: Already approved elsewhere."_s);
    EXPECT_EQ(announced(), QStringList(u"proposal p1: Wire"_s)) << "the person is asked again";
}

TEST_F(ApprovalsTest, aBannersApproveOfARiskyDecisionOnlyOpensTheQuestion)
{
    attach();
    for (const QString& risk : { u"money"_s, u"Weird"_s, u"low"_s, u"None"_s, QString() })
        writeDecision(db(), u"d-"_s + risk, u"Pay"_s, u"100 EUR"_s, {}, risk);
    poll();
    QStringList asked;
    QObject::connect(
        &store, &ApprovalsStore::confirmationRequested, &store, [&](const QString& key) { asked.append(key); });
    for (const Banner& banner : std::exchange(world.banners.shown, {}))
        world.banners.press(banner, u"NIMB_APPROVE"_s);
    asked.sort();
    EXPECT_EQ(asked, QStringList({ u"decision:d-Weird"_s, u"decision:d-money"_s }));
    EXPECT_EQ(world.cell(u"SELECT COUNT(*) FROM work_decision WHERE status='approved';"_s), u"3"_s);
    press(u"decision"_s, u"d-money"_s, u"reject"_s);
    EXPECT_EQ(status(u"d-money"_s, u"work_decision"_s), u"rejected"_s);
}

TEST(Approvals, withoutEngineAndRecorderAPressOnlySaysSo)
{
    auto world = std::make_unique<EngineSurroundings>();
    world->notifier.bootstrap();
    ApprovalsStore store(world->centre, world->notifier, world->clock);
    {
        FakeLauncher launcher(world->clock);
        EngineManager engines(world->on(world->clock, launcher), world->openDatabase(world->clock));
        DraftDelivery delivery(engines.db(), engines, world->clock);
        RecordedCalls calls(engines.db());
        store.attach(delivery, calls);
    }
    store.refresh();
    EXPECT_FALSE(store.saveDraftBody(u"a"_s, u"text"_s));
    for (const ApprovalKind kind : { ApprovalKind::Draft, ApprovalKind::Proposal, ApprovalKind::Decision }) {
        store.decide({ kind, u"a"_s }, Verdict::Approve, seconds(5));
        store.decide({ kind, u"b"_s }, Verdict::Reject, seconds(5));
    }
    EXPECT_TRUE(world->banners.shown.isEmpty());
    world->clock.advance(seconds(5));
    QStringList titles;
    for (const Banner& banner : world->banners.shown)
        titles.append(banner.title);
    EXPECT_EQ(titles.join(u','),
        u"Couldn't approve,Couldn't reject,Couldn't approve,Couldn't reject,Couldn't approve,Couldn't reject"_s);
    EXPECT_EQ(world->banners.shown.first().body, u"Couldn't approve — engine not ready, try again"_s);
    EXPECT_TRUE(store.drafts().isEmpty() && store.proposals().isEmpty());
}

TEST_F(ApprovalsTest, anEventThatAnAgentWantsIsAddedOrRejectedAndWhyTheCalendarRefusesIsTold)
{
    FakeCalendarSource source;
    source.set({ { { u"work"_s, u"Work"_s, {}, {}, true } }, {}, {} });
    BackgroundQueue reading; // ends before its source
    CalendarStore calendar({ db(), source, reading, world.clock, world.defaults, world.centre, {} });
    CalendarCommands events(calendar);
    events.setAgentsMayAdd(false);
    calendar.requestAccess();
    ASSERT_TRUE(await([&] { return !calendar.calendars().isEmpty(); }));
    attach();
    store.attach(events);
    poll();
    for (const QString& id : { u"c1"_s, u"c2"_s })
        db().run(u"INSERT INTO calendar_command(id, workspace_id, title, start_ms, end_ms, status, created_at) "
                 "VALUES(?,'local','Lunch',1000,2000,'pending',0);"_s,
            { id });
    poll();
    EXPECT_EQ(announced(), QStringList({ u"event c1: Lunch"_s, u"event c2: Lunch"_s }));
    EXPECT_EQ(waitingForDecision(store), 2);
    press(u"event"_s, u"c1"_s, u"reject"_s);
    store.decide({ ApprovalKind::Event, u"c2"_s }, Verdict::Approve, seconds(5));
    EXPECT_EQ(waitingForDecision(store), 0);
    poll();
    EXPECT_TRUE(await([&] { return status(u"c2"_s, u"calendar_command"_s) == u"failed"; }));
    EXPECT_EQ(store.notice(), u"Lunch: It takes none."_s);
    EXPECT_EQ(world.cell(u"SELECT error FROM calendar_command WHERE id='c1';"_s), u"Rejected."_s);
    EXPECT_EQ(world.cell(u"SELECT group_concat(action || ' ' || subject_id) FROM approval_record;"_s),
        u"reject c1,approve c2"_s);
}
