#include "CRM/ContactsBridge.h"
#include "Foundation/BackgroundQueue.h"
#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"
#include "Platform/AddressBook.h"
#include "Platform/Linux/Services.h"
#include "Support/Await.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"

#include <gtest/gtest.h>

namespace corvane {

class ContactsBridgeTest : public testing::Test {
protected:
    void card(const char* file, const QByteArray& properties)
    {
        home.write(u"share/contacts/home/"_s + QString::fromUtf8(file), "BEGIN:VCARD\n" + properties + "\nEND:VCARD\n");
    }

    void load()
    {
        bool done = false;
        contacts.load([&] { done = true; });
        ASSERT_TRUE(await([&] { return done; }));
    }

    QString nameOf(const char* phone)
    {
        const auto person = contacts.match(QString::fromUtf8(phone));
        return person ? person->name : u"-"_s;
    }

    TemporaryHome home;
    UserDefaults defaults { home.paths().defaultsFile };
    std::unique_ptr<AddressBook> book = makeAddressBook(home.paths());
    BackgroundQueue background;
    ContactsBridge contacts { *book, background, defaults };
};

TEST_F(ContactsBridgeTest, anAddressBookThatMayNotBeReadLeavesEverybodyUnknown)
{
    bool done = false;
    contacts.load([&] { done = true; });
    EXPECT_TRUE(done) << "there is nothing to wait for";
    EXPECT_FALSE(contacts.ready());
    EXPECT_TRUE(contacts.index().isEmpty());
    EXPECT_EQ(nameOf("+1 415 555 2671"), "-");

    card("a.vcf", "FN:Ana\nTEL:4155552671");
    load();
    EXPECT_TRUE(contacts.ready()) << "the next start finds the folder";
    EXPECT_EQ(nameOf("+1 415 555 2671"), "Ana");
}

TEST_F(ContactsBridgeTest, nationalAndInternationalFormsOfANumberMeet)
{
    card("a.vcf", "N:Ruiz;Ana\nTEL:4155552671");
    card("b.vcf", "FN:Bo\nTEL:+49 (0) 30 1234567");
    card("c.vcf", "FN:Cy\nTEL:2345678");
    card("d.vcf", "FN:Short\nTEL:123456");
    home.write("one/a.vcf", "BEGIN:VCARD\nFN:Ede\nTEL:9000000\nEND:VCARD\n");
    home.write("two/b.vcf", "BEGIN:VCARD\nFN:Flo\nTEL:8000000\nEND:VCARD\n");
    defaults.setText("nimb.addressBookFolders", home.path("one") + ':' + home.path("two") + "::/nowhere");
    load();
    EXPECT_EQ(nameOf("9000000") + nameOf("8000000"), "EdeFlo") << "further folders come from the defaults";
    EXPECT_EQ(nameOf("4155552671"), "Ana Ruiz");
    EXPECT_EQ(nameOf("+1 415 555 2671"), "Ana Ruiz");
    EXPECT_EQ(nameOf("155552671"), "Ana Ruiz") << "the last nine digits are enough";
    EXPECT_EQ(nameOf("49301234567"), "Bo") << "the nine behind the trunk zero are the same";
    EXPECT_EQ(nameOf("0301234567"), "Bo");
    EXPECT_EQ(nameOf("34 91 2345678"), "Cy") << "a short entry is matched by its whole number";
    EXPECT_EQ(nameOf("555 2671"), "Ana Ruiz");
    for (const char* nobody : { "123456", "", "call me", "4155552672" })
        EXPECT_EQ(nameOf(nobody), "-") << nobody;
}

TEST_F(ContactsBridgeTest, aPersonIsNamedByTheirNameOrTheirOrganisationOrNotAtAll)
{
    const QByteArray photo = QByteArray("\xFF\xD8\xFF", 3) + "jpeg";
    card("a.vcf", "N:;;;;\nORG:Acme\nTEL:1000000\nPHOTO;ENCODING=b:" + photo.toBase64());
    card("b.vcf", "N:Ruiz;;;;\nORG:Acme\nTEL:2000000\nTEL:3000000");
    card("c.vcf", "TEL:4000000");
    card("d.vcf", "FN:Later\nTEL:3000000");
    load();
    EXPECT_EQ(contacts.match("1000000"), (ContactsBridge::Person { "Acme", photo }));
    EXPECT_EQ(nameOf("2000000"), "Ruiz");
    EXPECT_EQ(nameOf("3000000"), "Later") << "a later card with the same number counts";
    EXPECT_EQ(nameOf("4000000"), "-");
}

TEST_F(ContactsBridgeTest, theBookIsReadOnceWhoeverAsks)
{
    card("a.vcf", "FN:Ana\nTEL:1000000");
    int completions = 0;
    contacts.load([&] { ++completions; });
    contacts.load([&] { ++completions; });
    EXPECT_EQ(completions, 0);
    ASSERT_TRUE(await([&] { return completions == 2; }));
    card("a.vcf", "FN:Other\nTEL:1000000");
    contacts.load([&] { ++completions; });
    EXPECT_EQ(completions, 3);
    EXPECT_EQ(nameOf("1000000"), "Ana");
}

}
