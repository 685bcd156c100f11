// A new user's first fifteen minutes with ./run --demo: the whole program without its window, a real database file, and
// the demo's engines as real processes.

#include "Approvals/ApprovalsStore.h"
#include "Approvals/PendingDraftsView.h"
#include "Calls/RecordedCalls.h"
#include "Engines/AccountStore.h"
#include "Engines/DraftDelivery.h"
#include "Engines/EngineManager.h"
#include "Foundation/SystemScheduler.h"
#include "Inbox/InboxView.h"
#include "Shell/CorvaneApp.h"
#include "Shell/Screens.h"
#include "Store/Approvals/OutboundQueries.h"
#include "Store/Core/LocalDB.h"
#include "Support/Await.h"
#include "Support/EnginesNode.h"
#include "Support/Environment.h"
#include "Support/FakeMachine.h"
#include "Support/Places.h"
#include "Support/Print.h"
#include "Support/Rows.h"

#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace corvane;

namespace {

const QString sofia = "ct:WHATSAPP:351900000190@s.whatsapp.net";
const QString gallery = "ct:WHATSAPP:351900000278@s.whatsapp.net";

class Newcomer : public testing::Test {
protected:
    Newcomer()
    {
        QProcess profile;
        profile.start(QStringLiteral(CORVANE_SOURCE "/demo/make-profile"), { folder.path() });
        EXPECT_TRUE(profile.waitForFinished() && profile.exitCode() == 0);
        open();
    }

    void open()
    {
        app = std::make_unique<CorvaneApp>(paths, scheduler, fakeMachine(paths, makeProcessLauncher(scheduler)));
        screens = std::make_unique<Screens>(*app);
        app->approvals().attach(app->delivery(), app->recordedCalls());
        inbox().appear();
    }

    void close()
    {
        screens.reset();
        app->willTerminate();
        app.reset();
    }

    InboxView& inbox() { return *screens->inbox; }
    Composer& composer() { return *inbox().reply()->composer(); }
    CRMPane& pane() { return *inbox().person()->crm(); }

    QString cell(const QString& sql) { return app->engine().db().scalar(sql).value_or("-"); }

    QStringList thread(const QByteArray& role) { return column(*inbox().person()->thread()->rows(), role); }
    QSet<QString> channels()
    {
        const QStringList platforms = thread("platform");
        QSet<QString> found(platforms.begin(), platforms.end());
        found.remove(QString()); // date separators have no platform
        return found;
    }
    QString ticksOf(const QString& body) { return thread("ticksText").value(int(thread("body").lastIndexOf(body))); }

    const QTemporaryDir folder;
    const AppPaths paths { folder.filePath("home"), folder.filePath("share/Corvane"),
        folder.filePath("config/Corvane/defaults.ini"), folder.filePath("resources") };
    const Environment environment { { { "CORVANE_NODE", enginesNode().toLocal8Bit() },
        { "HOME", folder.filePath("home").toLocal8Bit() }, { "XDG_DATA_HOME", folder.filePath("share").toLocal8Bit() },
        { "CORVANE_DEMO_PAIRING_SECONDS", "0" }, { "CORVANE_DEMO_PACE", "0.25" } } };
    SystemScheduler scheduler;
    std::unique_ptr<CorvaneApp> app;
    std::unique_ptr<Screens> screens;
};

}

TEST_F(Newcomer, readsAnswersMergesApprovesAndKeepsRecords)
{
    app->delivery().startWatch();
    app->startAllEngines();

    // One of the engine processes records in the database that Sofia is one person on three channels.
    ASSERT_TRUE(await([&] { return cell("SELECT COUNT(*) FROM contact_merge;") == "2"; }));
    inbox().person()->select(sofia);
    ASSERT_TRUE(await([&] { return pane().identityText() == "Same person · 3 channels"; }));
    EXPECT_EQ(channels(), (QSet<QString> { "WHATSAPP", "EMAIL", "TELEGRAM" }));
    EXPECT_EQ(composer().routing()->platforms().size(), 3);

    // A reply is sent at once, and its ticks change as it is delivered and read.
    const QString answer = "Obrigada, Sofia! As caixas seguem amanhã";
    QStringList ticks;
    const auto reports = QObject::connect(&app->engine(), &EngineManager::eventHandled, [&] {
        inbox().list()->reload();
        ticks.append(ticksOf(answer));
    });
    composer().routing()->setReplyPlatform("WHATSAPP");
    composer().setText(answer);
    composer().send();
    EXPECT_EQ(composer().text(), "");
    ASSERT_TRUE(await([&] { return ticksOf(answer) == "Read"; }));
    QObject::disconnect(reports);
    ticks.removeAll(QString());
    ticks.removeDuplicates();
    EXPECT_EQ(ticks, (QStringList { "Sent", "Delivered", "Read" }));
    EXPECT_EQ(cell("SELECT COUNT(*) FROM outbound_draft;"), "0") << "what a person sends needs nobody's approval";

    // A reply on a merged channel: the engine's message moves that conversation back to its own contact.
    composer().routing()->setReplyPlatform("TELEGRAM");
    composer().setText("Também por aqui");
    composer().send();
    ASSERT_TRUE(await([&] { return ticksOf("Também por aqui") == "Sent"; }));
    EXPECT_EQ(channels().size(), 3) << "the thread stays whole";
    EXPECT_EQ(column(*inbox().list()->contacts(), "name").count("Sofia Marques"), 2) << "she, and the gallery's phone";

    // Merging her with the contact of the gallery's phone can be undone.
    const auto hasGallery = [&] {
        return thread("body").contains("Sou eu, a Sofia. Este é o telefone da galeria, guarda-o também");
    };
    ASSERT_TRUE(await([&] { return column(*pane().suggestions(), "id").contains(gallery); }));
    EXPECT_FALSE(hasGallery());
    pane().mergeWith(gallery);
    EXPECT_TRUE(hasGallery());
    EXPECT_EQ(column(*inbox().list()->contacts(), "name").count("Sofia Marques"), 1);
    EXPECT_EQ(column(*pane().merges(), "text").first(), "Merged with Sofia Marques");
    pane().unmerge(column(*pane().merges(), "id").first());
    EXPECT_FALSE(hasGallery());
    EXPECT_EQ(channels().size(), 3);
    EXPECT_EQ(column(*inbox().list()->contacts(), "name").count("Sofia Marques"), 2);

    const int deals = pane().deals()->rows()->rowCount();
    DealForm& deal = *pane().dealForm();
    deal.field("name").type("Spring window");
    deal.field("value").type("€2k");
    deal.submit();
    EXPECT_EQ(pane().deals()->rows()->rowCount(), deals + 1);
    EXPECT_TRUE(pane().addTask("Ask for the measures"));
    EXPECT_TRUE(pane().addNote("Prefers warm light"));

    // A message to a new person waits for approval, and is then sent once.
    ComposeSheet& sheet = *inbox().composeSheet();
    sheet.open();
    sheet.setAccountId(app->store().findBySlug("taller-vidal")->id.toString());
    sheet.setRecipient("+34 611 22 33 44");
    sheet.setMessage("Hola, soy Marta del taller");
    sheet.submit();
    const QString stranger = "ct:WHATSAPP:34611223344@s.whatsapp.net";
    EXPECT_EQ(inbox().person()->selectedId(), stranger);
    PendingDraftsView& drafts = *screens->drafts;
    ASSERT_EQ(drafts.count(), 1);
    EXPECT_EQ(column(*drafts.rows(), "statusLabel").first(), "waiting approval");
    EXPECT_EQ(channels().size(), 0) << "nothing has gone out";
    app->notifications().post(notifications::approvalAction, {},
        { { "kind", "draft" }, { "id", column(*drafts.rows(), "id").first() }, { "action", "approve" } });
    ASSERT_TRUE(await([&] { return cell("SELECT status FROM outbound_draft;") == "sent"; }));
    ASSERT_TRUE(await([&] { return ticksOf("Hola, soy Marta del taller") == "Read"; }));
    EXPECT_EQ(drafts.count(), 0);
    EXPECT_EQ(cell("SELECT COUNT(*) FROM unified_message m, outbound_draft d WHERE m.direction='OUT' AND "
                   "m.body=d.body AND m.provider_msg_id=d.provider_msg_id;"),
        "1");
    composer().setText("and later");

    // After a restart, with no engine running, everything is still shown.
    close();
    open();
    inbox().person()->select(stranger);
    EXPECT_EQ(composer().text(), "and later");
    inbox().person()->select(sofia);
    EXPECT_EQ(channels().size(), 3);
    EXPECT_TRUE(thread("body").contains(answer));
    EXPECT_TRUE(column(*pane().deals()->rows(), "text").contains("Spring window"));
    EXPECT_TRUE(column(*pane().tasks()->rows(), "text").contains("Ask for the measures"));
    EXPECT_EQ(column(*pane().notes()->rows(), "text").first(), "Prefers warm light");
}
