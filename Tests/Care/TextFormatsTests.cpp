#include "Care/Exchange/TextFormats.h"

#include "Care/Exchange/MailReader.h"
#include "Foundation/Literals.h"
#include "Support/Print.h"

#include <QBuffer>
#include <QDateTime>
#include <gtest/gtest.h>

using namespace corvane;

TEST(TextFormats, fieldsOfALineAreQuotedIfNeeded)
{
    EXPECT_EQ(csvLine({}), "\r\n");
    EXPECT_EQ(csvLine({ u"a"_s, u""_s, u"b c"_s, u"ü"_s }), "a,,b c,ü\r\n");
    EXPECT_EQ(csvLine({ u"a,b"_s, u"a\"b"_s, u"a\nb"_s, u"a\rb"_s }), "\"a,b\",\"a\"\"b\",\"a\nb\",\"a\rb\"\r\n");
}

TEST(TextFormats, aPersonIsACard)
{
    EXPECT_EQ(vCard({ u"1"_s, u"Ana;\\"_s, { u"a@x"_s, u"b@x"_s }, { u"+34"_s }, { u"sms:+34"_s } }),
        "BEGIN:VCARD\r\nVERSION:4.0\r\nUID:1\r\nFN:Ana\\;\\\\\r\nEMAIL:a@x\r\nEMAIL:b@x\r\nTEL:+34\r\n"
        "X-CORVANE-HANDLE:sms:+34\r\nEND:VCARD\r\n");
}

TEST(TextFormats, longLinesAreFoldedBetweenCharacters)
{
    const auto name = [](const QString& text) {
        const QByteArray card = vCard({ u"1"_s, text, {}, {}, {} });
        return card.mid(card.indexOf("FN:"), card.indexOf("END:") - card.indexOf("FN:"));
    };
    EXPECT_EQ(name(u"x"_s.repeated(72)), "FN:" + QByteArray(72, 'x') + "\r\n") << "75 bytes";
    EXPECT_EQ(name(u"x"_s.repeated(73)), "FN:" + QByteArray(72, 'x') + "\r\n x\r\n");
    EXPECT_EQ(
        name(u"x"_s.repeated(72 + 74 + 1)), "FN:" + QByteArray(72, 'x') + "\r\n " + QByteArray(74, 'x') + "\r\n x\r\n");
    EXPECT_EQ(name(u"x"_s.repeated(71) + u'ü'), "FN:" + QByteArray(71, 'x') + "\r\n ü\r\n");
}

TEST(TextFormats, eventsAreACalendar)
{
    const qint64 at = QDateTime(QDate(2026, 11, 2), QTime(0, 0)).toMSecsSinceEpoch(); // a local day
    const QJsonObject whole { { u"id"_s, u"w"_s }, { u"title"_s, u"Fair"_s }, { u"start_ms"_s, at },
        { u"end_ms"_s, qint64(at + 86'400'000) }, { u"all_day"_s, 1 }, { u"location"_s, u"Hall 3"_s },
        { u"notes"_s, u"a\r\nb"_s }, { u"updated_at"_s, 0 } };
    const QJsonObject timed { { u"id"_s, u"t"_s }, { u"title"_s, u""_s }, { u"start_ms"_s, qint64(1'793'610'000'000) },
        { u"end_ms"_s, qint64(1'793'613'600'000) }, { u"all_day"_s, 0 }, { u"updated_at"_s, 1000 } };
    EXPECT_EQ(calendarFile({ whole, timed }),
        "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Corvane//Export//EN\r\n"
        "BEGIN:VEVENT\r\nUID:w\r\nDTSTAMP:19700101T000000Z\r\nDTSTART;VALUE=DATE:20261102\r\n"
        "DTEND;VALUE=DATE:20261103\r\nSUMMARY:Fair\r\nLOCATION:Hall 3\r\nDESCRIPTION:a\\nb\r\nEND:VEVENT\r\n"
        "BEGIN:VEVENT\r\nUID:t\r\nDTSTAMP:19700101T000001Z\r\nDTSTART:20261102T090000Z\r\n"
        "DTEND:20261102T100000Z\r\nSUMMARY:\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n");
}

TEST(TextFormats, aMessageIsAMail)
{
    MailText mail { u"shop"_s, u"Ana Ruíz"_s, u"a \n b"_s, u"hi"_s, {}, 1'793'610'000'000, {}, {} };
    const QByteArray head = "From: shop\r\nTo: =?UTF-8?B?QW5hIFJ1w616?=\r\nSubject: a b\r\n"
                            "Date: 02 Nov 2026 09:00:00 +0000\r\n";
    const QByteArray text
        = "Content-Type: text/plain; charset=UTF-8\r\nContent-Transfer-Encoding: base64\r\n\r\naGk=\r\n";
    EXPECT_EQ(mailFile(mail), head + "MIME-Version: 1.0\r\n" + text);
    mail.messageId = u"1@x"_s;
    mail.attachmentName = u"a b.jpg"_s;
    mail.attachment = QByteArray(58, '\0');
    EXPECT_EQ(mailFile(mail),
        head
            + "Message-ID: <1@x>\r\nMIME-Version: 1.0\r\n"
              "Content-Type: multipart/mixed; boundary=\"=_corvane_part\"\r\n\r\n--=_corvane_part\r\n"
            + text
            + "--=_corvane_part\r\nContent-Type: application/octet-stream\r\nContent-Transfer-Encoding: base64\r\n"
              "Content-Disposition: attachment; filename*=UTF-8''a%20b.jpg\r\n\r\n"
            + QByteArray(76, 'A') + "\r\nAA==\r\n--=_corvane_part--\r\n");
    EXPECT_EQ(readMail(mailFile({ u"a@x"_s, u"b@x"_s, u"~ ~"_s, u"hi"_s, {}, 0, {}, {} }))->subject, u"~ ~"_s);
}

namespace {

QString bodyOf(const QByteArray& headers, const QByteArray& body)
{
    return readMail("From: a@x\r\n" + headers + "\r\n" + body).value_or(ReadMail()).body;
}

}

TEST(MailReader, headersAreUnfoldedAndTheFirstOfEachCounts)
{
    const auto mail = readMail("From : \"Ruiz, Ana\" <Ana@X.org>, b@x\nTO: c@x\nfrom: late@x\n more\nnonsense\n lost\n"
                               "Subject: =?ISO-8859-1*es?q?Ru=EDz_a?= and\n\t=?x-none?B?/w==?= b =?utf-8?Q?c=\r\n"
                               "Message-ID: <1@x>\nDate: Mon, 2 Nov 2026 10:00:00 +0100 (CET)\n\nhi\n");
    ASSERT_TRUE(mail);
    EXPECT_EQ(mail->from + u'|' + mail->fromName, "ana@x.org|Ruiz, Ana");
    EXPECT_EQ(mail->to + u'|' + mail->toName, "c@x|");
    EXPECT_EQ(mail->subject, u"Ruíz a and ÿ b =?utf-8?Q?c="_s);
    EXPECT_EQ(mail->messageId, "1@x");
    EXPECT_EQ(mail->atMs, 1'793'610'000'000);
    EXPECT_EQ(mail->body, "hi");
    EXPECT_EQ(readMail("To: c@x\nDate: soon\n\nhi")->atMs, 0);
    EXPECT_FALSE(readMail("Subject: nobody\n\nhi"));
}

TEST(MailReader, textIsDecoded)
{
    EXPECT_EQ(bodyOf("", "\r\n a\r\nb \r\n"), "a\nb");
    EXPECT_EQ(bodyOf("Content-Type: text/plain; charset=none\r\n", "gr\xFC"), u"grü"_s) << "an unknown set";
    EXPECT_EQ(bodyOf("Content-Type: text/plain\r\n", "gr\xFC"), u"grü"_s) << "not UTF-8";
    EXPECT_EQ(bodyOf("Content-Type: text/plain; x=1; Charset = \"utf-8\"\r\n", "grü"), u"grü"_s);
    EXPECT_EQ(bodyOf("Content-Transfer-Encoding: BASE64\r\n", "Z3LDvA=="), u"grü"_s);
    EXPECT_EQ(bodyOf("Content-Transfer-Encoding: quoted-printable\r\n", "gr=C3=BC=\nn=\r\ne="), u"grüne"_s);
    EXPECT_EQ(bodyOf("Content-Type: text/html\r\n",
                  "<head>x</head><P>a&nbsp;b</p>c<br/>d\ne<div>&lt;f&gt; &quot;g&#39; &amp;lt;</div>"),
        u"a b\nc\nd e<f> \"g' &lt;"_s);
}

TEST(MailReader, theFirstTextThatIsNotAttachedIsTheBody)
{
    const QByteArray mixed = "Content-Type: multipart/mixed; boundary=e\r\n";
    EXPECT_EQ(bodyOf(mixed,
                  "--e\r\nContent-Disposition: Attachment\r\n\r\nfile\r\n--e\r\nContent-Type: image/png\r\n\r\npng\r\n"
                  "--e\r\n\r\nfirst\r\n--e\r\n\r\nsecond\r\n--e--\r\n"),
        "first");
    EXPECT_EQ(bodyOf(mixed, "--e\r\nContent-Type: text/html\r\n\r\n<b>only</b>"), "only") << "without its end";
    EXPECT_EQ(bodyOf(mixed, "--e--\r\n\r\nafter the end"), "");
    EXPECT_EQ(bodyOf(mixed, "--e"), "");
    EXPECT_EQ(bodyOf("Content-Type: multipart/mixed\r\n", "--\r\n\r\nno edge\r\n----"), "");
    const auto nested = [](int depth) {
        QByteArray part = "\r\ndeep\r\n";
        for (int level = 0; level < depth; ++level)
            part = "Content-Type: multipart/mixed; boundary=e" + QByteArray::number(level) + "x\r\n\r\n--e"
                + QByteArray::number(level) + "x\r\n" + part;
        return readMail("From: a@x\r\n" + part)->body;
    };
    EXPECT_EQ(nested(20), "deep");
    EXPECT_EQ(nested(21), "");
}

TEST(MailReader, aMailboxIsReadMailByMail)
{
    const auto mails = [](QByteArray file) {
        QBuffer buffer(&file);
        buffer.open(QIODevice::ReadOnly);
        MailboxReader reader(buffer);
        QList<QByteArray> mails;
        while (const auto mail = reader.next())
            mails.append(*mail);
        return mails;
    };
    EXPECT_EQ(mails("From a\nFrom b\none\n>From here\n>>From there\n>Fro\nFrom c\ntwo\n"),
        QList<QByteArray>({ "one\nFrom here\n>From there\n>Fro\n", "two\n" }));
    EXPECT_EQ(mails("one\nFrom b\n>From here"), QList<QByteArray>({ "one\nFrom b\n>From here" })) << "a single mail";
    EXPECT_EQ(mails(""), QList<QByteArray>());
}
