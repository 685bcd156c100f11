#include "Settings/LocalAccess.h"

#include "Calendar/CalendarStore.h"
#include "Engines/AccountStore.h"
#include "Foundation/BackgroundQueue.h"
#include "Platform/AddressBook.h"
#include "Platform/Linux/Services.h"
#include "Support/Await.h"
#include "Support/FakeDesktop.h"
#include "Support/StoreTest.h"

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

}
