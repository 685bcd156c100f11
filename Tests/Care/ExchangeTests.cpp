#include "Care/Exchange/Import.h"
#include "Care/Exchange/MailReader.h"
#include "Store/Messages/IngestQueries.h"
#include "Support/StoreTest.h"

#include <QBuffer>

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
    m_home.write("export/deals.jsonl", "{\"id\":\"new\",\"name\":\"N\"}\n{broken\n");
    EXPECT_EQ(importFolder(*m_db, folder).error().message, "Line 2 of deals.jsonl is not a JSON object.");
    EXPECT_EQ(cell(u"SELECT COUNT(*) FROM crm_deal"_s), u"1"_s);
}

TEST_F(Exchange, cardsBecomePeopleByAddressAndNumber)
{
    m_home.write("p.vcf",
        "BEGIN:VCARD\r\nVERSION:4.0\r\nFN:Ana Ruiz\r\nN:Ruiz;Ana;;;\r\nEMAIL;TYPE=work:ana@example.org\r\n"
        "TEL:+34 600\r\nEND:VCARD\r\n");
    EXPECT_EQ(importCards(*m_db, m_home.path(u"p.vcf"_s))->value(u"people"_s), 2);
    EXPECT_EQ(importCards(*m_db, m_home.path(u"p.vcf"_s))->value(u"people"_s), 0);
    EXPECT_EQ(table(u"SELECT display_name, channel, handle FROM contact_identity i JOIN contact c ON c.id=i.contact_id "
                    "ORDER BY channel"_s),
        QStringList({ u"Ana Ruiz|EMAIL|ana@example.org"_s, u"Ana Ruiz|SMS|+34 600"_s }));
}
