#include "Settings/LocalAccess.h"

#include "Calendar/CalendarStore.h"
#include "Engines/AccountStore.h"
#include "Foundation/BackgroundQueue.h"
#include "Platform/AddressBook.h"
#include "Platform/Linux/Services.h"
#include "Support/Await.h"
#include "Support/FakeDesktop.h"
#include "Support/StoreTest.h"

#include <QDir>
#include <QSignalSpy>

namespace corvane {

namespace {

class OpenStore : public StoreTest {
protected:
    OpenStore() { open(); }
};

class LocalAccessTest : public OpenStore {
protected:
    QString detail(int row) { return access.rows().at(row).detail; }
    bool awaitDetail(int row, const QString& words)
    {
        return await([&] { return detail(row) == words && access.rows().at(row).connected; });
    }

    AccountStore accounts { m_home.paths().applicationSupport };
    std::unique_ptr<CalendarSource> source = makeCalendarSource(m_home.paths());
    std::unique_ptr<AddressBook> book = makeAddressBook(m_home.paths());
    BackgroundQueue background;
    FakeDesktop desktop;
    CalendarStore calendar { { *m_db, *source, background, m_clock, m_defaults, m_centre, {} } };
    LocalAccess access { { accounts, calendar, *book, background, desktop, m_defaults, m_home.paths().home } };
};

}

TEST_F(LocalAccessTest, whatIsFoundIsCountedOnceItIsConnected)
{
    EXPECT_EQ(detail(0), "No account of this program yet");
    EXPECT_EQ(detail(1), "Not found: there is no calendar folder");
    EXPECT_EQ(detail(3), "Not found: choose a folder of Markdown files");
    access.connectTo("tasks");
    EXPECT_FALSE(access.rows().at(1).connected);
    m_home.write("share/calendars/work/a.ics",
        "BEGIN:VCALENDAR\r\nBEGIN:VTODO\r\nSUMMARY:Call\r\nEND:VTODO\r\nBEGIN:VTODO\r\nSTATUS:COMPLETED\r\nEND:"
        "VTODO\r\n"
        "END:VCALENDAR\r\n");
    m_home.write("share/contacts/friends/ana.vcf", "BEGIN:VCARD\nVERSION:3.0\nFN:Ana\nTEL:+34600000000\nEND:VCARD\n");
    EXPECT_EQ(detail(1), "Found in the calendar folders");
    access.connectTo("tasks");
    EXPECT_TRUE(awaitDetail(1, "1 open task"));
    access.connectTo("contacts");
    EXPECT_TRUE(awaitDetail(2, "1 person"));
    m_home.write("team/bo.vcf", "BEGIN:VCARD\nVERSION:3.0\nFN:Bo\nTEL:+34600000001\nEND:VCARD\n");
    m_defaults.setText("nimb.addressBookFolders", m_home.path("team"));
    access.connectTo("contacts");
    EXPECT_TRUE(awaitDetail(2, "2 people"));

    const QString folder = m_home.path("vault");
    m_home.write("vault/a.md", "x");
    m_home.write("vault/deep/b.md", "y");
    desktop.chosen = QList<QUrl> { QUrl::fromLocalFile(folder) };
    access.connectTo("notes");
    EXPECT_TRUE(awaitDetail(3, "2 notes in ~/vault"));

    accounts.add("ana@x.example", Channel::Email);
    EXPECT_EQ(detail(0), "1 account of this program");
    EXPECT_FALSE(access.rows().at(4).connected) << "mail is no messages";
    LocalAccess later({ accounts, calendar, *book, background, desktop, m_defaults, m_home.paths().home });
    EXPECT_TRUE(later.rows().at(3).connected);
    later.refresh();
    EXPECT_TRUE(await([&] { return later.rows().at(3).detail.startsWith("2 notes"); }));
}

TEST_F(LocalAccessTest, mailAndMessagesAreAccountsAndAskForTheirSection)
{
    QSignalSpy asked(&access, &LocalAccess::accountsAsked);
    QSignalSpy changed(&access, &LocalAccess::changed);
    access.connectTo("mail");
    access.connectTo("messages");
    EXPECT_EQ(asked.size(), 2);
    EXPECT_EQ(changed.size(), 0);
    accounts.add("Sales", Channel::WhatsApp);
    accounts.add("Team", Channel::Slack);
    EXPECT_EQ(changed.size(), 2);
    EXPECT_EQ(access.rows().at(4), (LocalAccessRow { "messages", "Messages", "2 accounts of this program", true }));
    EXPECT_EQ(access.rows().at(0), (LocalAccessRow { "mail", "Mail", "No account of this program yet", false }));
    QStringList names;
    for (const LocalAccessRow& row : access.rows())
        names.append(row.id + u' ' + row.name);
    EXPECT_EQ(
        names, QStringList({ "mail Mail", "tasks Tasks", "contacts Contacts", "notes Notes", "messages Messages" }));
}

TEST_F(LocalAccessTest, notesAreWhereTheyUsuallyAreOrWhereThePersonSays)
{
    desktop.chosen = failure("There is no dialog.");
    access.connectTo("notes");
    EXPECT_EQ(detail(3), "This desktop has no window to choose a folder in. Keep notes in ~/Notes.");
    EXPECT_FALSE(access.rows().at(3).connected);
    desktop.chosen = QList<QUrl> {};
    access.connectTo("notes");
    EXPECT_EQ(m_defaults.text("nimb.notesFolder"), std::nullopt) << "nothing was chosen";
    const LocalAccess next({ accounts, calendar, *book, background, desktop, m_defaults, m_home.paths().home });
    QDir home(m_home.paths().home);
    for (const char* folder : { "Documents/notes", "Documents/Notes", "notes", "Notes" }) {
        home.mkpath(folder);
        EXPECT_EQ(next.rows().at(3).detail, u"Found in ~/%1"_s.arg(QString(folder)));
        EXPECT_FALSE(next.rows().at(3).connected);
    }
    QSignalSpy changed(&access, &LocalAccess::changed);
    access.connectTo("notes");
    EXPECT_TRUE(awaitDetail(3, "0 notes in ~/Notes"));
    EXPECT_EQ(changed.size(), 1);
    home.mkpath("Notes/deep");
    for (const char* name : { "Notes/a.md", "Notes/deep/b.markdown", "Notes/c.txt" }) {
        QFile file(home.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    }
    access.connectTo("contacts");
    EXPECT_EQ(detail(2), "Not found: there is no folder of contacts, such as ~/.local/share/contacts");
    access.refresh();
    EXPECT_TRUE(awaitDetail(3, "2 notes in ~/Notes"));
    EXPECT_EQ(m_defaults.text("nimb.localAccess"), "notes") << "once, and nothing else";
    home.rename("Notes", "gone");
    home.rename("notes", "gone too");
    QDir(home.filePath("Documents")).removeRecursively();
    access.refresh();
    EXPECT_EQ(access.rows().at(3).detail, "Not found: choose a folder of Markdown files");
    EXPECT_FALSE(access.rows().at(3).connected);
}

}
