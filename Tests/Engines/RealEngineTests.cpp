#include "EngineTest.h"
#include "Foundation/Literals.h"

#include "Engines/Outbox.h"
#include "Foundation/SystemScheduler.h"
#include "Platform/Linux/Services.h"
#include "Store/Approvals/OutboundQueries.h"
#include "Store/Messages/IngestQueries.h"
#include "Support/Await.h"
#include "Support/Drafts.h"
#include "Support/EnginesNode.h"
#include "Support/Environment.h"
#include "Support/Places.h"

#include <QElapsedTimer>
#include <QFile>
#include <csignal>

using namespace corvane;

namespace {

/// A manager whose engines are real processes, on the system's clock. The tests' child program stands in for Node: it
/// runs the lines of the entry script.
class RealEngines : public testing::Test {
protected:
    void start(const QByteArray& script)
    {
        around.home.write(u"resources/engine/src/main.ts"_s, script);
        engines->start(shop);
    }

    RuntimeState runtime() const { return engines->runtime(shop.id); }
    QString cell(const QString& sql) { return engines->db().scalar(sql).value_or(u"-"_s); }

    static QByteArray message(const QByteArray& id, const QByteArray& body)
    {
        return R"(@@CORVANE@@{"type":"message","convExternalId":"c","historical":true,"body":")" + body
            + R"(","providerMsgId":")" + id + "\"}";
    }

    LogCapture logs;
    EngineSurroundings around;
    SystemScheduler scheduler;
    std::unique_ptr<ProcessLauncher> launcher = makeProcessLauncher(scheduler);
    std::unique_ptr<EngineManager> engines
        = std::make_unique<EngineManager>(around.on(scheduler, *launcher), around.openDatabase(scheduler));
    const Account shop = accountNamed(u"shop"_s);
    const QString node = enginesNode();
    Environment environment { { "CORVANE_NODE", CORVANE_TEST_PROGRAMS "/ChildProgram" } };
};

}

TEST_F(RealEngines, aLineBecomesARowAndACommandReachesTheEngine)
{
    const QString record = around.home.path(u"commands"_s);
    start("print noise " + message("m1", "h\xc3\xa9llo \xf0\x9f\x8e\x89") + "\nrecord " + record.toUtf8());
    EXPECT_TRUE(engines->sendText(shop, u"c"_s, { u"answer"_s })) << "before the child has said a word";
    EXPECT_TRUE(await([&] { return engines->inboxRevision() == 1; }));
    EXPECT_EQ(cell(u"SELECT body FROM unified_message;"_s), u"héllo 🎉"_s);
    EXPECT_TRUE(await([&] { return around.home.read(u"commands"_s).endsWith('\n'); }));
    EXPECT_EQ(around.home.read(u"commands"_s),
        QByteArray(R"({"chatId":"c","cmd":"send","text":"answer"})"
                   "\n"));
    engines->stop(shop);
    EXPECT_TRUE(await([&] { return !engines->isRunning(shop); }));
}

TEST_F(RealEngines, aFloodingEngineKeepsNobodyWaiting)
{
    const Account quiet = accountNamed(u"quiet"_s, Channel::Email);
    around.home.write(u"resources/engine/src/email-main.ts"_s, "print " + message("quiet", "heard") + "\nhang");
    start("lines 1000 " + message("{n}", "flood") + "\nflood");
    engines->start(quiet);
    EXPECT_TRUE(
        await([&] { return cell(u"SELECT body FROM unified_message WHERE id='wa:msg:quiet';"_s) == u"heard"; }));
    EXPECT_TRUE(await([&] { return engines->inboxRevision() == 1001; }));
    EXPECT_TRUE(engines->isRunning(shop));

    QElapsedTimer turn;
    qint64 longest = 0;
    turn.start();
    int turns = 0;
    const auto ticks = scheduler.every(Milliseconds(5), [&] {
        longest = std::max(longest, turn.restart());
        ++turns;
    });
    EXPECT_TRUE(await([&] { return turns == 100; }));
    EXPECT_LT(longest, 1000) << "free text without end does not hold the loop";
}

TEST_F(RealEngines, aLineOfFiftyMegabytesArrivesWholeAndTheNextOneToo)
{
    start("half @@CORVANE@@{\"type\":\"log\",\"msg\":\"\nrepeat 52428800 x\nprint \"}\nprint " + message("m1", "next")
        + "\nhang");
    EXPECT_TRUE(await([&] { return engines->inboxRevision() == 1; }));
    EXPECT_EQ(runtime().lastLog.size(), 52'428'800);
    EXPECT_EQ(cell(u"SELECT body FROM unified_message;"_s), u"next"_s);
}

TEST_F(RealEngines, theEngineThatTheProtocolsPageShowsRuns)
{
    environment.set("CORVANE_NODE", QFile::encodeName(node));
    QFile page(QStringLiteral(CORVANE_SOURCE "/docs/engine-protocol.md"));
    ASSERT_TRUE(page.open(QIODevice::ReadOnly));
    const QByteArray text = page.readAll();
    const qsizetype from = text.indexOf("```ts\n") + 6;
    start(text.sliced(from, text.indexOf("\n```", from) - from));
    EXPECT_TRUE(await([&] { return runtime().status == WAStatus::Connected; }));
    EXPECT_EQ(runtime().userName, u"shop"_s);
    ensureConversation(engines->db(), u"WHATSAPP"_s, u"shop"_s, u"c"_s, u"Ana"_s, 1);
    queueDraft(engines->db(), u"wa:shop:c"_s, u"¿qué tal?"_s, u"mcp"_s);
    markDraft(engines->db(), cell(u"SELECT id FROM outbound_draft;"_s), u"approved"_s);
    DraftDelivery delivery(engines->db(), *engines, scheduler);
    delivery.refresh();
    EXPECT_TRUE(await([&] { return cell(u"SELECT status FROM outbound_draft;"_s) == u"sent"; }));
    EXPECT_EQ(cell(u"SELECT body FROM unified_message WHERE direction='OUT';"_s), u"¿qué tal?"_s);
    EXPECT_TRUE(await([&] { return engines->unreadTotal() == 2; })) << "it greets, and answers";
    const qint64 pid = engines->processId(shop);
    engines->stop(shop);
    EXPECT_TRUE(await([&] { return ::kill(static_cast<pid_t>(pid), 0) != 0; })) << "it ends when it is asked to";
}

TEST_F(RealEngines, aSubjectAndAFileReachTheEngineAndADirectSendHearsItsFate)
{
    environment.set("CORVANE_NODE", QFile::encodeName(node));
    start(R"(import { readFileSync } from "node:fs";
import { createInterface } from "node:readline";
const emit = (event) => process.stdout.write("@@CORVANE@@" + JSON.stringify(event) + "\n");
emit({ type: "features", files: true, subject: true });
emit({ type: "status", state: "open" });
for await (const line of createInterface({ input: process.stdin })) {
    const { cmd, chatId, text, subject, files = [], ...named } = JSON.parse(line);
    if (cmd !== "send") continue;
    const body = [text, ...files.map((file) => file.name + ": " + readFileSync(file.path, "utf8"))].join(", ");
    emit({ type: "message", convExternalId: chatId, providerMsgId: text, direction: "OUT", body, subject });
    emit({ type: "sendAck", ...named, status: named.sendId ? "uncertain" : "sent", error: "no answer" });
})");
    ASSERT_TRUE(await([&] { return runtime().status == WAStatus::Connected; }));
    const OutgoingFile picked = *engines->outbox().pick(u"plan.txt"_s, "the plan");
    ensureConversation(engines->db(), u"WHATSAPP"_s, u"shop"_s, u"c"_s, u"Ana"_s, 1);
    ASSERT_TRUE(engines->queueDraft(u"wa:shop:c"_s, { u"Here it is"_s, u"Plan"_s, { picked } }, u"compose"_s));
    const PendingDraft draft = fetchDrafts(engines->db(), { DraftStatus::Pending }, 1).first();
    DraftDelivery delivery(engines->db(), *engines, scheduler);
    ASSERT_EQ(delivery.approve(draft.id, draftHash(draft)), Decided::Taken);
    delivery.refresh();
    EXPECT_TRUE(await([&] { return cell(u"SELECT status FROM outbound_draft;"_s) == u"sent"; }));
    EXPECT_EQ(
        cell(u"SELECT subject || ' / ' || body FROM unified_message;"_s), u"Plan / Here it is, plan.txt: the plan"_s);
    EXPECT_TRUE(await([&] { return !engines->outbox().holdsForDrafts(); }));

    QStringList fates;
    QObject::connect(engines.get(), &EngineManager::directSendAnswered, engines.get(),
        [&](const QString& id, SendFate fate, const QString& error) {
            fates.append(id + (fate == SendFate::Uncertain ? u" may have gone out: "_s : u" "_s) + error);
        });
    const QString sendId = EngineManager::directSendId(scheduler.nowMs());
    EXPECT_TRUE(engines->sendText(shop, u"c"_s, { u"hello"_s }, sendId));
    EXPECT_TRUE(await([&] { return !fates.isEmpty(); }));
    EXPECT_EQ(fates, QStringList { sendId + u" may have gone out: no answer"_s });
}
