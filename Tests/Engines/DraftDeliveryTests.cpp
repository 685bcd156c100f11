#include "EngineTest.h"
#include "Foundation/Literals.h"

#include "Engines/Outbox.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Core/Transaction.h"
#include "Store/Messages/ChannelFeatures.h"
#include "Store/Messages/IngestQueries.h"
#include "Support/Drafts.h"

#include <QFile>
#include <QJsonArray>

using namespace corvane;

namespace {

class DraftDeliveryTest : public EngineTest {
protected:
    /// Queues a draft to one chat of the account, with the given status.
    QString queue(const Account& account, const QString& text, const QString& status = u"approved"_s)
    {
        const QString conversation = ensureConversation(
            world.engines.db(), channelRaw(account.channel()), account.slug, u"chat"_s, u"Ana"_s, 1);
        EXPECT_TRUE(queueDraft(world.engines.db(), conversation, text, u"mcp"_s));
        const QString id = cell(u"SELECT id FROM outbound_draft ORDER BY rowid DESC LIMIT 1;"_s);
        if (status != u"pending")
            markDraft(world.engines.db(), id, status);
        return id;
    }

    QString draft(const QString& id, const QString& column = u"status"_s)
    {
        return world.cell(u"SELECT %1 FROM outbound_draft WHERE id=?;"_s.arg(column), { id });
    }

    /// Approves the draft as a person does.
    void approve(const QString& id)
    {
        const auto seen = fetchDraft(world.engines.db(), id);
        EXPECT_EQ(approveDraft(world.engines.db(), id, draftHash(*seen)), Decided::Taken);
        world.delivery.refresh();
    }

    /// Queues a draft with a subject and a file, and returns its id.
    QString queueWithFile()
    {
        const QString conversation
            = ensureConversation(world.engines.db(), u"EMAIL"_s, u"shop"_s, u"chat"_s, u"Ana"_s, 1);
        const OutgoingFile picked = *world.engines.outbox().pick(u"plan.pdf"_s, "the plan");
        EXPECT_TRUE(world.engines.queueDraft(conversation, { u"Here it is"_s, u"Plan"_s, { picked } }, u"compose"_s));
        world.engines.outbox().drop({ picked });
        return cell(u"SELECT id FROM outbound_draft ORDER BY rowid DESC LIMIT 1;"_s);
    }
    OutgoingFile fileOf(const QString& id) { return filesFromText(draft(id, u"files"_s))->first(); }

    static void write(const QString& path, const QByteArray& content)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    FakeChild& engine() { return world.launcher.last(); }
    void tick() { world.clock.advance(seconds(4)); }
};

}

TEST_F(DraftDeliveryTest, onlyAnApprovedDraftReachesTheEngine)
{
    startShop();
    const QString approved = queue(shop, u"yes"_s);
    for (const QString& status : { u"pending"_s, u"failed"_s, u"rejected"_s, u"sent"_s, u"placed"_s, u"sending"_s })
        queue(shop, status, status);
    world.delivery.startWatch();
    tick();
    const QJsonObject expected { { u"cmd"_s, u"send"_s }, { u"chatId"_s, u"chat"_s }, { u"text"_s, u"yes"_s },
        { u"draftId"_s, approved } };
    EXPECT_EQ(engine().commands(), QList { expected });
    EXPECT_EQ(draft(approved), u"sending"_s);
}

TEST_F(DraftDeliveryTest, whatAnotherProgramApprovesGoesOutWithinASecond)
{
    startShop();
    const QString id = queue(shop, u"hello"_s, u"pending"_s);
    world.engines.db().watch().start();
    const auto other = world.openDatabase(world.clock);
    markDraft(*other, id, u"approved"_s);
    world.clock.advance(seconds(1));
    EXPECT_EQ(engine().commands().size(), 1);
    EXPECT_EQ(world.engines.inboxRevision(), 1) << "it may have written messages as well";
    tick();
    EXPECT_EQ(world.engines.inboxRevision(), 1);
}

TEST_F(DraftDeliveryTest, anEngineThatNeverAcknowledgesFailsTheDraftAfterTwoMinutes)
{
    startShop();
    world.delivery.startWatch();
    const QString silent = queue(shop, u"hello"_s);
    const QString placed = queue(shop, u"in the box"_s, u"placed"_s);
    tick();
    EXPECT_EQ(draft(silent), u"sending"_s);
    world.clock.advance(seconds(120));
    EXPECT_EQ(draft(silent), u"sending"_s) << "exactly two minutes are not too many";
    tick();
    EXPECT_EQ(draft(silent), u"failed"_s);
    EXPECT_EQ(draft(silent, u"error"_s), u"Engine never acknowledged the send — Retry to requeue."_s);
    EXPECT_EQ(draft(placed), u"placed"_s);
    EXPECT_EQ(engine().commands().size(), 1);
}

TEST_F(DraftDeliveryTest, anAcknowledgmentClosesTheDraftAtOnce)
{
    startShop();
    const QString first = queue(shop, u"one"_s);
    const QString second = queue(shop, u"two"_s);
    const QString third = queue(shop, u"three"_s);
    const QString fourth = queue(shop, u"four"_s);
    world.delivery.refresh();
    EXPECT_EQ(world.delivery.pending().size(), 4);
    const qint64 revision = world.engines.inboxRevision();
    const auto acknowledge = [&](const QString& id, QJsonObject keys) {
        keys.insert(u"type"_s, u"sendAck"_s);
        keys.insert(u"draftId"_s, id);
        report(keys);
    };
    acknowledge(first, { { u"status"_s, u"placed"_s } });
    EXPECT_EQ(draft(first), u"placed"_s);
    acknowledge(first, { { u"status"_s, u"sent"_s }, { u"providerMsgId"_s, u"p1"_s } });
    EXPECT_EQ(draft(first, u"status || '|' || provider_msg_id"_s), u"sent|p1"_s);
    acknowledge(second, {});
    EXPECT_EQ(draft(second, u"status || '|' || error"_s), u"failed|Send failed"_s);
    acknowledge(second, { { u"status"_s, u"sent"_s } });
    EXPECT_EQ(draft(second), u"failed"_s) << "it had said for good what became of it";
    acknowledge(third, { { u"status"_s, u"refused"_s }, { u"error"_s, u"no such chat"_s } });
    EXPECT_EQ(draft(third, u"status || '|' || error"_s), u"failed|no such chat"_s);
    acknowledge(fourth, { { u"status"_s, u"uncertain"_s }, { u"error"_s, u"no answer"_s } });
    report({ { u"type"_s, u"sendAck"_s } });
    ASSERT_EQ(world.delivery.pending().size(), 3);
    EXPECT_EQ(std::ranges::count_if(world.delivery.pending(), mayHaveGoneOut), 1) << "a retry asks first";
    EXPECT_EQ(draft(fourth, u"error"_s), u"It may have gone out. no answer"_s);
    EXPECT_EQ(world.engines.inboxRevision(), revision) << "the message that was sent comes as an event of its own";
}

TEST_F(DraftDeliveryTest, aSubjectAndFilesGoOutAsTheyWereApprovedAndTheFilesEndWithTheDraft)
{
    startShop();
    rememberFeatures(world.engines.db(), u"shop"_s, { true, std::nullopt, true });
    const QString id = queueWithFile();
    const OutgoingFile file = fileOf(id);
    approve(id);
    const QJsonObject expected { { u"cmd"_s, u"send"_s }, { u"chatId"_s, u"chat"_s }, { u"text"_s, u"Here it is"_s },
        { u"subject"_s, u"Plan"_s }, { u"draftId"_s, id },
        { u"files"_s, QJsonArray { QJsonObject { { u"path"_s, file.path }, { u"name"_s, u"plan.pdf"_s } } } } };
    EXPECT_EQ(engine().commands(), QList { expected });
    report({ { u"type"_s, u"sendAck"_s }, { u"draftId"_s, id }, { u"status"_s, u"failed"_s } });
    EXPECT_TRUE(QFile::exists(file.path)) << "it may be sent again";
    approve(id);
    EXPECT_EQ(engine().commands().size(), 2);
    report({ { u"type"_s, u"sendAck"_s }, { u"draftId"_s, id }, { u"status"_s, u"sent"_s } });
    EXPECT_FALSE(QFile::exists(file.path));
    EXPECT_EQ(world.delivery.approve(id, draftHash(*fetchDraft(world.engines.db(), id))), Decided::AlreadySo);
}

TEST_F(DraftDeliveryTest, aFileThatIsNotAsItWasSeenDoesNotGoOut)
{
    startShop();
    rememberFeatures(world.engines.db(), u"shop"_s, { true, std::nullopt, true });
    const QString id = queueWithFile();
    const QString seen = draftHash(*fetchDraft(world.engines.db(), id));
    write(fileOf(id).path, "no plan");
    EXPECT_EQ(world.delivery.approve(id, seen), Decided::Changed);
    EXPECT_EQ(draft(id), u"pending"_s);
    EXPECT_EQ(world.delivery.approve(id, seen), Decided::Changed) << "what was seen is still another";
    EXPECT_EQ(world.delivery.approve(id, draftHash(*fetchDraft(world.engines.db(), id))), Decided::Taken);
    write(fileOf(id).path, "a third");
    world.delivery.refresh();
    EXPECT_EQ(draft(id, u"status || ' ' || error"_s),
        u"failed The file plan.pdf changed after it was attached. Write the message again with it."_s);

    const QString second = queueWithFile();
    approve(second);
    const QString third = queueWithFile();
    QFile::remove(fileOf(third).path);
    markDraft(world.engines.db(), third, u"approved"_s);
    const QString fourth = queueWithFile();
    world.engines.db().run(
        u"UPDATE outbound_draft SET files=replace(files, '/outbox/drafts/', '/') WHERE id=?;"_s, { fourth });
    markDraft(world.engines.db(), fourth, u"approved"_s);
    const QString fifth = queueWithFile();
    world.engines.db().run(u"UPDATE outbound_draft SET files='{}' WHERE id=?;"_s, { fifth });
    markDraft(world.engines.db(), fifth, u"approved"_s);
    world.delivery.refresh();
    EXPECT_EQ(draft(second), u"sending"_s);
    EXPECT_EQ(draft(third, u"error"_s), u"The file plan.pdf is gone. Write the message again with it."_s);
    EXPECT_EQ(draft(fourth, u"error"_s), draft(third, u"error"_s)) << "a row of another program may name any file";
    EXPECT_EQ(draft(fifth, u"error"_s), u"The text of this draft can't be read as it is stored."_s);
    rememberFeatures(world.engines.db(), u"shop"_s, {});
    const QString sixth = queueWithFile();
    approve(sixth);
    EXPECT_EQ(draft(sixth, u"error"_s), u"The account shop can't carry files."_s);
    EXPECT_EQ(engine().commands().size(), 1);
}

TEST_F(DraftDeliveryTest, theFilesOfDraftsThatACrashKeptBackGoAtTheStart)
{
    const QString kept = queueWithFile();
    const OutgoingFile picked = *world.engines.outbox().pick(u"lost.txt"_s, "lost");
    const QList<OutgoingFile> lost = *world.engines.outbox().copyForDraft({ picked });
    world.engines.db().run(u"UPDATE outbound_draft SET workspace_id='other';"_s);
    world.delivery.startWatch();
    EXPECT_TRUE(QFile::exists(fileOf(kept).path)) << "in whichever workspace";
    EXPECT_FALSE(QFile::exists(lost.first().path));
    EXPECT_TRUE(QFile::exists(picked.path)) << "the composer's own";
}

TEST_F(DraftDeliveryTest, anEngineThatIsStillAtWorkHasItsTwoMinutesAnew)
{
    startShop();
    const Account other = accountNamed(u"other"_s);
    world.launcher.expect(FakeLauncher::stays());
    world.delivery.startWatch();
    const QString id = queue(shop, u"a long upload"_s);
    tick();
    FakeChild& child = engine();
    const auto progress = [&](const QString& draftId) {
        child.printEvent({ { u"type"_s, u"sendProgress"_s }, { u"draftId"_s, draftId } });
    };
    world.engines.start(other);
    world.clock.advance(seconds(100));
    progress(id);
    progress(u"od:1:unknown"_s);
    world.clock.advance(seconds(100));
    EXPECT_EQ(draft(id), u"sending"_s);
    engine().printEvent({ { u"type"_s, u"sendProgress"_s }, { u"draftId"_s, id } });
    world.clock.advance(seconds(30));
    EXPECT_EQ(draft(id), u"failed"_s) << "another account's engine knows nothing of it";
}

TEST_F(DraftDeliveryTest, aBrowserDrivenEngineIsAskedToPlaceTheText)
{
    for (const Channel channel : { Channel::LinkedIn, Channel::Instagram, Channel::Messenger }) {
        const Account account = accountNamed(channelRaw(channel).toLower(), channel);
        world.launcher.expect(FakeLauncher::stays());
        world.engines.start(account);
        const QString id = queue(account, u"hi"_s);
        world.delivery.refresh();
        const QJsonObject expected { { u"cmd"_s, u"draft"_s }, { u"threadId"_s, u"chat"_s }, { u"text"_s, u"hi"_s },
            { u"draftId"_s, id } };
        EXPECT_EQ(engine().commands(), QList { expected });
        EXPECT_EQ(draft(id), u"sending"_s);
    }
}

TEST_F(DraftDeliveryTest, aDraftOfAStoppedEngineStartsItAndWaits)
{
    startShop();
    world.delivery.startWatch();
    world.engines.stop(shop);
    const QString id = queue(shop, u"hello"_s);
    tick();
    EXPECT_EQ(status(), WAStatus::Starting);
    EXPECT_EQ(draft(id), u"approved"_s) << "the engine of before is still ending";
    world.launcher.expect(FakeLauncher::stays());
    world.launcher.children.first()->exit(0);
    tick();
    EXPECT_EQ(draft(id), u"sending"_s);
    EXPECT_EQ(engine().commands().size(), 1);
}

TEST_F(DraftDeliveryTest, anApprovalStartsAStoppedEngineOnceAndWhatWasApprovedBeforeThePauseWaits)
{
    const QString early = queue(shop, u"before the pause"_s);
    world.launcher.expect(FakeLauncher::fails(u"no"_s), 2);
    world.engines.start(shop);
    world.delivery.startWatch();
    world.clock.advance(seconds(600));
    EXPECT_EQ(draft(early), u"approved"_s) << "one start for one approval, and no more";
    EXPECT_EQ(world.delivery.pending().first().accountName, u"shop"_s);

    world.engines.stop(shop);
    const QString late = queue(shop, u"hello"_s, u"pending"_s);
    tick();
    EXPECT_EQ(status(), WAStatus::Stopped);
    world.launcher.expect(FakeLauncher::stays());
    approve(late);
    EXPECT_EQ(draft(late), u"sending"_s) << "at once";
    EXPECT_EQ(draft(early), u"sending"_s);

    report({ { u"type"_s, u"status"_s }, { u"state"_s, u"logged_out"_s } });
    engine().exit(0);
    const QString third = queue(shop, u"third"_s);
    world.clock.advance(seconds(60));
    EXPECT_EQ(draft(third), u"approved"_s) << "a new start would bring nothing";
}

TEST_F(DraftDeliveryTest, accountsThatTakeNothingHoldUpNobodyElse)
{
    const Account full = accountNamed(u"full"_s);
    const Account away = accountNamed(u"away"_s);
    for (int i = 0; i < 60; ++i) {
        queue(full, QString::number(i));
        queue(away, QString::number(i));
        world.clock.advance(Milliseconds(1));
    }
    world.launcher.expect(FakeLauncher::stays());
    world.engines.start(full);
    engine().writeFailure = u"standard input is full"_s;
    world.clock.advance(Milliseconds(1));
    startShop();
    const QString id = queue(shop, u"hello"_s);
    world.delivery.refresh();
    EXPECT_EQ(draft(id), u"sending"_s);
}

TEST_F(DraftDeliveryTest, aJumpOfTheClockFailsNoDraftAndAnUnreadCommandIsNotWrittenTwice)
{
    startShop();
    world.delivery.startWatch();
    const QString id = queue(shop, u"hello"_s);
    tick();
    world.clock.setNowMs(world.clock.nowMs() + 3'600'000);
    tick();
    EXPECT_EQ(draft(id), u"sending"_s);
    engine().isDeaf = true;
    world.clock.advance(seconds(124));
    EXPECT_TRUE(mayHaveGoneOut(world.delivery.pending().first()));
    approve(id);
    EXPECT_EQ(draft(id), u"sending"_s) << "it waits for the line that the engine has not come to";
    world.clock.advance(seconds(124));
    EXPECT_TRUE(editDraft(world.engines.db(), id, u"other words"_s));
    approve(id);
    EXPECT_EQ(draft(id), u"failed"_s);
    EXPECT_EQ(engine().commands().size(), 1);
    engine().isDeaf = false;
    approve(id);
    EXPECT_EQ(engine().commands().size(), 2);
}

TEST_F(DraftDeliveryTest, aLineThatTheEngineCannotReadAnyMoreIsTakenBack)
{
    startShop();
    world.delivery.startWatch();
    const QString id = queue(shop, u"hello"_s);
    engine().isClogged = true;
    tick();
    world.clock.advance(seconds(124));
    EXPECT_EQ(draft(id, u"status || COALESCE(error, '')"_s), u"sending"_s) << "written anew, not failed";
    EXPECT_EQ(engine().commands().size(), 1);
    engine().exit(1);
    world.settle();
    EXPECT_EQ(draft(id), u"approved"_s);
    EXPECT_EQ(engine().commands().size(), 0);
    EXPECT_EQ(status(), WAStatus::Connecting) << "it starts when its turn comes";
    world.launcher.expect(FakeLauncher::stays());
    tick();
    EXPECT_EQ(draft(id), u"sending"_s);
    EXPECT_EQ(engine().commands().size(), 1);
}

TEST_F(DraftDeliveryTest, aChangeInTheMiddleOfATransactionIsLookedAtAfterIt)
{
    startShop();
    const QString id = queue(shop, u"hello"_s);
    Transaction transaction(world.engines.db(), Patience::Frame);
    world.delivery.refresh();
    EXPECT_EQ(engine().commands().size(), 0);
    EXPECT_TRUE(transaction.commit());
    world.settle();
    EXPECT_EQ(engine().commands().size(), 1);
    EXPECT_EQ(draft(id), u"sending"_s);
}

TEST_F(DraftDeliveryTest, aFullPipeIsTriedAgainAndNeverGoesStale)
{
    startShop();
    world.delivery.startWatch();
    engine().writeFailure = u"standard input is full"_s;
    const QString id = queue(shop, u"hello"_s);
    world.clock.advance(seconds(300));
    EXPECT_EQ(draft(id), u"approved"_s);
    EXPECT_TRUE(logs.contains(u"EngineManager.sendText: pipe write failed for shop: standard input is full"_s));
    engine().writeFailure.clear();
    tick();
    EXPECT_EQ(draft(id), u"sending"_s);
    EXPECT_EQ(engine().commands().size(), 1);
}

TEST_F(DraftDeliveryTest, ofTwoProgramsOnOneFileOneSends)
{
    EngineManager second(world.on(world.clock, world.launcher), world.openDatabase(world.clock));
    startShop();
    FakeChild& first = engine();
    world.launcher.expect(FakeLauncher::stays());
    second.start(shop);
    FakeChild& other = engine();
    QStringList seenByBoth;
    for (int i = 0; i < 4; ++i)
        seenByBoth.append(queue(shop, QString::number(i)));
    // Both have read the rows as approved, and each tries to deliver them, in alternating order.
    DraftDelivery& here = world.delivery;
    DraftDelivery there(second.db(), second, world.clock);
    for (int i = 0; i < 4; ++i) {
        (i % 2 ? here : there).deliver(seenByBoth.at(i), shop);
        (i % 2 ? there : here).deliver(seenByBoth.at(i), shop);
    }
    here.refresh();
    there.refresh();
    EXPECT_EQ(first.commands().size(), 2);
    EXPECT_EQ(other.commands().size(), 2);
    for (const QString& each : seenByBoth)
        EXPECT_EQ(draft(each), u"sending"_s);
}

TEST_F(DraftDeliveryTest, aFileThatTakesNoChangeSendsNothing)
{
    startShop();
    const QString id = queue(shop, u"hello"_s);
    world.engines.db().exec(u"CREATE TRIGGER full BEFORE UPDATE ON outbound_draft BEGIN "
                            "SELECT RAISE(ABORT, 'disk full'); END;"_s);
    world.delivery.startWatch();
    tick();
    EXPECT_EQ(engine().commands().size(), 0);
    world.engines.db().exec(u"DROP TRIGGER full;"_s);
    tick();
    tick();
    EXPECT_EQ(engine().commands().size(), 1);
    EXPECT_EQ(draft(id), u"sending"_s);
}

TEST_F(DraftDeliveryTest, aDraftOfAnAccountThatWasNeverStartedWaits)
{
    world.delivery.startWatch();
    const QString id = queue(accountNamed(u"unknown"_s), u"hello"_s);
    world.clock.advance(seconds(600));
    EXPECT_EQ(draft(id, u"status || COALESCE(error,'')"_s), u"approved"_s);
}

TEST_F(DraftDeliveryTest, fiftyDraftsGoOutATickOldestFirst)
{
    startShop();
    for (int i = 0; i < 60; ++i) {
        queue(shop, QString::number(i));
        world.clock.advance(Milliseconds(1));
    }
    world.delivery.startWatch();
    world.delivery.startWatch();
    EXPECT_EQ(engine().commands().size(), 60) << "each call of the start looks at once";
    world.delivery.refresh();
    for (int i = 0; i < 60; ++i)
        EXPECT_EQ(engine().commands().at(i).value(u"text"_s), QString::number(i));
}

TEST_F(DraftDeliveryTest, theListOfThoseThatWaitIsToldOnlyWhenItChanges)
{
    int changes = 0;
    QObject::connect(&world.delivery, &DraftDelivery::pendingChanged, &world.delivery, [&] { ++changes; });
    world.delivery.startWatch();
    queue(shop, u"one"_s, u"pending"_s);
    tick();
    tick();
    EXPECT_EQ(changes, 1);
    ASSERT_EQ(world.delivery.pending().size(), 1);
    EXPECT_EQ(world.delivery.pending().first().body, u"one"_s);
}
