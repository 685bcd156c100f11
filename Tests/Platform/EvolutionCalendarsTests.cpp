#include "Foundation/Literals.h"
#include "Platform/Linux/Calendar/CombinedCalendars.h"
#include "Platform/Linux/Calendar/EvolutionCalendars.h"
#include "Platform/Linux/Calendar/FolderCalendars.h"
#include "Support/Await.h"
#include "Support/Print.h"
#include "Support/PrivateBus.h"
#include "Support/TemporaryHome.h"

#include <QDBusConnectionInterface>
#include <QDateTime>
#include <csignal>
#include <gtest/gtest.h>

namespace corvane {

namespace {

qint64 utc(const char* text)
{
    return QDateTime::fromString(QString::fromLatin1(text), Qt::ISODate).toMSecsSinceEpoch();
}

const QByteArray series
    = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nBEGIN:VTIMEZONE\r\nTZID:Office\r\nBEGIN:STANDARD\r\nDTSTART:"
      "19700101T000000\r\n"
      "TZOFFSETFROM:+0330\r\nTZOFFSETTO:+0330\r\nEND:STANDARD\r\nEND:VTIMEZONE\r\nBEGIN:VEVENT\r\nUID:s@x\r\n"
      "DTSTAMP:20261101T000000Z\r\nDTSTART;TZID=Office:20261110T100000\r\nDTEND;TZID=Office:20261110T110000\r\n"
      "RRULE:FREQ=DAILY;COUNT=3\r\nSUMMARY:Daily\r\nEND:VEVENT\r\nBEGIN:VEVENT\r\nUID:s@x\r\n"
      "RECURRENCE-ID;TZID=Office:20261111T100000\r\nDTSTAMP:20261101T000000Z\r\n"
      "DTSTART;TZID=Office:20261111T140000\r\nDTEND;TZID=Office:20261111T150000\r\nSUMMARY:Moved\r\nEND:VEVENT\r\n"
      "END:VCALENDAR\r\n";

/// The real Evolution service on a private bus.
class EvolutionTest : public testing::Test {
protected:
    EvolutionTest()
    {
        startDaemon(m_registry, "evolution-source-registry", evolution::sources);
        startDaemon(m_factory, "evolution-calendar-factory", evolution::calendars);
        m_places.service = true;
        calendars.watch(m_places);
        QObject::connect(&calendars, &CalendarSource::changed, [this] { ++changes; });
    }

    void startDaemon(QProcess& daemon, const QString& program, const QString& name)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"DBUS_SESSION_BUS_ADDRESS"_s, bus.address());
        environment.insert(u"GSETTINGS_BACKEND"_s, u"memory"_s);
        environment.insert(u"HOME"_s, home.paths().home);
        for (const char* folder : { "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR" })
            environment.insert(QString::fromLatin1(folder), home.path(QString::fromLatin1(folder)));
        daemon.setProcessEnvironment(environment);
        daemon.setStandardErrorFile(QProcess::nullDevice());
        daemon.start(u"/usr/libexec/"_s + program, QStringList());
        EXPECT_TRUE(await([&] { return client.interface()->isServiceRegistered(name).value(); }));
    }
    void kill(QProcess& daemon)
    {
        daemon.kill();
        daemon.waitForFinished();
        bus.settle();
    }
    ~EvolutionTest() override
    {
        kill(m_factory);
        kill(m_registry);
    }

    CalendarReading read()
    {
        return calendars.read(m_places, utc("2026-11-01T00:00:00Z"), utc("2026-12-01T00:00:00Z"));
    }

    QStringList shown()
    {
        QStringList lines;
        for (const CalendarEntry& entry : read().entries)
            lines.append(QDateTime::fromMSecsSinceEpoch(entry.startMs, Qt::UTC).toString(u"dd HH:mm "_s) + entry.title);
        lines.sort();
        return lines;
    }

    NewCalendarEntry lunch(const QString& title) const
    {
        return { u"l@x"_s, title, {}, {}, utc("2026-11-20T11:00:00Z"), utc("2026-11-20T12:00:00Z"), false, 0 };
    }

    TemporaryHome home;
    PrivateBus bus;
    QDBusConnection client = bus.connect();
    QProcess m_registry;
    QProcess m_factory;
    CalendarPlaces m_places;
    const QString personal = u"evolution:system-calendar"_s;
    CombinedCalendars calendars { std::make_unique<FolderCalendars>(home.path(u"share"_s), home.paths().home),
        std::make_unique<EvolutionCalendars>(client) };
    int changes = 0;
};

}

TEST_F(EvolutionTest, aCalendarOfTheServiceIsReadWrittenAndFollowed)
{
    EXPECT_EQ(calendars.access({}), CalendarAccess::None) << "nobody chose it";
    EXPECT_EQ(calendars.access(m_places), CalendarAccess::Full);
    const QList<CalendarInfo> all = read().calendars;
    ASSERT_EQ(all.size(), 2);
    EXPECT_EQ(all.first().title + u' ' + all.first().origin, u"Birthdays & Anniversaries Evolution"_s);
    EXPECT_FALSE(all.first().writable);
    EXPECT_EQ(all.last().id, personal);
    EXPECT_TRUE(all.last().writable);

    const auto imported = calendars.import(m_places, personal, series);
    ASSERT_TRUE(imported) << qPrintable(imported.error().message);
    EXPECT_EQ(imported->added, 1);
    EXPECT_EQ(calendars.import(m_places, personal, series)->present, 1);
    const QStringList days { u"10 06:30 Daily"_s, u"11 10:30 Moved"_s, u"12 06:30 Daily"_s };
    EXPECT_EQ(shown(), days);

    changes = 0;
    const QDBusConnection other = bus.connect();
    EvolutionCalendars elsewhere(other);
    EXPECT_TRUE(elsewhere.add(m_places, personal, lunch(u"Lunch"_s)));
    EXPECT_TRUE(await([this] { return changes > 0; })) << "what another program writes is told";
    EXPECT_EQ(shown(), days + QStringList { u"20 11:00 Lunch"_s });
    EXPECT_FALSE(calendars.remove(m_places, personal, u"l@x"_s)) << "it is not of this program";
    EXPECT_TRUE(calendars.add(m_places, personal, lunch(u"Late lunch"_s)));
    EXPECT_EQ(shown(), days + QStringList { u"20 11:00 Late lunch"_s });
    EXPECT_TRUE(calendars.remove(m_places, personal, u"l@x"_s));
    EXPECT_EQ(shown(), days);

    EvolutionService tasks(other, 3000);
    tasks.begin();
    ASSERT_TRUE(tasks.taskLists());
    for (const QString& task : { u"UID:t1\r\n"_s, u"UID:t2\r\nSTATUS:COMPLETED\r\n"_s })
        EXPECT_TRUE(tasks.create(u"system-task-list"_s, u"BEGIN:VTODO\r\nSUMMARY:Call\r\n%1END:VTODO\r\n"_s.arg(task)));
    EXPECT_EQ(calendars.openTasks(m_places), 1);
    EXPECT_EQ(calendars.openTasks({}), 0) << "nobody chose it";

    const auto file = calendars.exported(m_places, personal, u"s@x"_s);
    ASSERT_TRUE(file);
    home.write(u"share/calendars/work/s.ics"_s, *file);
    EXPECT_EQ(shown(), days) << "what stands in both shows once";
    EXPECT_EQ(read().entries.first().calendarId, u"work"_s);
    home.write(u"share/calendars/work/displayname"_s, "Personal");
    EXPECT_EQ(read().calendars.last().title, u"Personal (Evolution)"_s) << "not mistaken for the folder";
    const CalendarReading known
        = calendars.readKnown(m_places, utc("2026-11-01T00:00:00Z"), utc("2026-12-01T00:00:00Z"));
    EXPECT_EQ(known.calendars.size(), 3);
    EXPECT_EQ(known.entries, read().entries);
    EXPECT_EQ(calendars.readKnown({}, 0, 1).calendars.size(), 1);
}

TEST_F(EvolutionTest, whatTheServiceCannotDoIsSaidInASentence)
{
    EXPECT_TRUE(calendars.hasService());
    EvolutionCalendars service(client);
    EXPECT_EQ(service.makeCalendar(u"New"_s).error().message, u"Create Evolution's calendars in Evolution."_s);
    ASSERT_TRUE(calendars.makeCalendar(u"New"_s)) << "in the folder";
    EXPECT_EQ(read().calendars.value(0).id, u"new"_s);

    EXPECT_EQ(
        calendars.exported(m_places, personal, u"no \"one\\"_s).error().message, u"The event no longer exists."_s);
    const auto rubbish = calendars.import(m_places, personal, "BEGIN:VCALENDAR\r\nEND:VCALENDAR\r\n");
    ASSERT_FALSE(rubbish);
    EXPECT_EQ(rubbish.error().message, u"There is no event in this file."_s);
    const QString nowhere = u"evolution:nowhere"_s;
    EXPECT_FALSE(calendars.add(m_places, nowhere, lunch(u"Lunch"_s)));
    EXPECT_FALSE(calendars.import(m_places, nowhere, series));
    EXPECT_FALSE(calendars.exported(m_places, nowhere, u"l@x"_s));

    ASSERT_TRUE(calendars.add(m_places, personal, lunch(u"Lunch"_s)));
    EvolutionCalendars elsewhere(bus.connect());
    ASSERT_TRUE(elsewhere.add(m_places, personal, lunch(u"Dinner"_s)));
    EXPECT_EQ(calendars.remove(m_places, personal, u"l@x"_s).error().message,
        u"The event was changed meanwhile, so it was kept."_s);
    ASSERT_TRUE(elsewhere.remove(m_places, personal, u"l@x"_s));
    EXPECT_FALSE(calendars.remove(m_places, personal, u"l@x"_s));
    EXPECT_EQ(shown(), QStringList());
}

TEST(EvolutionKeysTest, aSourceIsDescribedInGroups)
{
    using Group = QHash<QString, QString>;
    EXPECT_EQ(evolutionKeys(u"lost=1\n[Data Source] \nDisplayName=My\\sown\\tand\\nback\\\\slash\n#Enabled=false\n"
                            "Enabled = a=b \n=nothing\nloose\n[Calendar]\n[Task List]\nBackendName=local\n[open\n"_s),
        (EvolutionKeys { { {}, Group { { u"lost"_s, u"1"_s } } },
            { u"Data Source"_s,
                Group { { u"DisplayName"_s, u"My own and back\\slash"_s }, { u"Enabled"_s, u"a=b"_s } } },
            { u"Calendar"_s, Group() }, { u"Task List"_s, Group { { u"BackendName"_s, u"local"_s } } } }));
}

TEST_F(EvolutionTest, aServiceThatEndsOrStopsAnsweringLeavesWhatWasRead)
{
    ASSERT_TRUE(calendars.import(m_places, personal, series));
    const QStringList days = shown();
    ASSERT_EQ(days.size(), 3);
    bus.settle();
    changes = 0;
    kill(m_factory);
    EXPECT_GT(changes, 0);
    EXPECT_EQ(shown(), days);
    EXPECT_FALSE(read().troubles.isEmpty());
    startDaemon(m_factory, u"evolution-calendar-factory"_s, evolution::calendars);
    bus.settle();
    EXPECT_EQ(shown(), days);
    EXPECT_EQ(read().troubles, QStringList());

    EvolutionCalendars impatient(client, 200);
    ::kill(pid_t(m_registry.processId()), SIGSTOP);
    const CalendarReading reading = impatient.read(m_places, 0, 1);
    EXPECT_EQ(reading.troubles, QStringList { u"Evolution's calendars do not answer. They stand as they were."_s });
    ::kill(pid_t(m_registry.processId()), SIGCONT);
}

}
