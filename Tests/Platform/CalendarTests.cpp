#include "Foundation/Literals.h"
#include "Platform/CalendarSource.h"
#include "Platform/Linux/Calendar/IcsFile.h"
#include "Platform/Linux/Calendar/IcsText.h"
#include "Platform/Linux/Services.h"
#include "Support/Await.h"
#include "Support/LogCapture.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace corvane {

namespace {

const QByteArray berlin = "Europe/Berlin";

qint64 at(const char* local)
{
    return QDateTime::fromString(QString::fromLatin1(local), u"yyyy-MM-dd HH:mm"_s).toMSecsSinceEpoch();
}

QByteArray calendar(const QByteArray& events)
{
    return "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nPRODID:x\r\n" + events + "END:VCALENDAR\r\n";
}

QByteArray event(const QByteArray& properties)
{
    return "BEGIN:VEVENT\r\nUID:a\r\n" + properties + "END:VEVENT\r\n";
}

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

class CalendarFolders : public testing::Test {
protected:
    CalendarReading read(const char* from = "2026-10-01 00:00", const char* to = "2026-11-01 00:00")
    {
        return m_source->read(m_places, at(from), at(to));
    }

    QStringList titles()
    {
        QStringList titles;
        for (const CalendarEntry& entry : read().entries)
            titles.append(entry.calendarId + u'/' + entry.title);
        titles.sort();
        return titles;
    }

    static QByteArray titled(const QByteArray& title)
    {
        return calendar(event("DTSTART:20261008T090000\r\nSUMMARY:" + title + "\r\n"));
    }

    TemporaryHome m_home;
    LogCapture m_log;
    CalendarPlaces m_places;
    std::unique_ptr<CalendarSource> m_source { makeCalendarSource(m_home.paths()) };
    const QString m_work = QFileInfo(m_home.paths().applicationSupport).path() + u"/calendars/work"_s;

    void write(const QString& path, const QByteArray& content)
    {
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
};

TEST_F(CalendarFolders, aChangeIsSeenWhetherAFileIsReplacedWrittenInPlaceOrGone)
{
    EXPECT_EQ(m_source->access(m_places), CalendarAccess::None);
    int changes = 0;
    QObject::connect(m_source.get(), &CalendarSource::changed, [&] { ++changes; });
    m_source->watch(m_places);
    write(m_work + u"/a.ics"_s, titled("One"));
    write(m_work + u"/displayname"_s, "My work\n");
    write(m_work + u"/broken.ics"_s, "no calendar");
    write(m_work + u"/.hidden.ics"_s, titled("Hidden"));
    ::mkfifo(QFile::encodeName(m_work + u"/pipe.ics"_s).constData(), 0600);
    QFile::link(m_work, m_work + u"/loop"_s);
    EXPECT_TRUE(await([&] { return changes > 0; })) << "the folder came";
    EXPECT_EQ(m_source->access(m_places), CalendarAccess::Full);
    EXPECT_EQ(titles(), QStringList { u"work/One"_s });
    EXPECT_EQ(read().troubles, QStringList { u"A file of the calendar “My work” could not be read."_s });

    write(m_work + u"/a.ics"_s, titled("Changed"));
    EXPECT_EQ(
        m_source->readKnown(m_places, at("2026-10-01 00:00"), at("2026-11-01 00:00")).entries.value(0).title, u"One"_s)
        << "without a look at the files";

    const auto afterChange = [&](const std::function<void()>& change) {
        m_source->watch(m_places);
        changes = 0;
        change();
        EXPECT_TRUE(await([&] { return changes > 0; }));
        return titles();
    };
    EXPECT_EQ(afterChange([&] { write(m_work + u"/a.ics"_s, titled("Two")); }), QStringList { u"work/Two"_s });
    EXPECT_EQ(afterChange([&] {
        write(m_work + u"/b.tmp"_s, titled("Three"));
        QFile::rename(m_work + u"/b.tmp"_s, m_work + u"/b.ics"_s);
    }),
        QStringList({ u"work/Three"_s, u"work/Two"_s }));
    EXPECT_EQ(afterChange([&] { QDir(m_work).removeRecursively(); }), QStringList());
}

TEST_F(CalendarFolders, aNewEventIsReadBackAndIsTakenBackOnlyWhileItIsAsWritten)
{
    ASSERT_TRUE(m_source->makeCalendar(u"Personal"_s));
    NewCalendarEntry entry { u"cmd:1/x"_s, u"Tea; with Ünal,\nat \\ home"_s, u"Café"_s,
        u"x"_s.repeated(200) + u"é\nend"_s, at("2026-10-08 09:00"), at("2026-10-08 10:30") };
    EXPECT_FALSE(m_source->add(m_places, u"nowhere"_s, entry));
    ASSERT_TRUE(m_source->add(m_places, u"personal"_s, entry));
    ASSERT_TRUE(m_source->add(m_places, u"personal"_s, entry)) << "a second one takes the place of the first";
    const CalendarReading reading = read();
    ASSERT_EQ(reading.entries.size(), 1);
    const CalendarEntry& written = reading.entries.first();
    EXPECT_EQ(written.title, u"Tea; with Ünal, at \\ home"_s);
    EXPECT_EQ(written.notes, entry.notes);
    EXPECT_EQ(written.startMs, entry.startMs);
    EXPECT_EQ(written.endMs, entry.endMs);
    EXPECT_EQ(reading.calendars.first().title, u"Personal"_s);

    entry.allDay = true;
    entry.startMs = at("2026-10-24 00:00");
    entry.endMs = at("2026-10-26 00:00");
    ASSERT_TRUE(m_source->add(m_places, u"personal"_s, entry));
    EXPECT_EQ(read().entries.first().endMs, entry.endMs);
    ASSERT_TRUE(m_source->remove(m_places, u"personal"_s, entry.uid));
    EXPECT_TRUE(read().entries.isEmpty());

    ASSERT_TRUE(m_source->add(m_places, u"personal"_s, entry));
    const QString folder = QFileInfo(m_work).path() + u"/personal/"_s;
    const QString file = folder + QDir(folder).entryList({ u"*.ics"_s }).value(0);
    write(file, titled("Changed"));
    EXPECT_FALSE(m_source->remove(m_places, u"personal"_s, entry.uid));
    EXPECT_EQ(titles(), QStringList { u"personal/Changed"_s });
}

TEST_F(CalendarFolders, aFileIsImportedEventByEventAndExportedWordForWord)
{
    write(m_work + u"/a.ics"_s, titled("Kept"));
    const QByteArray series
        = "BEGIN:VEVENT\r\nUID:s\r\nDTSTART;TZID=Mine:20261001T100000\r\nRRULE:FREQ=WEEKLY\r\n"
          "X-OTHER:kept\r\nBEGIN:VALARM\r\nUID:alarm\r\nEND:VALARM\r\nSUMMARY:Series\r\nEND:VEVENT\r\n";
    const QByteArray moved = "BEGIN:VEVENT\r\nUID:\r\n s\r\nRECURRENCE-ID;TZID=Mine:20261008T100000\r\n"
                             "DTSTART;TZID=Mine:20261009T100000\r\nSUMMARY:Moved\r\nEND:VEVENT\r\n";
    const QByteArray zone = "BEGIN:VTIMEZONE\r\nTZID:Mine\r\nBEGIN:STANDARD\r\nDTSTART:19700101T000000\r\n"
                            "TZOFFSETFROM:+0200\r\nTZOFFSETTO:+0200\r\nEND:STANDARD\r\nEND:VTIMEZONE\r\n";
    const QByteArray nameless = "BEGIN:VEVENT\r\nDTSTART:20261010T090000\r\nSUMMARY:Nameless\r\nEND:VEVENT\r\n";
    const QByteArray whole = calendar(zone + series + event("SUMMARY:New words\r\n") + moved + nameless);
    for (const auto& [added, present] : { std::pair(2, 1), std::pair(0, 3) }) {
        const auto result = m_source->import(m_places, u"work"_s, whole);
        ASSERT_TRUE(result);
        EXPECT_EQ(result->added, added);
        EXPECT_EQ(result->present, present);
    }
    EXPECT_EQ(titles(),
        QStringList({ u"work/Kept"_s, u"work/Moved"_s, u"work/Nameless"_s, u"work/Series"_s, u"work/Series"_s,
            u"work/Series"_s, u"work/Series"_s }));
    const auto exported = m_source->exported(m_places, u"work"_s, u"s"_s);
    ASSERT_TRUE(exported);
    EXPECT_EQ(exported->count("BEGIN:VEVENT"), 2);
    EXPECT_TRUE(exported->contains(zone));
    EXPECT_TRUE(exported->contains("X-OTHER:kept"));
    EXPECT_FALSE(m_source->import(m_places, u"work"_s, "BEGIN:VCALENDAR\r\nEND:VCALENDAR\r\n"));
}

TEST_F(CalendarFolders, khalReadsWhatTheProgramWroteAndTheOtherWayRound)
{
    if (QStandardPaths::findExecutable(u"khal"_s).isEmpty())
        GTEST_SKIP() << "khal is not installed";
    ASSERT_TRUE(m_source->makeCalendar(u"Personal"_s));
    NewCalendarEntry entry { u"by-corvane"_s, u"Tea; with Ünal"_s, u"Café"_s, {}, at("2026-10-08 09:00"),
        at("2026-10-08 10:30") };
    ASSERT_TRUE(m_source->add(m_places, u"personal"_s, entry));
    entry = { u"whole-day"_s, u"Fair"_s, {}, {}, at("2026-10-08 00:00"), at("2026-10-10 00:00"), true };
    ASSERT_TRUE(m_source->add(m_places, u"personal"_s, entry));

    m_home.write(u"khal.conf"_s,
        "[calendars]\n[[personal]]\npath = " + (QFileInfo(m_work).path() + u"/personal"_s).toUtf8()
            + "\n[locale]\ndateformat = %Y-%m-%d\nlongdateformat = %Y-%m-%d\ndatetimeformat = %Y-%m-%d %H:%M\n"
              "longdatetimeformat = %Y-%m-%d %H:%M\ntimeformat = %H:%M\n[sqlite]\npath = "
            + m_home.path(u"khal.db"_s).toUtf8() + '\n');
    const auto khal = [&](const QStringList& arguments) {
        QProcess program;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"HOME"_s, m_home.path({}));
        environment.insert(u"PYTHONMALLOC"_s, u"malloc"_s);
        program.setProcessEnvironment(environment);
        program.start(u"khal"_s, QStringList { u"-c"_s, m_home.path(u"khal.conf"_s) } + arguments);
        EXPECT_TRUE(program.waitForFinished()) << qPrintable(program.errorString());
        EXPECT_EQ(program.exitCode(), 0) << program.readAllStandardError().constData();
        return QString::fromUtf8(program.readAllStandardOutput());
    };
    const QString listed = khal({ u"list"_s, u"--day-format"_s, QString(), u"--format"_s,
        u"{start-end-time-style} {title} {location}"_s, u"2026-10-08"_s, u"1d"_s });
    EXPECT_TRUE(listed.contains(u"09:00-10:30 Tea; with Ünal Café"_s)) << qPrintable(listed);
    EXPECT_TRUE(listed.contains(u"Fair"_s)) << qPrintable(listed);
    khal({ u"new"_s, u"-a"_s, u"personal"_s, u"2026-10-09"_s, u"14:00"_s, u"15:00"_s, u"By khal"_s });
    EXPECT_EQ(titles(), QStringList({ u"personal/By khal"_s, u"personal/Fair"_s, u"personal/Tea; with Ünal"_s }));
}

}
