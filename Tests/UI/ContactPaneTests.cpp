#include "Engines/EngineManager.h"
#include "Foundation/Literals.h"
#include "Inbox/List/ContactListView.h"
#include "Inbox/OpenPerson.h"
#include "Shell/AppShell.h"
#include "Store/People/ContactInfo.h"
#include "UI/WindowTest.h"

namespace corvane {

namespace {

class ContactPaneWindow : public WindowTest {
protected:
    ContactPaneWindow()
    {
        showInbox();
        newNumberWrites();
        select(ana);
    }

    void newNumberWrites() { receive(m_otherPhone, u"49179@s.whatsapp.net"_s, u"Ana Ruiz"_s, u"My new number"_s); }

    void select(const QString& contactId)
    {
        person.select(contactId);
        clock.advance(Milliseconds(600)); // suggestions appear after a pause
        rest();
    }

    /// Clicks an item that may be scrolled out of view. Keyboard focus scrolls it into view.
    void reach(const QString& objectName)
    {
        if (QQuickItem* target = item(objectName)) {
            target->forceActiveFocus(Qt::TabFocusReason);
            rest();
            QQuickItem* view = item(u"contact.view"_s);
            EXPECT_TRUE(view->boundingRect().contains(target->mapToItem(view, target->boundingRect().center())))
                << qPrintable(objectName);
        }
        click(objectName);
    }

    QStringList column(QAbstractItemModel* model, const char* role) const
    {
        QStringList values;
        for (int row = 0; row < model->rowCount(); ++row)
            values.append(model->index(row, 0).data(model->roleNames().key(role)).toString());
        return values;
    }

    const QString ana = u"ct:WHATSAPP:49171@s.whatsapp.net"_s;
    const QString ben = u"ct:WHATSAPP:49172@s.whatsapp.net"_s;
    CRMPane& pane = *person.crm();

private:
    FakeChild& m_otherPhone = startEngine(u"Other phone"_s);
};

}

TEST_F(ContactPaneWindow, twoContactsAreMergedAndBothWaysBackWork)
{
    const int people = contacts.contacts()->rowCount();
    click(u"contact.merge"_s);
    EXPECT_EQ(contacts.contacts()->rowCount(), people - 1);
    EXPECT_EQ(findItem(u"contact.merge"_s), nullptr);
    click(u"inbox.undo"_s);
    EXPECT_EQ(contacts.contacts()->rowCount(), people);

    click(u"contact.merge"_s);
    newNumberWrites();
    clock.advance(Milliseconds(600));
    rest();
    EXPECT_EQ(contacts.contacts()->rowCount(), people - 1) << "they stay one person";
    click(u"contact.unmerge"_s);
    EXPECT_EQ(contacts.contacts()->rowCount(), people);
    item(u"contact.merge"_s);

    click(u"contact.dismissMerge"_s);
    EXPECT_EQ(findItem(u"contact.merge"_s), nullptr);
    press(Qt::Key_Z, Qt::ControlModifier);
    item(u"contact.merge"_s);
}

TEST_F(ContactPaneWindow, aDealIsAddedWithKeysAlone)
{
    reach(u"contact.addDeal"_s);
    EXPECT_TRUE(focusWithin(u"addDeal.name"_s));
    EXPECT_FALSE(item(u"addDeal.submit"_s)->isEnabled());
    type(u"Garden"_s);
    press(Qt::Key_Return);
    EXPECT_TRUE(focusWithin(u"addDeal.value"_s));
    type(u"12.5k"_s);
    click(u"addDeal.stage.Proposal"_s);
    press(Qt::Key_Escape);
    EXPECT_EQ(findItem(u"addDeal"_s), nullptr);
    reach(u"contact.addDeal"_s);
    EXPECT_EQ(item(u"addDeal.name"_s)->property("text"), u"Garden"_s) << "what was typed stays";

    select(ben);
    EXPECT_EQ(findItem(u"addDeal"_s), nullptr) << "it was meant for somebody else";
    reach(u"contact.addDeal"_s);
    EXPECT_EQ(item(u"addDeal.name"_s)->property("text"), u""_s);
    type(u"Kitchen"_s);
    engines.db().exec(u"CREATE TRIGGER full BEFORE INSERT ON crm_deal BEGIN SELECT RAISE(ABORT, 'full'); END;"_s);
    click(u"addDeal.submit"_s);
    item(u"addDeal.submit"_s);
    engines.db().exec(u"DROP TRIGGER full;"_s);
    click(u"addDeal.submit"_s);
    EXPECT_EQ(findItem(u"addDeal"_s), nullptr);
    EXPECT_EQ(column(pane.deals()->rows(), "text"), QStringList(u"Kitchen"_s));
    EXPECT_EQ(column(pane.deals()->rows(), "detail"), QStringList(u"Prospecting"_s));

    reach(u"contact.moveDeal"_s);
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    EXPECT_EQ(column(pane.deals()->rows(), "detail"), QStringList(u"Qualification"_s));
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(column(pane.deals()->rows(), "detail"), QStringList(u"Prospecting"_s));
    EXPECT_EQ(cell(u"SELECT payload_json FROM crm_mutation_queue WHERE entity_type='deal' AND action='update';"_s),
        uR"({"stage":"Prospecting"})"_s);
}

TEST_F(ContactPaneWindow, notesAndTasksAreWrittenInPlaceAndATaskIsTickedOff)
{
    reach(u"contact.note.text"_s);
    type(u"je m"_s);
    EXPECT_EQ(pane.noteText(), u"je m"_s) << "letters are text here, not commands";
    select(ben);
    EXPECT_EQ(item(u"contact.note"_s)->property("text"), u""_s);
    select(ana);
    reach(u"contact.addNote"_s);
    EXPECT_EQ(column(pane.notes()->rows(), "text"), QStringList(u"je m"_s));
    EXPECT_EQ(item(u"contact.note"_s)->property("text"), u""_s);
    EXPECT_EQ(findItem(u"contact.addNote"_s), nullptr);

    reach(u"contact.task"_s);
    type(u"Ring back"_s);
    press(Qt::Key_Return);
    EXPECT_EQ(column(pane.tasks()->rows(), "text"), QStringList(u"Ring back"_s));
    reach(u"contact.complete"_s);
    EXPECT_EQ(pane.tasks()->rows()->rowCount(), 0);
    click(u"inbox.undo"_s);
    EXPECT_EQ(pane.tasks()->rows()->rowCount(), 1);

    keepMemoryEntry(engines.db(), { u"m"_s, u"contact:"_s + ana, u"Pays late"_s, u"2025-01-01T00:00:00Z"_s });
    select(ben);
    select(ana);
    reach(u"contact.forget"_s);
    EXPECT_EQ(pane.memory()->rows()->rowCount(), 0);
    click(u"inbox.undo"_s);
    EXPECT_EQ(pane.memory()->rows()->rowCount(), 1);
}

TEST_F(ContactPaneWindow, aFailureIsSaidAndWhatWasTypedIsKept)
{
    engines.db().exec(u"CREATE TRIGGER full BEFORE INSERT ON contact_note BEGIN SELECT RAISE(ABORT, 'full'); END;"_s);
    pane.setNoteText(u"A long thought"_s);
    rest();
    const QImage before = picture();
    reach(u"contact.addNote"_s);
    item(u"contact.error"_s);
    EXPECT_NE(picture(), before);
    EXPECT_EQ(item(u"contact.note"_s)->property("text"), u"A long thought"_s);
    pane.dismissError();
    rest();
    EXPECT_EQ(findItem(u"contact.error"_s), nullptr);
}

TEST_F(ContactPaneWindow, aSectionStaysFoldedAndANarrowWindowFoldsThePane)
{
    reach(u"contact.section.tasks"_s);
    EXPECT_EQ(findItem(u"contact.task"_s), nullptr);
    EXPECT_EQ(defaults.boolean(u"nimb.inbox.inspector.tasks.open"_s), false);
    shell.openSettings();
    rest();
    shell.closeSettings(); // the pane is created again
    rest();
    EXPECT_EQ(findItem(u"contact.task"_s), nullptr);
    reach(u"contact.section.tasks"_s);
    item(u"contact.task"_s);

    window.window()->resize(1040, 660);
    rest();
    EXPECT_EQ(findItem(u"contact.view"_s), nullptr);
    press(Qt::Key_I, Qt::ControlModifier);
    item(u"contact.view"_s);
    press(Qt::Key_Escape);
    EXPECT_EQ(findItem(u"contact.view"_s), nullptr);
}

}
