#include "InboxViewTest.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Messages/IngestQueries.h"
#include "Store/Messages/ThreadQueries.h"
#include "Store/People/ContactInfo.h"
#include "Store/People/CrmRecords.h"
#include "Store/People/IdentityQueries.h"

using namespace corvane;

namespace {

class CRMPaneTest : public InboxViewTest {
protected:
    CRMPaneTest()
    {
        receiveFromAnaAndBen();
        inbox.person()->select(ana);
    }

    QStringList texts(QAbstractItemModel* model) const { return column(model, "text"); }
    QString id(QAbstractItemModel* model, int row = 0) const { return column(model, "id").value(row); }

    /// Adds a Telegram contact with Ana's name, and waits for the delayed suggestions.
    void meetNamesake()
    {
        storeMessage(engines.db(), "TELEGRAM", "bot", telegram());
        inbox.list()->reload();
        inbox.person()->select({});
        inbox.person()->select(ana);
        clock.advance(Milliseconds(600));
    }

    bool addDeal(const QString& name, const QString& stage, const QString& value)
    {
        DealForm& form = *pane.dealForm();
        form.open();
        form.field("name").type(name);
        form.field("value").type(value);
        form.setStage(stage);
        form.submit();
        return !form.isOpen();
    }

    IncomingMessage telegram()
    {
        IncomingMessage message;
        message.conversationExternalId = "77";
        message.providerMsgId = "t1";
        message.body = "from my other phone";
        message.conversationTitle = "ana ruiz";
        message.ts = clock.nowMs();
        return message;
    }

    const QString namesake = "ct:TELEGRAM:77";
    CRMPane& pane = *inbox.person()->crm();
    QAbstractItemModelTester notesTester { pane.notes()->rows() };
    QAbstractItemModelTester activityTester { pane.activity()->rows() };
    QAbstractItemModelTester suggestionTester { pane.suggestions() };
};

}

TEST_F(CRMPaneTest, theSectionsShowWhatIsKnownOfWhoeverIsOpen)
{
    EXPECT_EQ(pane.contactName(), "Ana Ruiz");
    EXPECT_EQ(column(pane.info()->rows(), "label"), (QStringList { "Phone", "Channel", "Handle" }));
    EXPECT_EQ(texts(pane.info()->rows()), (QStringList { "49171", "WhatsApp", "49171@s.whatsapp.net" }));
    EXPECT_EQ(texts(pane.activity()->rows()), QStringList("hello"));
    EXPECT_EQ(column(pane.activity()->rows(), "label"), QStringList("WhatsApp"));

    EXPECT_TRUE(pane.addNote(" Likes tea \n"));
    EXPECT_TRUE(pane.addTask("Send the quote "));
    EXPECT_TRUE(addDeal(" Garden ", "Proposal", "$12.5k"));
    EXPECT_EQ(texts(pane.notes()->rows()), QStringList("Likes tea"));
    EXPECT_EQ(texts(pane.tasks()->rows()), QStringList("Send the quote"));
    EXPECT_EQ(column(pane.tasks()->rows(), "detail"), QStringList(""));
    EXPECT_EQ(texts(pane.deals()->rows()), QStringList("Garden"));
    EXPECT_EQ(column(pane.deals()->rows(), "detail"), QStringList("Proposal · $12.5k"));
    EXPECT_EQ(column(pane.activity()->rows(), "label"), (QStringList { "Note", "WhatsApp" }));
    EXPECT_EQ(cell("SELECT company || COALESCE(close_date,'-') FROM crm_deal;"), "-");

    inbox.person()->select(ben);
    EXPECT_EQ(pane.contactName(), "Ben");
    EXPECT_EQ(
        pane.notes()->rows()->rowCount() + pane.tasks()->rows()->rowCount() + pane.deals()->rows()->rowCount(), 0);
    inbox.person()->select({});
    EXPECT_EQ(pane.contactId(), "");
    EXPECT_EQ(pane.info()->rows()->rowCount() + pane.activity()->rows()->rowCount(), 0);
    EXPECT_FALSE(pane.addNote("to nobody"));
    EXPECT_FALSE(pane.addTask("for nobody"));
    EXPECT_FALSE(addDeal("with nobody", "Proposal", ""));
}

TEST_F(CRMPaneTest, aBlankTextIsNotSavedAndAFailureSaysSo)
{
    EXPECT_FALSE(pane.addNote(" \n"));
    EXPECT_FALSE(pane.addTask(""));
    EXPECT_FALSE(addDeal("  ", "Proposal", "1"));
    EXPECT_EQ(pane.errorText(), "");
    EXPECT_EQ(pane.stages().first(), "Prospecting");
    EXPECT_EQ(pane.stages().size(), 6);

    engines.db().exec("CREATE TRIGGER full BEFORE INSERT ON contact_note BEGIN SELECT RAISE(ABORT, 'full'); END;");
    EXPECT_FALSE(pane.addNote("kept in the field"));
    EXPECT_EQ(pane.errorText(), "Couldn't save it, try again.");
    EXPECT_TRUE(pane.addTask("works"));
    EXPECT_EQ(pane.errorText(), "");
}

TEST_F(CRMPaneTest, whatIsTypedStaysWithItsPersonUntilItIsAdded)
{
    pane.setNoteText("about Ana");
    pane.setTaskText("for Ana");
    inbox.person()->select(ben);
    EXPECT_EQ(pane.noteText() + pane.taskText(), "");
    inbox.person()->select(ana);
    EXPECT_TRUE(pane.addNote(pane.noteText()));
    EXPECT_EQ(pane.noteText(), "");
    EXPECT_EQ(pane.taskText(), "for Ana");
    EXPECT_TRUE(pane.addTask(pane.taskText()));
    EXPECT_EQ(pane.taskText(), "");
}

TEST_F(CRMPaneTest, aLongStoryShowsItsNewestPartFirst)
{
    for (int i = 0; i < 40; ++i)
        pane.addNote(QString::number(i));
    EXPECT_EQ(pane.notes()->rows()->rowCount(), 5);
    EXPECT_EQ(texts(pane.notes()->rows()).first(), "39");
    EXPECT_EQ(pane.activity()->rows()->rowCount(), 8);
    EXPECT_TRUE(pane.notes()->hasOlder() && pane.activity()->hasOlder());
    pane.notes()->showOlder();
    pane.activity()->showOlder();
    EXPECT_EQ(pane.notes()->rows()->rowCount(), 30);
    EXPECT_EQ(pane.activity()->rows()->rowCount(), 33);
    pane.notes()->showOlder();
    EXPECT_EQ(pane.notes()->rows()->rowCount(), 40);
    EXPECT_FALSE(pane.notes()->hasOlder());
    inbox.person()->select(ben);
    inbox.person()->select(ana);
    EXPECT_EQ(pane.notes()->rows()->rowCount(), 5);
    pane.addNote(QString(1'000'000, u'x'));
    EXPECT_LE(texts(pane.notes()->rows()).first().size(), 10'000);
    EXPECT_EQ(cell("SELECT MAX(LENGTH(body)) FROM contact_note;"), "1000000");
}

TEST_F(CRMPaneTest, aTaskThatIsCompletedAndAMemoryThatIsForgottenGo)
{
    engines.db().exec("INSERT INTO work_memory_entries VALUES('m','contact:" + ana + "','Pays late','2025');");
    pane.addTask("Ring back");
    EXPECT_EQ(texts(pane.memory()->rows()), QStringList("Pays late"));
    pane.completeTask(id(pane.tasks()->rows()));
    pane.forget("m");
    EXPECT_EQ(pane.tasks()->rows()->rowCount() + pane.memory()->rows()->rowCount(), 0);
    EXPECT_EQ(cell("SELECT status FROM crm_task;"), "Done");
    EXPECT_EQ(cell("SELECT COUNT(*) FROM work_memory_entries;"), "0");

    EXPECT_EQ(inbox.actions()->undoText(), "Forgot “Pays late”");
    inbox.actions()->undo();
    EXPECT_EQ(texts(pane.memory()->rows()), QStringList("Pays late"));
    pane.addTask("A title that is much longer than a line under the thread can be");
    pane.completeTask(id(pane.tasks()->rows()));
    EXPECT_EQ(inbox.actions()->undoText(), "Completed “A title that is much longer than…”");
    inbox.person()->select(ben);
    inbox.actions()->undo(); // undo works regardless of which contact is open
    EXPECT_EQ(pane.tasks()->rows()->rowCount(), 0);
    inbox.person()->select(ana);
    EXPECT_EQ(pane.tasks()->rows()->rowCount(), 1);
}

TEST_F(CRMPaneTest, whatHappensMeanwhileShowsSoon)
{
    receive(ana, "and another thing");
    clock.advance(Milliseconds(600));
    EXPECT_EQ(texts(pane.activity()->rows()), (QStringList { "and another thing", "hello" }));
}

TEST_F(CRMPaneTest, twoContactsBecomeOnePersonAndTwoAgain)
{
    meetNamesake();
    ASSERT_EQ(texts(pane.suggestions()), QStringList("Same as ana ruiz?"));
    EXPECT_EQ(column(pane.suggestions(), "detail"), QStringList("similar name (weak)"));
    EXPECT_EQ(pane.identityText(), "");

    pane.mergeWith("ct:SMS:somebody else");
    EXPECT_EQ(cell("SELECT COUNT(*) FROM contact_merge;"), "0") << "only who is suggested can be merged";
    pane.mergeWith(namesake);
    EXPECT_EQ(pane.suggestions()->rowCount(), 0);
    EXPECT_EQ(texts(pane.merges()), QStringList("Merged with ana ruiz"));
    EXPECT_EQ(pane.identityText(), "Same person · 2 channels");
    EXPECT_EQ(names(), (QStringList { "Ana Ruiz", "Ben" }));
    EXPECT_EQ(inbox.person()->selectedId(), ana);
    EXPECT_EQ(fetchUnifiedThread(engines.db(), namesake, 10).size(), 2) << "one thread over both";

    inbox.actions()->undo();
    EXPECT_EQ(names().size(), 3);
    inbox.actions()->undo();
    EXPECT_EQ(pane.merges()->rowCount(), 0) << "once is enough";
    pane.mergeWith(namesake);

    pane.unmerge(id(pane.merges()));
    EXPECT_EQ(pane.merges()->rowCount(), 0);
    EXPECT_EQ(inbox.actions()->undoText(), "Unmerged ana ruiz");
    inbox.actions()->undo();
    EXPECT_EQ(texts(pane.merges()), QStringList("Merged with ana ruiz"));
    pane.unmerge(id(pane.merges()));
    EXPECT_EQ(pane.identityText(), "");
    EXPECT_EQ(names().size(), 3);
    EXPECT_EQ(texts(pane.suggestions()).size(), 1);
    pane.unmerge("mg:1:1000");
    EXPECT_EQ(pane.errorText(), "Couldn't save it, try again.");
}

TEST_F(CRMPaneTest, aMergedPersonWhoWritesAgainStaysOnePersonUntilTheyAreTakenApart)
{
    meetNamesake();
    pane.mergeWith(namesake);
    storeMessage(engines.db(), "TELEGRAM", "bot", telegram()); // moves the conversation back to its original contact
    inbox.list()->reload();
    EXPECT_EQ(names(), (QStringList { "Ana Ruiz", "Ben" }));
    EXPECT_EQ(bodies().last(), "from my other phone");
    inbox.person()->select({});
    inbox.person()->select(namesake); // as a click on a banner does
    EXPECT_EQ(inbox.person()->selectedId(), ana);
    EXPECT_EQ(texts(pane.merges()), QStringList("Merged with ana ruiz"));
    pane.unmerge(id(pane.merges()));
    EXPECT_EQ(pane.merges()->rowCount(), 0);
    EXPECT_EQ(names().size(), 3);
}

TEST_F(CRMPaneTest, aMergeOfAnotherProgramIsTakenUpAtTheNextTick)
{
    meetNamesake();
    engines.db().watch().start();
    inbox.person()->select(namesake);
    inbox.reply()->composer()->setText("half a sentence");
    inbox.reply()->composer()->voice()->startNote();
    microphone.answer(MicrophoneAccess::Granted);
    microphone.recording->seconds = 1;
    const auto other = openDatabase(clock);
    const auto merge = mergeContacts(*other, ana, namesake, "name");
    ASSERT_TRUE(merge);
    clock.advance(seconds(5));
    EXPECT_EQ(inbox.person()->selectedId(), ana);
    EXPECT_EQ(bodies().size(), 3) << "a day, and a message of each";
    EXPECT_EQ(inbox.reply()->composer()->text(), "half a sentence");
    EXPECT_TRUE(inbox.reply()->composer()->voice()->showsNote());
    EXPECT_EQ(texts(pane.merges()), QStringList("Merged with ana ruiz"));
    ASSERT_TRUE(unmergeContacts(*other, *merge));
    clock.advance(seconds(5));
    EXPECT_EQ(names().size(), 3);
    EXPECT_EQ(pane.merges()->rowCount(), 0);
    inbox.reply()->composer()->voice()->note()->cancel();
}

TEST_F(CRMPaneTest, aMergeShowsWhatIsKnownOfBoth)
{
    meetNamesake();
    addNote(engines.db(), namesake, "an old one");
    insertCRMDeal(engines.db(), namesake, { "Garden", "Proposal", "", "Acme", {} });
    engines.db().exec("INSERT INTO work_memory_entries VALUES('m','contact:" + namesake + "','Pays late','2025');");
    NewTask task;
    task.title = "Ring back";
    insertCRMTask(engines.db(), namesake, task);
    clock.advance(seconds(1));
    pane.addNote("a new one");

    pane.mergeWith(namesake);
    EXPECT_EQ(texts(pane.notes()->rows()), (QStringList { "a new one", "an old one" }));
    EXPECT_EQ(texts(pane.deals()->rows()) + texts(pane.memory()->rows()), (QStringList { "Garden", "Pays late" }));
    EXPECT_EQ(texts(pane.info()->rows()),
        (QStringList { "49171", "WhatsApp", "Telegram", "49171@s.whatsapp.net", "77", "Acme" }));
    EXPECT_EQ(column(pane.activity()->rows(), "label"), (QStringList { "Note", "Note", "Telegram", "WhatsApp" }));
    pane.completeTask(id(pane.tasks()->rows()));
    EXPECT_EQ(cell("SELECT status FROM crm_task;"), "Done");

    pane.unmerge(id(pane.merges()));
    EXPECT_EQ(texts(pane.notes()->rows()), QStringList("a new one")) << "each keeps what is theirs";
    EXPECT_EQ(pane.deals()->rows()->rowCount(), 0);
}

TEST_F(CRMPaneTest, aDismissedSuggestionStaysAwayFromBoth)
{
    meetNamesake();
    pane.dismissSuggestion(namesake);
    EXPECT_EQ(pane.suggestions()->rowCount(), 0);
    for (const QString& contact : { namesake, ana }) {
        inbox.person()->select(contact);
        clock.advance(Milliseconds(600));
        EXPECT_EQ(pane.suggestions()->rowCount(), 0) << contact.toStdString();
    }
    inbox.actions()->undo();
    EXPECT_EQ(pane.suggestions()->rowCount(), 1);
}
