#include "Care/Exchange/Import.h"
#include "Care/Exchange/MailReader.h"
#include "Store/Messages/IngestQueries.h"
#include "Support/StoreTest.h"

#include <QCryptographicHash>
#include <QDir>

using namespace corvane;

namespace {

const QByteArray mailbox
    = "From ana@example.org Mon Nov  2 10:00:00 2026\r\n"
      "From: =?UTF-8?Q?Ana_Ru=C3=ADz?= <Ana@Example.org>\r\nTo: me@shop.example\r\n"
      "Subject: =?utf-8?B?R2xhc3VyIA==?=\r\n =?utf-8?B?YmxhdQ==?=\r\nMessage-ID: <1@example.org>\r\n"
      "Date: Mon, 2 Nov 2026 10:00:00 +0100\r\n"
      "Content-Type: multipart/mixed; boundary=\"edge\"\r\n\r\npreamble\r\n--edge\r\n"
      "Content-Type: multipart/alternative; boundary=inner\r\n\r\n--inner\r\n"
      "Content-Type: text/html\r\n\r\n<p>No</p>\r\n--inner\r\n"
      "Content-Type: text/plain; charset=iso-8859-1\r\nContent-Transfer-Encoding: quoted-printable\r\n\r\n"
      "Tama=F1o =\r\n30 x 30\r\n>From here on\r\n--inner--\r\n--edge--\r\n\r\n"
      "From me@shop.example Mon Nov  2 11:00:00 2026\r\n"
      "From: me@shop.example\r\nTo: \"Ruiz, Ana\" <ana@example.org>\r\nMessage-ID: <2@shop.example>\r\n"
      "Content-Type: text/html; charset=utf-8\r\n\r\n<style>x</style><b>Gracias</b><br>&amp; adi\xC3\xB3s\r\n"
      "From nobody\r\nSubject: no addresses\r\n\r\nlost\r\n";

class Exchange : public StoreTest {
protected:
    Exchange() { open(); }
};

}

TEST_F(Exchange, aMailboxBecomesConversationsAndASecondTimeAddsNothing)
{
    m_home.write("old.mbox", mailbox);
    const auto import = [&] {
        return importMails(*m_db, m_home.path(u"old.mbox"_s), u"imported"_s, { u"me@shop.example"_s });
    };
    EXPECT_EQ(*import(), (ExchangeCounts { { u"messages"_s, 2 }, { u"unreadable"_s, 1 } }));
    EXPECT_EQ(*import(), (ExchangeCounts { { u"messages"_s, 0 }, { u"unreadable"_s, 1 } }));
    EXPECT_EQ(table(u"SELECT direction, subject, body FROM unified_message ORDER BY provider_msg_id"_s),
        QStringList({ u"IN|Glasur blau|Tamaño 30 x 30\nFrom here on"_s, u"OUT||Gracias\n& adiós"_s }));
    EXPECT_EQ(table(u"SELECT external_id, title, last_ts FROM unified_conversation"_s),
        QStringList { u"ana@example.org|Ruiz, Ana|1793610000000"_s });
}

TEST_F(Exchange, whatIsExportedIsReadBackTheSame)
{
    storeMessage(*m_db, u"EMAIL"_s, u"shop"_s,
        { u"ana@example.org"_s, u"<1@x>"_s, u"Say \"hi\",\nplease"_s, false, 1000, u"Ana, Ruíz"_s, {}, {}, {},
            u"Grüße"_s });
    m_db->run("INSERT INTO calendar_event(id, workspace_id, title, start_ms, end_ms, updated_at) "
              "VALUES('e','local',?,1793610000000,1793613600000,0);",
        { u"Kiln; check, "_s + u"long "_s.repeated(30) });
    m_db->run("INSERT INTO crm_deal(id, name, value) VALUES('d','=1+1','12.5k');");
    m_db->run("INSERT INTO crm_deal(id, name, deleted_at) VALUES('gone','Gone',1);");
    const auto stopped = std::make_shared<std::atomic<bool>>(false);
    const QString folder = m_home.path(u"export"_s);
    const auto exported = exportProfile(m_home.paths(), folder, stopped);
    ASSERT_TRUE(exported) << qPrintable(exported.error().message);
    EXPECT_EQ(exported->value(u"deals"_s), 1);
    EXPECT_FALSE(exportProfile(m_home.paths(), folder, stopped)) << "nothing is written over";
    EXPECT_TRUE(m_home.read("export/people.csv").contains("\"Ana, Ruíz\""));
    EXPECT_TRUE(m_home.read("export/deals.csv").contains(",'=1+1,")) << "a text, not a formula";
    EXPECT_TRUE(m_home.read("export/contacts.vcf").contains("FN:Ana\\, Ruíz\r\nEMAIL:ana@example.org\r\n"));
    const QByteArray events = m_home.read("export/events.ics");
    EXPECT_TRUE(events.contains("SUMMARY:Kiln\\; check\\, long "));
    EXPECT_TRUE(events.contains("DTSTART:20261102T090000Z\r\n"));
    const auto mail = readMail(m_home.read("export/mail/shop/0000001.eml"));
    ASSERT_TRUE(mail);
    EXPECT_EQ(mail->subject + u'|' + mail->body + u'|' + mail->messageId, u"Grüße|Say \"hi\",\nplease|1@x"_s);

    const QStringList before = table(u"SELECT id, body, ts FROM unified_message"_s);
    EXPECT_EQ(importFolder(*m_db, folder)->value(u"messages"_s), 0);
    m_db.reset();
    QFile::remove(path());
    open();
    const auto imported = importFolder(*m_db, folder);
    ASSERT_TRUE(imported) << qPrintable(imported.error().message);
    EXPECT_EQ(*imported, *exported);
    EXPECT_EQ(table(u"SELECT id, body, ts FROM unified_message"_s), before);
    m_home.write("export/deals.jsonl", "{\"id\":\"new\",\"name\":\"N\"}\n\n{broken\n");
    EXPECT_EQ(importFolder(*m_db, folder).error().message, "Line 3 of deals.jsonl is not a JSON object.");
    EXPECT_EQ(cell(u"SELECT COUNT(*) FROM crm_deal"_s), u"1"_s);
}

TEST_F(Exchange, cardsBecomePeopleByAddressAndNumber)
{
    m_home.write("p.vcf",
        "BEGIN:VCARD\r\nVERSION:4.0\r\nFN:Ana Ruiz\r\nN:Ruiz;Ana;;;\r\nEMAIL;TYPE=work:ana@example.org\r\n"
        "TEL:+34 600\r\nEND:VCARD\r\nBEGIN:VCARD\r\nVERSION:4.0\r\nORG:Kiln Ltd\r\nEMAIL:k@x\r\n"
        "END:VCARD\r\nBEGIN:VCARD\r\nVERSION:4.0\r\nEMAIL:z@x\r\nEND:VCARD\r\n");
    EXPECT_EQ(importCards(*m_db, m_home.path(u"p.vcf"_s))->value(u"people"_s), 4);
    EXPECT_EQ(importCards(*m_db, m_home.path(u"p.vcf"_s))->value(u"people"_s), 0);
    EXPECT_EQ(table(u"SELECT display_name, channel, handle FROM contact_identity i JOIN contact c ON c.id=i.contact_id "
                    "ORDER BY channel, handle"_s),
        QStringList({ u"Ana Ruiz|EMAIL|ana@example.org"_s, u"Kiln Ltd|EMAIL|k@x"_s, u"z@x|EMAIL|z@x"_s,
            u"Ana Ruiz|SMS|+34 600"_s }));
}

TEST_F(Exchange, whatCannotBeReadIsNamed)
{
    const QString none = m_home.path(u"none"_s);
    EXPECT_EQ(importFolder(*m_db, none).error().message, u"%1 is not an export."_s.arg(none));
    EXPECT_EQ(importMails(*m_db, none, u"a"_s, {}).error().message, u"There is no file %1."_s.arg(none));
    EXPECT_EQ(importCards(*m_db, none).error().message, u"There is no file %1."_s.arg(none));
    const auto stopped = std::make_shared<std::atomic<bool>>(false);
    EXPECT_EQ(exportProfile(m_home.paths(), none + u"/in"_s, stopped).error().message,
        u"The folder %1/in.partial cannot be created."_s.arg(none));
    AppPaths empty = m_home.paths();
    empty.applicationSupport = none;
    EXPECT_EQ(exportProfile(empty, m_home.path(u"export"_s), stopped).error().message,
        u"There is no database at %1."_s.arg(empty.database()));
    QFile::link(none, m_home.path(u"link"_s));
    EXPECT_EQ(exportProfile(m_home.paths(), m_home.path(u"link"_s), stopped).error().message,
        u"%1 already exists."_s.arg(m_home.path(u"link"_s)));
    *stopped = true;
    EXPECT_EQ(exportProfile(m_home.paths(), m_home.path(u"export"_s), stopped).error().message, "Stopped.");
    EXPECT_FALSE(QFileInfo::exists(m_home.path(u"export.partial"_s)));
    EXPECT_FALSE(QFileInfo::exists(m_home.path(u"export"_s)));
}

TEST_F(Exchange, aMailWithoutAnIdIsKnownByItsText)
{
    m_home.write("one.eml", "From: Ana <ana@x>\r\n\r\nhi\r\n");
    m_home.write("own.eml", "From: ME@x\r\nTo: bo@x\r\n\r\nhello\r\n");
    const auto added = [&](const QString& name) {
        return importMails(*m_db, m_home.path(name), u"shop"_s, { u"me@x"_s })->value(u"messages"_s);
    };
    EXPECT_EQ(added(u"one.eml"_s), 1);
    EXPECT_EQ(added(u"one.eml"_s), 0);
    EXPECT_EQ(added(u"own.eml"_s), 1);
    EXPECT_EQ(table(u"SELECT direction, sender, provider_msg_id FROM unified_message ORDER BY direction"_s).first(),
        u"IN|Ana|imported:"_s
            + QString::fromLatin1(
                QCryptographicHash::hash("From: Ana <ana@x>\r\n\r\nhi\r\n", QCryptographicHash::Sha256).toHex()));
    EXPECT_EQ(table(u"SELECT external_id, title FROM unified_conversation ORDER BY external_id"_s),
        QStringList({ u"ana@x|Ana"_s, u"bo@x|bo@x"_s }));
}

TEST_F(Exchange, mailsAreFilesAndOtherMessagesAreRows)
{
    m_home.write("share/Corvane/media/a b.jpg", "picture");
    const auto store = [&](const QString& channel, const QString& other, const QString& id, bool isOwn) {
        storeMessage(*m_db, channel, u"sho/p.1"_s,
            { other, id, u"text"_s, isOwn, 1'793'610'000'000, u"Ana"_s, {}, {}, {}, u"Subject"_s });
    };
    store(u"EMAIL"_s, u"ana@x"_s, u"<1@x>"_s, false);
    store(u"EMAIL"_s, u"ana@x"_s, u"<2@x>"_s, true);
    store(u"SMS"_s, u"+34 600"_s, u"3"_s, false);
    m_db->run("UPDATE unified_message SET media_path=? WHERE provider_msg_id LIKE '%2@x%';",
        { m_home.paths().applicationSupport + u"/media/a b.jpg"_s });
    m_db->run("INSERT INTO crm_task(id, title, due) VALUES('t','',12.5);");
    const auto exported
        = exportProfile(m_home.paths(), m_home.path(u"export"_s), std::make_shared<std::atomic<bool>>(false));
    ASSERT_TRUE(exported) << qPrintable(exported.error().message);
    EXPECT_EQ(exported->value(u"messages"_s), 3);
    const QStringList mails = QDir(m_home.path(u"export/mail/sho_p_1"_s)).entryList(QDir::Files);
    EXPECT_EQ(mails, QStringList({ u"0000001.eml"_s, u"0000002.eml"_s }));
    const QByteArray in = m_home.read("export/mail/sho_p_1/0000001.eml");
    EXPECT_TRUE(in.startsWith("From: ana@x\r\nTo: sho/p.1\r\nSubject: Subject\r\n")) << in.constData();
    EXPECT_FALSE(in.contains("attachment"));
    const QByteArray out = m_home.read("export/mail/sho_p_1/0000002.eml");
    EXPECT_TRUE(out.startsWith("From: sho/p.1\r\nTo: ana@x\r\n")) << out.constData();
    EXPECT_TRUE(out.contains("filename*=UTF-8''a%20b.jpg\r\n\r\ncGljdHVyZQ==\r\n"));
    const QByteArray cards = m_home.read("export/contacts.vcf");
    EXPECT_TRUE(cards.contains("\r\nX-CORVANE-HANDLE:email:ana@x\r\n")) << cards.constData();
    EXPECT_TRUE(cards.contains("\r\nX-CORVANE-HANDLE:sms:+34 600\r\n")) << cards.constData();
    EXPECT_EQ(cards.count("BEGIN:VCARD"), 2);
    EXPECT_EQ(m_home.read("export/mail/sho_p_1/0000003.eml"), "");
}
