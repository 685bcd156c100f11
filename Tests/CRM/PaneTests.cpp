#include "CRM/CRMPane.h"
#include "Foundation/Ids.h"
#include "Store/Messages/IngestQueries.h"
#include "Store/People/CrmRecords.h"
#include "Support/StoreTest.h"

#include <QSignalSpy>

namespace corvane {

namespace {

class Pane : public StoreTest {
protected:
    ContactRow person(const QString& channel, const QString& handle, const QString& name)
    {
        ensureConversation(db, channel, channel, handle, name, 1);
        ContactRow row {};
        row.id = contactId(channel, handle);
        row.name = name;
        row.platforms = { channel };
        return row;
    }

    void show(const ContactRow& contact)
    {
        pane.open(contact);
        m_clock.advance(Milliseconds(600));
    }

    static QString of(PaneSection* section)
    {
        QStringList lines;
        for (const PaneRow& row : static_cast<RowListModel<PaneRow>*>(section->rows())->rows())
            lines.append(QStringList { row.label, row.text, row.detail }.join('|'));
        return lines.join('\n');
    }

    LocalDB& db = open();
    CRMPane pane { db, m_clock };
    QString told; ///< the last action that can be undone
    std::function<void()> back;
    const QMetaObject::Connection undoable
        = QObject::connect(&pane, &CRMPane::undoable, [this](const QString& text, const std::function<void()>& undo) {
              told = text;
              back = undo;
          });
};

}

TEST_F(Pane, whatIsUsualIsNotSaidAndEachActionHasItsWayBack)
{
    const ContactRow ana = person(u"EMAIL"_s, u"ana@example.com"_s, u"Ana"_s);
    show(ana);
    EXPECT_EQ(pane.identityText(), "");
    EXPECT_TRUE(pane.identityEmpty().startsWith("Known on Email only. ")) << qPrintable(pane.identityEmpty());
    EXPECT_EQ(pane.memory()->emptyText(), "Nothing yet — agents save durable facts here as you work.");
    EXPECT_FALSE(pane.addTask(u"  "_s));
    EXPECT_FALSE(pane.addNote(u"\n"_s));
    pane.setTaskText(u"Call"_s);
    EXPECT_TRUE(pane.addTask(u" Call "_s));
    EXPECT_EQ(pane.taskText(), "");
    insertCRMTask(db, ana.id, { "Order the large plates for the new gallery", "Monday", "High", "Waiting" });
    insertCRMDeal(db, ana.id, { "Plates", "Proposal", "€1.8k", "Taller", {} });
    db.run("INSERT INTO work_memory_entries(id, scope, body, created_at) VALUES('m',?,'likes linen','2026');",
        { u"contact:"_s + ana.id });
    show(ana);
    QStringList tasks = of(pane.tasks()).split('\n');
    tasks.sort();
    EXPECT_EQ(tasks, (QStringList { "|Call|", "|Order the large plates for the new gallery|Monday · High · Waiting" }));
    EXPECT_EQ(of(pane.deals()), "|Plates|Proposal · €1.8k · Taller");
    EXPECT_EQ(of(pane.info()), "Email|ana@example.com|\nChannel|Email|\nHandle|ana@example.com|\nCompany|Taller|");

    pane.completeTask(cell("SELECT id FROM crm_task WHERE due='Monday';"));
    EXPECT_EQ(told, "Completed “Order the large plates for the n…”");
    EXPECT_EQ(of(pane.tasks()), "|Call|");
    back();
    EXPECT_EQ(cell("SELECT status FROM crm_task WHERE due='Monday';"), "Waiting") << "as it was";
    const QString deal = cell("SELECT id FROM crm_deal;");
    told.clear();
    pane.moveDeal(deal, u"Proposal"_s);
    EXPECT_EQ(told, "") << "it stands there";
    pane.moveDeal(deal, u"Closed Won"_s);
    EXPECT_EQ(told, "Moved “Plates” to Closed Won");
    back();
    EXPECT_EQ(cell("SELECT stage FROM crm_deal;"), "Proposal");
    pane.forget(u"m"_s);
    EXPECT_EQ(told + of(pane.memory()), "Forgot “likes linen”");
    back();
    EXPECT_EQ(of(pane.memory()), "|likes linen|");
    told.clear();
    m_db->exec("DROP TABLE crm_task;");
    pane.completeTask(u"x"_s);
    EXPECT_FALSE(pane.addTask(u"Lost?"_s));
    EXPECT_EQ(pane.errorText() + told, "Couldn't save it, try again.");
    pane.dismissError();
    EXPECT_EQ(pane.errorText(), "");
    show({});
    EXPECT_EQ(of(pane.deals()), "");
    EXPECT_FALSE(pane.addNote(u"Nobody's"_s));
}

TEST_F(Pane, aSuggestionNamesTheOtherOneAndIsTakenRefusedOrTakenBack)
{
    const ContactRow ana = person(u"EMAIL"_s, u"ana@example.com"_s, u"Ana Ruiz"_s);
    const ContactRow mail = person(u"GMAIL"_s, u"ana@example.com"_s, u"A. R."_s);
    const ContactRow namesake = person(u"TELEGRAM"_s, u"77"_s, u"ana ruiz"_s);
    const auto suggestions = [this] {
        QStringList lines;
        for (const PaneRow& row : static_cast<RowListModel<PaneRow>*>(pane.suggestions())->rows())
            lines.append(row.text + ' ' + row.detail);
        return lines.join('\n');
    };
    const QSignalSpy people(&pane, &CRMPane::peopleChanged);
    pane.open(ana);
    EXPECT_EQ(suggestions(), "") << "not while the user is passing by";
    m_clock.advance(Milliseconds(250));
    EXPECT_EQ(suggestions(), "Same as A. R.? matching email\nSame as ana ruiz? similar name (weak)");
    show(mail);
    EXPECT_EQ(suggestions(), "Same as Ana Ruiz? matching email");
    pane.mergeWith(namesake.id);
    EXPECT_EQ(people.size(), 0) << "what was not suggested is not merged";
    show(ana);
    pane.dismissSuggestion(namesake.id);
    EXPECT_EQ(suggestions(), "Same as A. R.? matching email");
    show(namesake);
    EXPECT_EQ(suggestions(), "") << "refused from both sides";
    back();
    EXPECT_EQ(suggestions(), "Same as Ana Ruiz? similar name (weak)");
    show(ana);
    pane.mergeWith(mail.id);
    EXPECT_EQ(told, "Merged with A. R.");
    EXPECT_EQ(people.size(), 1);
    const PaneRow merge = static_cast<RowListModel<PaneRow>*>(pane.merges())->rows().first();
    EXPECT_EQ(merge.text + '|' + merge.detail, "Merged with A. R.|Gmail");
    pane.unmerge(merge.id);
    EXPECT_EQ(told, "Unmerged A. R.");
    EXPECT_EQ(pane.merges()->rowCount(), 0);
    back();
    EXPECT_EQ(pane.merges()->rowCount(), 1) << "one again";
    ContactRow both = ana;
    both.platforms = { u"EMAIL"_s, u"GMAIL"_s };
    show(both);
    EXPECT_EQ(pane.identityText(), "Same person · 2 channels");
}

TEST_F(Pane, aDealIsAddedOnlyWithAPersonAndANameAndOlderNotesOnDemand)
{
    DealForm& form = *pane.dealForm();
    EXPECT_EQ(form.title() + form.stage(), "Add Deal" + pane.stages().first());
    form.open();
    const QSignalSpy closes(&form, &DealForm::changed);
    form.close();
    form.close();
    EXPECT_EQ(closes.size(), 1);
    EXPECT_FALSE(form.isOpen());
    form.open();
    form.field(u"name"_s).type(u"Plates"_s);
    EXPECT_FALSE(form.complete()) << "with nobody";
    const ContactRow ana = person(u"SMS"_s, u"1"_s, u"Ana"_s);
    show(ana);
    EXPECT_FALSE(form.isOpen()) << "another person closes it";
    form.open();
    EXPECT_EQ(form.hint() + form.field(u"name"_s).text(), "With Ana");
    form.field(u"name"_s).type(u"  "_s);
    form.submit();
    EXPECT_TRUE(form.isOpen());
    form.field(u"name"_s).type(u" Plates "_s);
    form.field(u"value"_s).type(u" €5 "_s);
    form.setStage(u"Negotiation"_s);
    m_db->exec("CREATE TRIGGER full BEFORE INSERT ON crm_deal BEGIN SELECT RAISE(ABORT,'full'); END;");
    form.submit();
    EXPECT_EQ(form.message() + form.field(u"value"_s).text(), "Couldn't save it, try again. €5 ");
    m_db->exec("DROP TRIGGER full;");
    form.close();
    form.open();
    EXPECT_EQ(form.message() + form.field(u"value"_s).text(), " €5 ") << "what was typed is kept, the message is not";
    form.submit();
    EXPECT_EQ(table("SELECT name, stage, value FROM crm_deal;"), QStringList("Plates|Negotiation|€5"));
    EXPECT_EQ(form.stage(), pane.stages().first()) << "the next one starts anew";
    EXPECT_FALSE(form.isOpen());

    for (int i = 0; i < 32; ++i) {
        m_clock.advance(Milliseconds(1000));
        addNote(db, ana.id, QString::number(i));
    }
    show(ana);
    EXPECT_EQ(pane.notes()->rows()->rowCount(), 5);
    EXPECT_TRUE(pane.notes()->hasOlder());
    pane.notes()->showOlder();
    EXPECT_EQ(pane.notes()->rows()->rowCount(), 30);
    const QString oldest = cell("SELECT id FROM contact_note ORDER BY rowid LIMIT 1;");
    EXPECT_FALSE(pane.notes()->shows(oldest));
    pane.showNote(oldest);
    EXPECT_TRUE(pane.notes()->shows(oldest));
    EXPECT_FALSE(pane.notes()->hasOlder());
    show(person(u"SMS"_s, u"2"_s, u"Bo"_s));
    show(ana);
    EXPECT_EQ(pane.notes()->rows()->rowCount(), 5) << "each person starts with the newest";
}

}
