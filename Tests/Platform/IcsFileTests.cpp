#include "CalendarFiles.h"
#include "Platform/Linux/Calendar/IcsFile.h"
#include "Support/Print.h"

#include <gtest/gtest.h>

namespace corvane {

namespace {

const QByteArray berlin = "Europe/Berlin";

/// The entries that overlap the period, as "start - end title", sorted by start.
QStringList shown(const QByteArray& text, const char* from = "2026-10-01 00:00", const char* to = "2026-12-01 00:00")
{
    const auto file = IcsFile::read(text, berlin);
    if (!file)
        return { u"unreadable"_s };
    QStringList lines;
    for (const CalendarEntry& entry : file->entries(at(from), at(to))) {
        const auto words = [](qint64 ms) {
            return QDateTime::fromMSecsSinceEpoch(ms).toString(u"MM-dd HH:mm"_s);
        };
        lines.append(words(entry.startMs) + u" - "_s + words(entry.endMs) + u' ' + entry.title);
    }
    lines.sort();
    return lines;
}

}

TEST(IcsFile, aSeriesKeepsItsLocalTimeAcrossTheChangeOfClocksAndItsExceptions)
{
    const QByteArray text
        = calendar(event("DTSTART;TZID=Europe/Berlin:20260901T100000\r\nDTEND;TZID=Europe/Berlin:20260901T110000\r\n"
                         "RRULE:FREQ=WEEKLY\r\nEXDATE;TZID=Europe/Berlin:20261006T100000\r\nSUMMARY:Weekly\r\n")
            + event("RECURRENCE-ID;TZID=Europe/Berlin:20261013T100000\r\nDTSTART;TZID=Europe/Berlin:20261014T150000\r\n"
                    "DURATION:PT30M\r\nSUMMARY:Moved\r\n")
            + event("RECURRENCE-ID;TZID=Europe/Berlin:20261103T100000\r\nDTSTART;TZID=Europe/Berlin:20261103T100000\r\n"
                    "STATUS:CANCELLED\r\nSUMMARY:Off\r\n"));
    EXPECT_EQ(shown(text),
        QStringList({ u"10-14 15:00 - 10-14 15:30 Moved"_s, u"10-20 10:00 - 10-20 11:00 Weekly"_s,
            u"10-27 10:00 - 10-27 11:00 Weekly"_s, u"11-10 10:00 - 11-10 11:00 Weekly"_s,
            u"11-17 10:00 - 11-17 11:00 Weekly"_s, u"11-24 10:00 - 11-24 11:00 Weekly"_s }));
    const auto entries = IcsFile::read(text, berlin)->entries(at("2026-10-14 00:00"), at("2026-10-15 00:00"));
    ASSERT_EQ(entries.size(), 1);
    EXPECT_EQ(entries.first().instanceMs, at("2026-10-13 10:00"));
}

TEST(IcsFile, zonesByAnyNameDaysAndRulesThatEndAreReadAsTheyAreMeant)
{
    EXPECT_EQ(shown(calendar(event("DTSTART;TZID=W. Europe Standard Time:20261005T090000\r\nSUMMARY:Windows\r\n")
                  + event("UID:b\r\nDTSTART;TZID=/example.org/2023/America/New_York:20261006T090000\r\nSUMMARY:Far\r\n")
                  + event("UID:c\r\nDTSTART;TZID=Nowhere/Land:20261007T090000\r\nSUMMARY:Unknown\r\n")
                  + event("UID:d\r\nDTSTART:20261008T090000Z\r\nSUMMARY:UTC\r\n"))),
        QStringList({ u"10-05 09:00 - 10-05 09:00 Windows"_s, u"10-06 15:00 - 10-06 15:00 Far"_s,
            u"10-07 09:00 - 10-07 09:00 Unknown"_s, u"10-08 11:00 - 10-08 11:00 UTC"_s }));
    // A two-day event across the DST change, and recurrences that began before the period.
    EXPECT_EQ(
        shown(calendar(event("DTSTART;VALUE=DATE:20261024\r\nDTEND;VALUE=DATE:20261026\r\nSUMMARY:Trip\r\n")
            + event("UID:b\r\nDTSTART:20260801T080000\r\nDTEND:20260801T090000\r\n"
                    "RRULE:FREQ=MONTHLY;COUNT=4\r\nSUMMARY:Counted\r\n")
            + event("UID:c\r\nDTSTART:20240131T120000\r\nRRULE:FREQ=MONTHLY;BYMONTHDAY=-1;UNTIL=20261031T235959Z\r\n"
                    "RDATE:20261115T120000\r\nSUMMARY:Last\r\n"))),
        QStringList({ u"10-01 08:00 - 10-01 09:00 Counted"_s, u"10-24 00:00 - 10-26 00:00 Trip"_s,
            u"10-31 12:00 - 10-31 12:00 Last"_s, u"11-01 08:00 - 11-01 09:00 Counted"_s,
            u"11-15 12:00 - 11-15 12:00 Last"_s }));
}

TEST(IcsFile, thePeopleAreTheOrganizerAndWhoeverIsInvitedWithTheirAnswers)
{
    const auto file
        = IcsFile::read(calendar(event("DTSTART:20261008T090000Z\r\nORGANIZER;CN=Ana:mailto:ana@x.example\r\n"
                                       "ATTENDEE;PARTSTAT=DECLINED;CN=Bo:MAILTO:bo@x.example\r\n"
                                       "ATTENDEE;CN=Ana Ruiz:mailto:Ana@x.example\r\n"
                                       "ATTENDEE;CUTYPE=ROOM;CN=Room 1:mailto:room@x.example\r\n"
                                       "DESCRIPTION:Agenda\\, all\r\nX-GOOGLE-CONFERENCE:https://meet.example/a\r\n")),
            berlin);
    ASSERT_TRUE(file);
    const CalendarEntry entry = file->entries(at("2026-10-01 00:00"), at("2026-11-01 00:00")).value(0);
    EXPECT_EQ(entry.people,
        QList<CalendarPerson>({ { u"Ana Ruiz"_s, u"Ana@x.example"_s }, { u"Bo"_s, u"bo@x.example"_s, false, true },
            { u"Room 1"_s, u"room@x.example"_s, true } }));
    EXPECT_EQ(entry.notes, u"Agenda, all\nhttps://meet.example/a"_s);
}

TEST(IcsFile, hostileRulesAndTextsCostLittleAndLoseNoNeighbour)
{
    const QByteArray plain = event("UID:z\r\nDTSTART:20261008T090000\r\nSUMMARY:Plain\r\n");
    const QString line = u"10-08 09:00 - 10-08 09:00 Plain"_s;
    for (const char* rule : { "FREQ=SECONDLY", "FREQ=MINUTELY;COUNT=1000000000", "FREQ=DAILY;INTERVAL=0",
             "FREQ=HOURLY;BYMONTH=2;BYMONTHDAY=30;COUNT=7", "FREQ=YEARLY;BYMONTH=2;BYMONTHDAY=30", "nonsense" })
        EXPECT_EQ(shown(calendar(event("DTSTART:19900101T090000\r\nRRULE:"_ba + rule + "\r\nSUMMARY:Odd\r\n") + plain)),
            QStringList { line })
            << rule;
    EXPECT_EQ(
        shown(calendar(event("DTSTART:19900101T090000\r\nRRULE:FREQ=DAILY;COUNT=1000000000\r\n") + plain)).size(), 62);
    QByteArray many; // rules that never match
    for (int i = 0; i < 3000; ++i)
        many += event("UID:" + QByteArray::number(i)
            + "\r\nDTSTART:19000101T090000\r\nRRULE:FREQ=DAILY;BYMONTH=2;BYMONTHDAY=30;COUNT=9\r\n");
    EXPECT_EQ(shown(calendar(many + plain)), QStringList { line });
    const QByteArray zone = "BEGIN:VTIMEZONE\r\nTZID:Mine\r\nBEGIN:STANDARD\r\nDTSTART:19700101T000000\r\n"
                            "RRULE:FREQ=SECONDLY\r\nTZOFFSETFROM:+0100\r\nTZOFFSETTO:+0200\r\nEND:STANDARD\r\n"
                            "END:VTIMEZONE\r\n";
    EXPECT_EQ(shown(calendar(zone + event("DTSTART;TZID=Mine:20261008T100000\r\nSUMMARY:Plain\r\n"))),
        QStringList { u"10-08 10:00 - 10-08 10:00 Plain"_s });

    EXPECT_EQ(shown(calendar(event(
                  "DTSTART:20261008T090000\r\nSUMMARY:Plain\r\nDESCRIPTION:" + QByteArray(10'000'000, 'x') + "\r\n"))),
        QStringList { line });
    EXPECT_EQ(shown(QByteArray("BEGIN:VEVENT\r\n").repeated(200'000)), QStringList { u"unreadable"_s });
    EXPECT_EQ(shown("BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nDTSTART:2026\r\nEND:VEVENT"), QStringList { u"unreadable"_s });
    EXPECT_EQ(shown(QByteArray("\0\xff\r\n", 4)), QStringList { u"unreadable"_s });
}

TEST(IcsFile, anEventEndsWhereItSaysWithinReason)
{
    EXPECT_EQ(shown(calendar(event("DTSTART:20261005T090000\r\nDTEND:20261005T080000\r\nSUMMARY:Before\r\n")
                  + event("DTSTART:20261006T090000\r\nDTEND:20281006T090000\r\nSUMMARY:Years\r\n")
                  + event("DTSTART;VALUE=DATE:20261007\r\nSUMMARY:Day\r\n")
                  + event("DTSTART;VALUE=DATE:20261008\r\nDTEND;VALUE=DATE:20261008\r\nSUMMARY:Same\r\n")
                  + event("DTSTART;VALUE=DATE:20261009\r\nDURATION:P3D\r\nSUMMARY:Three\r\n")
                  + event("DTSTART;VALUE=DATE:20261010\r\nDTEND;VALUE=DATE:20281010\r\nSUMMARY:Far\r\n")
                  + event("DTSTART:20261011T090000\r\nDURATION:PT5H\r\nDTEND:20261011T100000\r\nSUMMARY:Both\r\n")
                  + event("DTSTART:20261012T090000\r\nSTATUS:CANCELLED\r\nSUMMARY:Off\r\n")
                  + event("DTSTART:20261012T090000\r\nRRULE:FREQ=DAILY\r\nSTATUS:CANCELLED\r\nSUMMARY:Off\r\n"))),
        QStringList({ u"10-05 09:00 - 10-05 09:00 Before"_s, u"10-06 09:00 - 10-11 09:00 Years"_s,
            u"10-07 00:00 - 10-08 00:00 Day"_s, u"10-08 00:00 - 10-09 00:00 Same"_s,
            u"10-09 00:00 - 10-12 00:00 Three"_s, u"10-10 00:00 - 10-15 00:00 Far"_s,
            u"10-11 09:00 - 10-11 10:00 Both"_s }));
    QByteArray years;
    for (const char* year : { "1899", "1900", "2200", "2201" })
        years += event("UID:"_ba + year + "\r\nDTSTART:" + year + "0701T090000Z\r\nSUMMARY:" + year + "\r\n");
    EXPECT_EQ(shown(calendar(years), "1890-01-01 00:00", "2300-01-01 00:00").size(), 2);
    const auto file
        = IcsFile::read(calendar(years + event("DTSTART:20261005T090000\r\n") + event("SUMMARY:x\r\n")), berlin);
    EXPECT_TRUE(file && file->entries(at("2026-10-01 00:00"), at("2026-11-01 00:00")).value(0).uid == u"a"_s);
}

TEST(IcsFile, anEventShowsInThePeriodsThatItOverlaps)
{
    for (const QByteArray series : { "", "RRULE:FREQ=DAILY;COUNT=1\r\n", "RDATE:20261105T090000\r\n" }) {
        const QByteArray hour = calendar(event("DTSTART:20261005T090000\r\nDTEND:20261005T100000\r\n" + series));
        const QByteArray moment = calendar(event("DTSTART:20261005T090000\r\n" + series));
        const auto count = [](const QByteArray& text, const char* from, const char* to) {
            return shown(text, from, to).size();
        };
        EXPECT_EQ(count(hour, "2026-10-05 08:00", "2026-10-05 09:00"), 0) << series.toStdString();
        EXPECT_EQ(count(hour, "2026-10-05 08:00", "2026-10-05 09:01"), 1) << series.toStdString();
        EXPECT_EQ(count(hour, "2026-10-05 09:59", "2026-10-05 11:00"), 1) << series.toStdString();
        EXPECT_EQ(count(hour, "2026-10-05 10:00", "2026-10-05 11:00"), 0) << series.toStdString();
        EXPECT_EQ(count(moment, "2026-10-05 08:00", "2026-10-05 09:00"), 0) << series.toStdString();
        EXPECT_EQ(count(moment, "2026-10-05 09:00", "2026-10-05 10:00"), 1) << series.toStdString();
        const auto entry
            = IcsFile::read(hour, berlin)->entries(at("2026-10-05 09:00"), at("2026-10-05 10:00")).value(0);
        EXPECT_EQ(entry.instanceMs, series.isEmpty() ? std::nullopt : std::optional(at("2026-10-05 09:00")));
    }
    EXPECT_EQ(
        shown(calendar(event("DTSTART;VALUE=DATE:20200101\r\nDTEND;VALUE=DATE:20200104\r\nRRULE:FREQ=WEEKLY\r\n")),
            "2026-10-09 00:00", "2026-10-14 12:00"),
        QStringList({ u"10-07 00:00 - 10-10 00:00 "_s, u"10-14 00:00 - 10-17 00:00 "_s }));
}

TEST(IcsFile, aRuleIsFollowedAsLongAsItIsCheap)
{
    const auto with = [](const QByteArray& rule, const char* start = "20261005T000000") {
        return calendar(event("DTSTART:"_ba + start + "\r\nRRULE:FREQ=" + rule + "\r\n"));
    };
    EXPECT_EQ(shown(with("HOURLY;INTERVAL=12;COUNT=3")),
        QStringList(
            { u"10-05 00:00 - 10-05 00:00 "_s, u"10-05 12:00 - 10-05 12:00 "_s, u"10-06 00:00 - 10-06 00:00 "_s }));
    EXPECT_EQ(shown(with("YEARLY", "20001030T000000")), QStringList { u"10-30 00:00 - 10-30 00:00 "_s });
    EXPECT_EQ(shown(with("DAILY;UNTIL=20261006T235959", "20200101T000000")).size(), 6) << "to its end";
    // One of every second week stays so, however long ago it began.
    EXPECT_EQ(shown(with("WEEKLY;INTERVAL=2", "20100104T100000")),
        QStringList({ u"10-05 10:00 - 10-05 10:00 "_s, u"10-19 10:00 - 10-19 10:00 "_s, u"11-02 10:00 - 11-02 10:00 "_s,
            u"11-16 10:00 - 11-16 10:00 "_s, u"11-30 10:00 - 11-30 10:00 "_s }));
    EXPECT_EQ(shown(with("HOURLY;INTERVAL=4;COUNT=1000000", "19900101T000000")).size(), 61 * 6);
    EXPECT_EQ(shown(with("HOURLY"), "2026-10-05 00:00", "2027-10-05 00:00").size(), 2000);
    EXPECT_EQ(shown(with("HOURLY;COUNT=1000000", "19900101T000000")).size(), 0) << "it would take too long";
    EXPECT_EQ(shown(with("MINUTELY")).size(), 1);
}

TEST(IcsFile, anExceptionIsMeantByItsDayItsZoneOrThatOfTheSeries)
{
    EXPECT_EQ(shown(calendar(event("DTSTART;TZID=America/New_York:20261005T090000\r\nRRULE:FREQ=DAILY;COUNT=7\r\n"
                                   "EXDATE:20261006T090000,20261009T090000\r\nEXDATE;VALUE=DATE:20261007\r\n"
                                   "EXDATE:20261008T130000Z\r\nEXDATE:20261011T150000Z\r\n"))),
        QStringList(
            { u"10-05 15:00 - 10-05 15:00 "_s, u"10-10 15:00 - 10-10 15:00 "_s, u"10-11 15:00 - 10-11 15:00 "_s }));
    EXPECT_EQ(shown(calendar(event("DTSTART;VALUE=DATE:20261005\r\nRRULE:FREQ=DAILY;COUNT=2\r\n"
                                   "EXDATE;VALUE=DATE:20261005\r\nRDATE;VALUE=DATE:20261012\r\n"))),
        QStringList({ u"10-06 00:00 - 10-07 00:00 "_s, u"10-12 00:00 - 10-13 00:00 "_s }));
    EXPECT_EQ(shown(calendar(event("DTSTART:20261005T090000Z\r\nDURATION:PT30M\r\n"
                                   "RDATE;VALUE=PERIOD:20261010T090000Z/PT1H\r\n"))),
        QStringList({ u"10-05 11:00 - 10-05 11:30 "_s, u"10-10 11:00 - 10-10 11:30 "_s }));
}

TEST(IcsFile, aZoneOfTheFileCountsUnlessTheMachineKnowsIt)
{
    const auto shownIn = [](const QByteArray& id, const QByteArray& rule) {
        const QByteArray zone = "BEGIN:VTIMEZONE\r\n" + (id.isEmpty() ? QByteArray() : "TZID:" + id + "\r\n")
            + "BEGIN:DAYLIGHT\r\nDTSTART:19700301T000000\r\nRRULE:FREQ=" + rule
            + "\r\nTZOFFSETFROM:+0500\r\nTZOFFSETTO:+0600\r\nEND:DAYLIGHT\r\nBEGIN:STANDARD\r\n"
              "DTSTART:19701101T000000\r\nTZOFFSETFROM:+0600\r\nTZOFFSETTO:+0500\r\nEND:STANDARD\r\nEND:VTIMEZONE\r\n";
        return shown(calendar(zone + event("DTSTART;TZID=" + id + ":20261008T100000\r\nSUMMARY:" + id + "\r\n")))
            .value(0);
    };
    const QByteArray march = "YEARLY;BYMONTH=3;BYMONTHDAY=1";
    EXPECT_EQ(shownIn("Mine", march), u"10-08 06:00 - 10-08 06:00 Mine"_s);
    EXPECT_EQ(shownIn("Europe/Berlin", march), u"10-08 10:00 - 10-08 10:00 Europe/Berlin"_s);
    for (const char* unsafe : { "MONTHLY", "YEARLY;BYHOUR=0", "YEARLY;BYMINUTE=0", "YEARLY;BYSECOND=0" })
        EXPECT_EQ(shownIn("Mine", unsafe), u"10-08 07:00 - 10-08 07:00 Mine"_s) << unsafe;
    EXPECT_EQ(shownIn({}, march), u"10-08 10:00 - 10-08 10:00 "_s);

    const QByteArray floating = calendar(event("DTSTART:20261008T100000\r\n"));
    EXPECT_EQ(IcsFile::read(floating, "Nowhere/Land")->entries(0, at("2027-01-01 00:00")).value(0).startMs,
        at("2026-10-08 12:00"))
        << "without a zone it is UTC";
    const QByteArray longName = QByteArray(257 - 14, 'x') + "/Europe/Berlin";
    EXPECT_EQ(shown(calendar(event("DTSTART;TZID=" + longName
                                 + ":20261008T100000\r\n"
                                   "DTEND;TZID="
                                 + longName.mid(1) + ":20261008T100000\r\n")
                  + event("DTSTART;TZID=" + longName.mid(1).replace("Berlin", "London") + ":20261008T100000\r\n"))),
        QStringList({ u"10-08 10:00 - 10-08 10:00 "_s, u"10-08 11:00 - 10-08 11:00 "_s }));
    QByteArray many;
    for (int i = 0; i < 501; ++i)
        many += event("DTSTART;TZID=Zone" + QByteArray::number(i) + ":20261008T100000\r\n");
    EXPECT_EQ(shown(calendar(many)).size(), 501);
    EXPECT_EQ(shown(calendar(event("DTSTART;TZID=Europe/London:20261008T100000\r\n"))),
        QStringList { u"10-08 11:00 - 10-08 11:00 "_s });
}

TEST(IcsFile, everyWayToNameAPersonAndALinkIsUnderstood)
{
    const auto read = [](const QByteArray& properties) {
        return IcsFile::read(calendar(event("DTSTART:20261008T090000Z\r\n" + properties)), berlin)
            ->entries(at("2026-10-01 00:00"), at("2026-11-01 00:00"))
            .value(0);
    };
    const CalendarEntry entry
        = read("ORGANIZER;CN=Ana;EMAIL=ana@x.example:urn:uuid:1\r\nATTENDEE: mailto:bo@x.example \r\n"
               "ATTENDEE:urn:uuid:2\r\nATTENDEE;CN=Nameless:urn:uuid:3\r\n"
               "ATTENDEE;CUTYPE=RESOURCE;EMAIL=other@x.example:mailto:beamer@x.example\r\n"
               "ATTENDEE;CUTYPE=GROUP;PARTSTAT=ACCEPTED:mailto:all@x.example\r\n");
    EXPECT_EQ(entry.people,
        QList<CalendarPerson>(
            { { u"Ana"_s, u"ana@x.example"_s }, { u"bo@x.example"_s, u"bo@x.example"_s }, { u"Nameless"_s, {} },
                { u"beamer@x.example"_s, u"beamer@x.example"_s, true }, { u"all@x.example"_s, u"all@x.example"_s } }));
    QByteArray crowd = "ORGANIZER:urn:uuid:1\r\n";
    for (int i = 0; i < 501; ++i)
        crowd += "ATTENDEE:mailto:" + QByteArray::number(i) + "@x.example\r\n";
    const QList<CalendarPerson> people = read(crowd).people;
    ASSERT_EQ(people.size(), 500);
    EXPECT_EQ(people.first().email, u"0@x.example"_s) << "the organizer has no name";

    EXPECT_EQ(
        read("URL:https://x.example/a\r\nX-GOOGLE-CONFERENCE:https://x.example/a\r\nX-OTHER:https://x.example/b\r\n"
             "X-MICROSOFT-SKYPETEAMSMEETINGURL:HTTPS://x.example/c\r\n")
            .notes,
        u"https://x.example/a\nHTTPS://x.example/c"_s);
    EXPECT_EQ(read("DESCRIPTION:Words\r\nURL:mailto:a@x.example\r\n").notes, u"Words"_s);
    EXPECT_EQ(read("SUMMARY:" + QByteArray(1001, 's') + "\r\n").title, QString(1000, u's'));
    EXPECT_EQ(read("SUMMARY:  a\\n b \r\nLOCATION: c \r\n").title, u"a b"_s);
    EXPECT_EQ(read("LOCATION: c \r\n").location, u"c"_s);
}

TEST(IcsFile, theIdsOfAFileAreToldOnceEach)
{
    const QByteArray other = event("DTSTART:20261009T090000\r\n").replace("UID:a", "UID:b");
    const auto file = IcsFile::read(calendar(event("DTSTART:20261008T090000\r\nRRULE:FREQ=DAILY\r\n") + other
                                        + event("RECURRENCE-ID:20261009T090000\r\nDTSTART:20261009T100000\r\n")),
        berlin);
    ASSERT_TRUE(file);
    EXPECT_EQ(file->uids(), QStringList({ u"a"_s, u"b"_s }));
    EXPECT_TRUE(IcsFile::read(calendar({}), berlin)) << "it may be empty";
    EXPECT_EQ(shown(event("DTSTART:20261008T090000\r\n") + other).size(), 2) << "without a calendar around them";
    EXPECT_FALSE(IcsFile::read("BEGIN:VTODO\r\nUID:t\r\nEND:VTODO\r\n", berlin));
}

}
