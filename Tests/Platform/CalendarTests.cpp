#include "Foundation/Literals.h"
#include "Platform/CalendarSource.h"
#include "Platform/Linux/Calendar/FolderWatch.h"
#include "Platform/Linux/Services.h"

#include "CalendarFiles.h"
#include "Support/Await.h"
#include "Support/Environment.h"
#include "Support/LogCapture.h"
#include "Support/Print.h"
#include "Support/TemporaryHome.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <ctime>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace corvane {

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

TEST_F(CalendarFolders, furtherFoldersAreCalendarsOrHoldThem)
{
    const QString home = m_home.paths().home;
    write(home + u"/cals/one/a.ics"_s, titled("One"));
    write(home + u"/cals/two/displayname"_s, "  Two  words\nmore\n");
    write(home + u"/cals/two/color"_s, "#aaBB09ff\n");
    write(home + u"/alone/color"_s, "red #aabbcc\n");
    write(home + u"/nameless/displayname/a.ics"_s, "a folder");
    QFile::link(home + u"/cals/one"_s, home + u"/alias"_s);
    m_places.folders
        = { u"~/cals"_s, home + u"/cals/"_s, home + u"/alone"_s, u"cals"_s, home + u"/missing"_s, home + u"/alias"_s };
    const CalendarInfo one { home + u"/cals/one"_s, u"one"_s, {}, u"~/cals/one"_s, true };
    const CalendarInfo two { home + u"/cals/two"_s, u"Two words"_s, u"#aaBB09"_s, u"~/cals/two"_s, true };
    const CalendarInfo alone { home + u"/alone"_s, u"alone"_s, {}, u"~/alone"_s, true };
    EXPECT_EQ(m_source->access(m_places), CalendarAccess::Full);
    EXPECT_EQ(read().calendars, QList<CalendarInfo>({ one, two, alone }));
    EXPECT_EQ(titles(), QStringList { one.id + u"/One"_s });

    write(home + u"/cals/own.ics"_s, titled("Own"));
    const CalendarInfo all { home + u"/cals"_s, u"cals"_s, {}, u"~/cals"_s, true };
    EXPECT_EQ(read().calendars, QList<CalendarInfo>({ all, one, two, alone }));
    write(m_work + u"/a.ics"_s, titled("Usual"));
    EXPECT_EQ(read().calendars.first().id, u"work"_s);
    m_places.folders = { home + u"/nameless"_s };
    EXPECT_EQ(read().calendars.last().title, u"displayname"_s) << "a folder of that name names nothing";

    m_places.folders.clear();
    for (int i = 0; i < 200; ++i)
        QDir().mkpath(QFileInfo(m_work).path() + u"/a%1"_s.arg(i));
    EXPECT_EQ(read().calendars.size(), 200);
}

TEST_F(CalendarFolders, whatCannotBeDoneIsSaidInASentence)
{
    ASSERT_TRUE(m_source->makeCalendar(u"Personal"_s));
    const QString folder = QFileInfo(m_work).path() + u"/personal/"_s;
    write(folder + u"displayname"_s, "Mine\n");
    EXPECT_TRUE(m_source->makeCalendar(u"Personal"_s));
    EXPECT_EQ(read().calendars.value(0).title, u"Mine"_s) << "its name stays";
    EXPECT_FALSE(m_source->hasService());
    write(QFileInfo(m_work).path() + u"/file"_s, {});
    const auto notMade = m_source->makeCalendar(u"File"_s);
    ASSERT_FALSE(notMade);
    EXPECT_EQ(notMade.error().message, u"The folder %1/file could not be made."_s.arg(QFileInfo(m_work).path()));

    const NewCalendarEntry entry { u"plain.1@x"_s, u"Tea"_s, {}, {}, at("2026-10-08 09:00"), at("2026-10-08 10:00") };
    const QString gone = u"The calendar is no longer there."_s;
    EXPECT_EQ(m_source->add(m_places, u"nowhere"_s, entry).error().message, gone);
    EXPECT_EQ(m_source->remove(m_places, u"nowhere"_s, entry.uid).error().message, gone);
    EXPECT_EQ(m_source->import(m_places, u"nowhere"_s, titled("x")).error().message, gone);
    EXPECT_EQ(m_source->exported(m_places, u"nowhere"_s, entry.uid).error().message, gone);
    EXPECT_EQ(m_source->exported(m_places, u"personal"_s, entry.uid).error().message, u"The event no longer exists."_s);
    const auto rubbish = m_source->import(m_places, u"personal"_s, "BEGIN:VTODO\r\nUID:t\r\nEND:VTODO\r\n");
    ASSERT_FALSE(rubbish);
    EXPECT_EQ(rubbish.error().message, u"There is no event in this file."_s);

    const QString changed = u"The event was changed meanwhile, so it was kept."_s;
    ASSERT_TRUE(m_source->add(m_places, u"personal"_s, entry));
    EXPECT_TRUE(QFile::exists(folder + u"plain.1@x.ics"_s));
    ASSERT_TRUE(m_source->remove(m_places, u"personal"_s, entry.uid));
    EXPECT_EQ(m_source->remove(m_places, u"personal"_s, entry.uid).error().message, changed);
    ASSERT_TRUE(m_source->add(m_places, u"personal"_s, entry));
    QFile::remove(folder + u"plain.1@x.ics"_s);
    EXPECT_EQ(m_source->remove(m_places, u"personal"_s, entry.uid).error().message, changed);

    QDir().mkpath(folder + u"plain.1@x.ics"_s);
    const QString unwritten = u"The calendar “Mine” could not be written."_s;
    EXPECT_EQ(m_source->add(m_places, u"personal"_s, entry).error().message, unwritten);
    EXPECT_EQ(m_source
                  ->import(m_places, u"personal"_s,
                      calendar(event("DTSTART:20261008T090000\r\n").replace("UID:a", "UID:plain.1@x")))
                  .error()
                  .message,
        unwritten);

    write(folder + u"b.ics"_s, "no calendar");
    write(folder + u"c.ics"_s, titled("Large"));
    QFile large(folder + u"c.ics"_s);
    EXPECT_TRUE(large.resize(16 * 1024 * 1024));
    EXPECT_EQ(read().troubles, QStringList { u"A file of the calendar “Mine” could not be read."_s });
    EXPECT_EQ(titles(), QStringList { u"personal/Large"_s });
    EXPECT_TRUE(large.resize(16 * 1024 * 1024 + 1));
    EXPECT_EQ(read().troubles, QStringList { u"2 files of the calendar “Mine” could not be read."_s });
}

TEST_F(CalendarFolders, theNameOfAFileIsTheIdWhereEveryFileSystemAcceptsIt)
{
    ASSERT_TRUE(m_source->makeCalendar(u"Personal"_s));
    const auto nameFor = [&](const QString& uid) {
        EXPECT_TRUE(m_source->add(m_places, u"personal"_s, { uid, u"x"_s, {}, {}, 0, 0 }));
        const QString folder = QFileInfo(m_work).path() + u"/personal"_s;
        const QString name = QDir(folder).entryList({ u"*.ics"_s }, QDir::Files | QDir::Hidden).value(0);
        EXPECT_TRUE(m_source->remove(m_places, u"personal"_s, uid));
        return name;
    };
    const QString longest(121, u'u');
    EXPECT_EQ(nameFor(longest), longest + u".ics"_s);
    EXPECT_EQ(nameFor(longest + u'u').size(), 44);
    EXPECT_EQ(nameFor(u".hidden"_s).size(), 44);
    EXPECT_EQ(nameFor(u"a/../b"_s).size(), 44);
}

TEST_F(CalendarFolders, aSeriesIsReadDayByDayAndPageByPageFromWhatIsKnown)
{
    write(m_work + u"/a.ics"_s, calendar(event("DTSTART:20200101T090000\r\nRRULE:FREQ=DAILY\r\nSUMMARY:Daily\r\n")));
    const auto days = [](const CalendarReading& reading) {
        QStringList days;
        for (const CalendarEntry& entry : reading.entries)
            days.append(entry.calendarId + QDateTime::fromMSecsSinceEpoch(entry.startMs).toString(u" MM-dd HH:mm"_s));
        days.sort();
        return days;
    };
    for (const char* day : { "2026-10-05", "2026-10-06", "2026-10-07", "2026-10-08", "2026-10-09", "2026-10-04" }) {
        const qint64 from = at((day + " 00:00"_ba).constData());
        const qint64 to = at((day + " 23:00"_ba).constData());
        const QStringList only { u"work "_s + QString::fromLatin1(day).sliced(5) + u" 09:00"_s };
        EXPECT_EQ(days(m_source->readKnown(m_places, from, to)), only);
        EXPECT_EQ(days(m_source->read(m_places, from, to)), only);
    }
    EXPECT_EQ(m_source->readKnown(m_places, at("2026-08-01 00:00"), at("2026-09-01 00:00")).entries.size(), 31);
    EXPECT_EQ(m_source->readKnown(m_places, at("2026-12-01 00:00"), at("2027-01-01 00:00")).entries.size(), 31);

    Environment zone { { "TZ", "America/New_York" } };
    ::tzset();
    const CalendarReading there = m_source->read(m_places, at("2026-10-05 00:00"), at("2026-10-06 00:00"));
    zone.set("TZ", "Europe/Berlin");
    ::tzset();
    EXPECT_EQ(days(there), QStringList { u"work 10-05 15:00"_s });
}

TEST_F(CalendarFolders, openTasksAreCountedAndMissingFoldersAwaited)
{
    write(m_work + u"/t.ics"_s, "BEGIN:VTODO\r\nUID:t\r\nEND:VTODO\r\n");
    write(
        m_work + u"/u.ics"_s, "BEGIN:VTODO\r\nUID:u\r\nSTATUS:COMPLETED\r\nEND:VTODO\r\nBEGIN:VTODO\r\nEND:VTODO\r\n");
    EXPECT_EQ(m_source->openTasks(m_places), 2);

    int changes = 0;
    FolderWatch watch([&] { ++changes; });
    const QString home = m_home.paths().home;
    QDir().mkpath(home);
    const auto changesOnce = [&](const std::function<void()>& change) {
        changes = 0;
        change();
        QCoreApplication::processEvents();
        return changes;
    };
    const auto make = [&](const QString& folder) {
        return changesOnce([&] { QDir().mkpath(home + folder); });
    };
    watch.watch({ home + u"/first/below"_s, home + u"/second"_s });
    EXPECT_EQ(make(u"/third"_s), 0);
    EXPECT_EQ(make(u"/second"_s), 1);
    EXPECT_EQ(make(u"/first"_s), 1);
    watch.watch({ home + u"/first/below"_s, home + u"/first"_s });
    EXPECT_EQ(make(u"/first/anything"_s), 1) << "what is watched as a whole stays so";
    watch.watch({ home + u"/first"_s, home + u"/first/below"_s });
    EXPECT_EQ(make(u"/first/more"_s), 1);
    EXPECT_EQ(changesOnce([&] { QDir().rmdir(home + u"/first/more"_s); }), 1);
    watch.watch({ home + u"/third"_s });
    EXPECT_EQ(make(u"/first/other"_s), 0) << "the folders before are no longer watched";
    EXPECT_EQ(changesOnce([&] { QDir().rmdir(home + u"/third"_s); }), 1);
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
