#include "CalendarFiles.h"
#include "Platform/CalendarSource.h"
#include "Platform/Linux/Calendar/IcsText.h"

#include <QCryptographicHash>
#include <gtest/gtest.h>

namespace corvane {

TEST(IcsText, aNewEventIsWrittenEscapedAndFoldedBetweenCharacters)
{
    NewCalendarEntry entry { u"u@x"_s, u"A\\b; c,\r d"_s, QString(65, u'l'), u"n\n"_s + QString(40, u'é'),
        at("2026-10-08 09:00"), at("2026-10-08 10:30"), false, at("2026-01-02 03:04") };
    const QByteArray head = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Corvane//EN\r\nBEGIN:VEVENT\r\nUID:u@x\r\n"
                            "DTSTAMP:20260102T020400Z\r\n";
    const QByteArray foot = "END:VEVENT\r\nEND:VCALENDAR\r\n";
    EXPECT_EQ(icsOf(entry),
        head + "DTSTART:20261008T070000Z\r\nDTEND:20261008T083000Z\r\nSUMMARY:A\\\\b\\; c\\, d\r\nLOCATION:"
            + QByteArray(65, 'l') + "\r\nDESCRIPTION:n\\n" + QByteArray("é").repeated(29) + "\r\n "
            + QByteArray("é").repeated(11) + "\r\n" + foot);
    entry = { u"u@x"_s, QString(67, u's') + QChar(0), {}, {}, at("2026-10-24 00:00"), at("2026-10-26 00:00"), true,
        entry.stampMs };
    EXPECT_EQ(icsOf(entry),
        head + "DTSTART;VALUE=DATE:20261024\r\nDTEND;VALUE=DATE:20261026\r\nSUMMARY:" + QByteArray(66, 's')
            + "\r\n s\r\n" + foot);
}

TEST(IcsText, aTextIsCutAtItsLimitsBeforeItIsParsed)
{
    constexpr int line = 64 * 1024;
    const QByteArray cut = QByteArray(line, 'x') + '\n';
    EXPECT_EQ(boundedIcs(cut + "NEXT:1"), cut + "NEXT:1");
    EXPECT_EQ(boundedIcs(QByteArray(line + 9, 'x') + "\r\n more\r\nNEXT:1\r\n"), cut + "NEXT:1\r\n");
    EXPECT_EQ(boundedIcs(QByteArray(line - 8, 'x') + "\r\n 12345678\r\n\tmore\r\nNEXT:1\r\n"),
        QByteArray(line - 8, 'x') + "\r\n 12345\nNEXT:1\r\n");
    EXPECT_EQ(boundedIcs("attach:a\r\n b\r\n\tc\r\nSUMMARY:d\r\n e\r\nATTACH;X=1:f"), "SUMMARY:d\r\n e\r\n");
    EXPECT_EQ(boundedIcs(QByteArray("SUMMARY:a\0b\r\n", 13)), "SUMMARY:a b\r\n");

    const QByteArray deep = QByteArray("BEGIN:A\n").repeated(8);
    EXPECT_EQ(boundedIcs(deep + "END:A\nbegin:A\n"), deep + "END:A\nbegin:A\n");
    EXPECT_FALSE(boundedIcs(deep + "BEGIN:A\nEND:A\n"));
    EXPECT_EQ(boundedIcs(QByteArray(1'000'000, '\n')), QByteArray(1'000'000, '\n'));
    EXPECT_FALSE(boundedIcs(QByteArray(1'000'001, '\n')));
    EXPECT_TRUE(boundedIcs(QByteArray(999'999, ',')));
    EXPECT_FALSE(boundedIcs(QByteArray(1'000'000, ',')));
}

TEST(IcsText, theEventsOfAFileStandApartWithTheirZones)
{
    const QByteArray zone = "BEGIN:VTIMEZONE\r\nTZID:Mine\r\nEND:VTIMEZONE\r\n";
    const QByteArray task = "BEGIN:VTODO\r\nUID:t\r\nEND:VTODO\r\n";
    const QByteArray alarm = "begin:VALARM\r\nUID:alarm\r\nend:VALARM\r\n";
    const QByteArray nameless = "BEGIN:VEVENT\r\nUIDX:1\r\nEND:VEVENT\r\n";
    const QByteArrayList folded { "BEGIN:VEVENT\r\nUID\r\n :b\r\nEND:VEVENT\r\n",
        "BEGIN:VEVENT\nU\n\tID:b\nEND:VEVENT\n", "BEGIN:VEVENT\r\nUI\r\n\tD;X=1:b\r\nEND:VEVENT\r\n",
        "BEGIN:VEVENT\nUID:\n b \nEND:VEVENT\n" };
    const IcsParts parts = icsParts(calendar(zone + event("A:1\r\n" + alarm) + task)
        + calendar(folded.join() + nameless) + "BEGIN:VEVENT\r\nUID:last\r\nEND:VEVENT");
    const QByteArray hash = QCryptographicHash::hash(nameless, QCryptographicHash::Sha1).toHex();
    EXPECT_EQ(parts.zones, QByteArrayList { zone });
    EXPECT_EQ(parts.events,
        (QMap<QByteArray, QByteArrayList> { { "a", { event("A:1\r\n" + alarm) } }, { "b", folded },
            { hash, { "BEGIN:VEVENT\r\nUID:" + hash + "\r\nUIDX:1\r\nEND:VEVENT\r\n" } },
            { "last", { "BEGIN:VEVENT\r\nUID:last\r\nEND:VEVENT\r\n" } } }));
    EXPECT_EQ(parts.file("a"),
        "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:-//Corvane//EN\r\n" + zone + event("A:1\r\n" + alarm)
            + "END:VCALENDAR\r\n");

    const auto nested = [](int depth) {
        return event({}) + QByteArray("BEGIN:X\r\n").repeated(depth) + QByteArray("END:X\r\n").repeated(depth)
            + event("UID:b\r\n").replace("UID:a\r\n", "");
    };
    EXPECT_EQ(icsParts(nested(8)).events.keys(), QByteArrayList({ "a", "b" }));
    EXPECT_EQ(icsParts(nested(9)).events.keys(), QByteArrayList { "a" }) << "nobody nests that deeply";
}

TEST(IcsText, aTaskIsOpenUntilItIsDoneOrCancelled)
{
    const auto task = [](const QByteArray& line) {
        return "BEGIN:VTODO\r\n" + line + "END:VTODO\r\n";
    };
    EXPECT_EQ(openTasks(task({})), 1);
    EXPECT_EQ(openTasks(task("STATUS:NEEDS-ACTION\r\n") + task("status:in-process\r\n")), 2);
    EXPECT_EQ(openTasks(task("STATUS:COMPLETED\r\nSUMMARY:a\r\n")), 0);
    EXPECT_EQ(openTasks(task("STATUS:CANCELLED\r\n")), 0);
    EXPECT_EQ(openTasks(task("COMPLETED:20261008T090000Z\r\n")), 0);
    EXPECT_EQ(openTasks(task("STATUS:COMPLETED\r\n") + task({})), 1);
    EXPECT_EQ(openTasks("END:VTODO\r\n" + task({}) + "END:VTODO\r\n"), 1);
    EXPECT_EQ(openTasks(event("STATUS:CANCELLED\r\n")), 0);
}

}
