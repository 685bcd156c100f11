#include "Platform/AddressBook.h"
#include "Platform/Linux/Services.h"
#include "Platform/VCardReader.h"
#include "Support/LogCapture.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"

#include <QBuffer>
#include <QDir>
#include <QFile>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane {

namespace {

const QByteArray png = QByteArray("\x89PNG\r\n\x1a\n", 8) + QByteArray(90, '\x7f');

QList<AddressBookPerson> read(QByteArray text)
{
    QBuffer buffer(&text);
    buffer.open(QIODevice::ReadOnly);
    VCardReader reader(buffer);
    QList<AddressBookPerson> people;
    while (const auto person = reader.next())
        people.append(*person);
    return people;
}

AddressBookPerson readOne(const QByteArray& properties)
{
    const auto people = read("BEGIN:VCARD\r\nVERSION:4.0\r\n" + properties + "END:VCARD\r\n");
    EXPECT_EQ(people.size(), 1);
    return people.value(0);
}

/// Folds a vCard line into lines of at most 75 bytes.
QByteArray fold(const QByteArray& line)
{
    QByteArray folded;
    for (qsizetype from = 0; from < line.size(); from += 74)
        folded += (from > 0 ? "\r\n " : "") + line.mid(from, 74);
    return folded + "\r\n";
}

}

TEST(VCardReader, aCardOfVersionThreeAndOneOfFourReadAlike)
{
    const auto people = read("\xEF\xBB\xBF"
                             "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Ruiz;Ana;;;\r\nFN:Ana Ruiz\r\nORG:Acme\\, Inc.;Sales\r\n"
                             "TEL;TYPE=CELL,VOICE:+34 600 000 001\r\nitem1.TEL;TYPE=\"work:1\":+34 910\r\n"
        + fold("PHOTO;ENCODING=b;TYPE=PNG:" + png.toBase64())
        + "END:VCARD\r\n\r\nbegin:vcard\nversion:4.0\nFN:Ana \\;\n  Ruiz\norg:Acme\\, Inc.\n"
          "tel;value=uri;type=\"cell,voice\":tel:+34-600-000-001;ext=1\n"
        + fold("PHOTO:data:image/png;base64," + png.toBase64()) + "end:vcard");
    ASSERT_EQ(people.size(), 2);
    EXPECT_EQ(people.at(0), (AddressBookPerson { "Ana", "Ruiz", "Acme, Inc.", { "+34 600 000 001", "+34 910" }, png }));
    EXPECT_EQ(people.at(1), (AddressBookPerson { "Ana ; Ruiz", "", "Acme, Inc.", { "+34-600-000-001" }, png }))
        << "without its parts a name is taken as a whole";
}

TEST(VCardReader, aFoldThatCutsACharacterIsMendedAndEscapesAreRead)
{
    const QByteArray name = "N:Mu\xC3\r\n \xB1oz;Jos\xC3\xA9\\n\\;;;\r\n";
    EXPECT_EQ(readOne(name).familyName, "Mu\xC3\xB1oz");
    EXPECT_EQ(readOne(name).givenName, "Jos\xC3\xA9 ;");
    EXPECT_EQ(readOne("TEL:\r\nTEL:tel:\r\nTEL\r\nTEL;TYPE=\"never closed:1\r\n\xFF:\xFF\r\n").phones, QStringList());
    EXPECT_EQ(readOne("PHOTO;BASE64:\r\n  " + png.toBase64().insert(40, "\r\n  ") + "\r\n").photo, png);
    EXPECT_EQ(readOne(QByteArray("TEL:+34 600\r\n").repeated(5000)).phones.size(), 100);
}

TEST(VCardReader, aPhotoThatIsBrokenTooLargeOrElsewhereIsLeftOut)
{
    const QByteArray encoded = png.toBase64();
    QByteArray huge = png;
    huge.resize(3 * 1024 * 1024, 'x');
    for (const QByteArray& photo : { QByteArray("PHOTO;ENCODING=b:") + encoded + "?\r\n", "PHOTO:" + encoded + "\r\n",
             QByteArray("PHOTO;VALUE=URI:https://example.com/a.png\r\n"), QByteArray("PHOTO:data:image/png;base64\r\n"),
             QByteArray("PHOTO;ENCODING=b:bm8gaW1hZ2U=\r\n"), QByteArray("PHOTO;ENCODING=b:\r\n"),
             fold("PHOTO;ENCODING=b:" + huge.toBase64()), "PHOTO;ENCODING=b:" + huge.toBase64() + "\r\n" }) {
        const AddressBookPerson person = readOne("FN:Ana\r\n" + photo + "TEL:34600\r\n");
        EXPECT_EQ(person.photo.size(), 0) << photo.left(60).constData();
        EXPECT_EQ(person.givenName, "Ana");
        EXPECT_EQ(person.phones, QStringList("34600")) << "what stands behind it is read";
    }
}

TEST(VCardReader, theFirstOfEachCountsAndEveryAddressIsTaken)
{
    const QByteArray jpeg = QByteArray("\xFF\xD8\xFF", 3) + "j";
    const auto embedded = [](const QByteArray& image) {
        return "PHOTO;ENCODING=B:" + image.toBase64() + "\r\n";
    };
    const AddressBookPerson person = readOne("FN:First;Name\r\nFN:Second\r\nORG:One;Sales\r\nORG:Two\r\n"
                                             "EMAIL;TYPE=work:ana@example.org\r\nemail:not an address\r\n"
                                             "item2.EMAIL:b\\,c@example.org\r\n"
        + embedded(jpeg) + embedded(png));
    EXPECT_EQ(
        person, (AddressBookPerson { "First Name", "", "One", {}, jpeg, { "ana@example.org", "b,c@example.org" } }));
    EXPECT_EQ(readOne(QByteArray("EMAIL:a@b\r\n").repeated(101)).emails.size(), 100);
    EXPECT_EQ(readOne("N:Ruiz\r\nFN:Ana Ruiz\r\n"), (AddressBookPerson { "", "Ruiz", "", {}, {} }))
        << "the whole name only where there are no parts";
    EXPECT_EQ(readOne("N:;Ana\r\nFN:Ana Ruiz\r\n").givenName, "Ana");
    EXPECT_EQ(readOne("ORG:" + QByteArray(16'384, 'o') + "\r\n").organisation.size(), 16'384);
    EXPECT_EQ(
        readOne("ORG:" + QByteArray(16'385, 'o') + "\r\nFN:Ana\r\n"), (AddressBookPerson { "Ana", "", "", {}, {} }));
    EXPECT_EQ(readOne("FN:Ana\n\tRuiz\\\r\n").givenName, "AnaRuiz\\") << "folded by a tab, and an escape of nothing";
    EXPECT_EQ(readOne(" TEL : 1\r\n").phones, QStringList()) << "the continuation of what stands before it";
    EXPECT_EQ(readOne("TEL;X=\"a;b\";TYPE=home:1\r\n").phones, QStringList("1"));

    for (const QByteArray& image : { QByteArray("GIF8"), "RIFF" + QByteArray(4, 'x') + "WEBP", jpeg, png })
        EXPECT_EQ(readOne(embedded(image)).photo, image);
    for (const QByteArray& other : { QByteArray("RIFF") + QByteArray(4, 'x') + "WAVE",
             "XXXX" + QByteArray(4, 'x') + "WEBP", QByteArray("\xFF\xD8"), QByteArray("\x89PNG") })
        EXPECT_EQ(readOne(embedded(other)).photo.size(), 0) << other.constData();
    for (const QByteArray& parameter :
        { QByteArray("ENCODING=b"), QByteArray("encoding=base64"), QByteArray("base64") })
        EXPECT_EQ(readOne("PHOTO;" + parameter + ':' + png.toBase64() + "\r\n").photo, png) << parameter.constData();
    EXPECT_EQ(readOne("PHOTO:data:image/png," + png.toBase64() + "\r\n").photo.size(), 0) << "no base64";
    EXPECT_EQ(readOne("PHOTO:DATA:image/png;BASE64," + png.toBase64() + "\r\n").photo, png);
    const QByteArray most = png + QByteArray(1024 * 1024 - png.size(), 'x');
    EXPECT_EQ(readOne(fold("PHOTO;ENCODING=b:" + most.toBase64())).photo.size(), most.size());
    EXPECT_EQ(readOne("PHOTO;ENCODING=b:" + (most + 'x').toBase64() + "\r\n").photo.size(), 0);
}

TEST(VCardReader, onlyWholeCardsCount)
{
    EXPECT_EQ(read("").size(), 0);
    EXPECT_EQ(read("FN:Nobody\nEND:VCARD\n").size(), 0);
    EXPECT_EQ(read("BEGIN:VCARD\nFN:Cut").size(), 0);
    EXPECT_EQ(read("BEGIN:VEVENT\nEND:VCARD\nBEGIN:VCARD\nEND:VEVENT\n").size(), 0);
    const auto people = read("BEGIN:VCARD\nFN:Cut\nTEL:1\nBEGIN:VCARD\nFN:Whole\nEND:VCARD\n");
    ASSERT_EQ(people.size(), 1);
    EXPECT_EQ(people.first().givenName, "Whole");
    EXPECT_EQ(people.first().phones, QStringList());
}

class AddressBookFolders : public testing::Test {
protected:
    QStringList names(const QStringList& folders = {})
    {
        QStringList found;
        for (const AddressBookPerson& person : book->people(folders))
            found.append(person.givenName);
        return found;
    }

    void card(const QString& path, const char* name)
    {
        home.write(path, QByteArray("BEGIN:VCARD\nFN:") + name + "\nEND:VCARD\n");
    }

    LogCapture log;
    TemporaryHome home;
    std::unique_ptr<AddressBook> book = makeAddressBook(home.paths());
};

TEST_F(AddressBookFolders, theUsualFoldersAndThoseNamedBesideAreRead)
{
    card("share/contacts/work/b.vcf", "Bo");
    card("share/contacts/home/a.vcf", "Ana");
    card("share/contacts/home/notes.txt", "Nobody");
    card("more/c.vcf", "Cy");
    card("more/deep/d.vcf", "Di");
    EXPECT_EQ(names(), (QStringList { "Ana", "Bo" }));
    EXPECT_TRUE(book->requestAccess({ home.path("nowhere"), "" }));
    EXPECT_EQ(names({ home.path("more") }), (QStringList { "Ana", "Bo", "Cy", "Di" }));
    const QString inHome = "~/" + QDir(home.paths().home).relativeFilePath(home.path("more"));
    EXPECT_TRUE(book->requestAccess({ inHome }));
    EXPECT_EQ(names({ inHome }).size(), 4);
}

TEST_F(AddressBookFolders, whatCannotBeReadIsSkipped)
{
    card("share/contacts/home/z.vcf", "Zoe");
    home.write("share/contacts/home/broken.vcf", QByteArray(5000, '\xFE'));
    QDir().mkpath(home.path("share/contacts/home/folder.vcf"));
    ASSERT_EQ(mkfifo(qPrintable(home.path("share/contacts/home/pipe.vcf")), 0600), 0);
    QFile::link("/nowhere/at/all.vcf", home.path("share/contacts/home/gone.vcf"));
    home.write("share/contacts/home/shut.vcf", "BEGIN:VCARD\nFN:Shut\nEND:VCARD\n");
    QFile::setPermissions(home.path("share/contacts/home/shut.vcf"), {});
    EXPECT_EQ(names(), ::geteuid() == 0 ? QStringList({ "Shut", "Zoe" }) : QStringList("Zoe"));
    EXPECT_FALSE(makeAddressBook({ "", home.path("none/Corvane"), "", "" })->requestAccess({}));
}

TEST_F(AddressBookFolders, allPhotosTogetherHaveABound)
{
    const QByteArray image = png + QByteArray(1024 * 1024 - png.size(), 'x');
    const QByteArray card = "BEGIN:VCARD\nFN:Ana\nPHOTO;ENCODING=b:" + image.toBase64() + "\nEND:VCARD\n";
    home.write("share/contacts/home/a.vcf", card.repeated(40));
    home.write("share/contacts/home/b.vcf", card.repeated(30));
    qsizetype photos = 0;
    const auto people = book->people({});
    for (const AddressBookPerson& person : people)
        photos += person.photo.isEmpty() ? 0 : 1;
    EXPECT_EQ(people.size(), 70);
    EXPECT_EQ(photos, 64);
}

TEST_F(AddressBookFolders, aFileOfAHundredMegabytesIsReadToItsBound)
{
    card("share/contacts/home/a.vcf", "Ana");
    QFile file(home.path("share/contacts/home/a.vcf"));
    ASSERT_TRUE(file.resize(100 * 1024 * 1024)); // the rest is one very long line
    EXPECT_EQ(names(), QStringList("Ana"));

    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    QByteArray cards;
    while (cards.size() < 4 * 1024 * 1024)
        cards += "BEGIN:VCARD\nNOTE:" + QByteArray(15'000, 'x') + "\nFN:Ana\nEND:VCARD\n";
    for (int i = 0; i < 25; ++i)
        file.write(cards);
    file.close();
    const qsizetype count = names().size();
    EXPECT_GT(count, 4000);
    EXPECT_LT(count, 5000);
    EXPECT_TRUE(log.contains("too large"));

    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray("BEGIN:VCARD\nFN:Bo\nEND:VCARD\n").repeated(100'001));
    file.close();
    EXPECT_EQ(names().size(), 100'000);
}

}
