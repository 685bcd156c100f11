#include "Calendar/CalendarEdits.h"
#include "Calendar/CalendarPage.h"
#include "Calendar/CalendarSettings.h"
#include "Calendar/UpcomingMeetings.h"
#include "Support/Environment.h"

#include <QSignalSpy>

namespace corvane {

namespace {

/// On real folders, with the user's folders in the test's home.
class CalendarFiles : public CalendarPageOn {
protected:
    CalendarFiles()
        : CalendarPageOn(true)
    {
        m_home.write("run/x", "");
        QFile::setPermissions(m_home.path(u"run"_s), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    static QByteArray fileOf(const QList<QByteArray>& uids)
    {
        QByteArray file = "BEGIN:VCALENDAR\r\nVERSION:2.0\r\n";
        for (const QByteArray& uid : uids)
            file += "BEGIN:VEVENT\r\nUID:" + uid + "\r\nDTSTART:20270301T100000\r\nSUMMARY:" + uid
                + "\r\nEND:VEVENT\r\n";
        return file + "END:VCALENDAR\r\n";
    }

    QString imported(const QByteArray& content)
    {
        m_home.write("import.ics", content);
        view.importFile(QUrl::fromLocalFile(m_home.path(u"import.ics"_s)));
        return told();
    }

private:
    const Environment m_environment { { "HOME", m_home.path(u"."_s).chopped(2).toUtf8() },
        { "XDG_RUNTIME_DIR", m_home.path(u"run"_s).toUtf8() },
        { "XDG_CONFIG_HOME", m_home.path(u"config"_s).toUtf8() } };
};

/// On calendars that the test fills.
class CalendarFilled : public CalendarPageOn {
protected:
    CalendarFilled()
        : CalendarPageOn(false)
    {
        reading.calendars = { { u"r"_s, u"Read"_s, u"#ff0000"_s, u"/r"_s, false },
            { u"w"_s, u"Work"_s, {}, u"/w"_s, true }, { u"p"_s, u"Personal"_s, {}, u"/p"_s, true } };
    }

    CalendarEntry& plan(const char* title, const char* from, const char* to)
    {
        CalendarEntry entry;
        entry.calendarId = u"w"_s;
        entry.uid = entry.title = QString::fromUtf8(title);
        entry.startMs = at(from);
        entry.endMs = at(to);
        reading.entries.append(entry);
        return reading.entries.last();
    }

    void connect()
    {
        m_fake.set(reading);
        services.store.requestAccess();
        ASSERT_TRUE(await([&] { return services.store.calendars().size() == reading.calendars.size(); }));
    }

    CalendarReading reading;
};

}

TEST_F(CalendarFiles, aFileIsImportedOnce)
{
    m_home.write("import.ics", fileOf({ "a" }));
    view.importFile(QUrl::fromLocalFile(m_home.path(u"import.ics"_s)));
    EXPECT_EQ(told(), "There is no calendar for new events.");
    QDir().mkpath(m_folder);
    view.connection()->connectCalendar();
    ASSERT_TRUE(await([&] { return view.canAdd(); }));
    EXPECT_EQ(imported(fileOf({ "a" })), "1 event was added.");
    EXPECT_EQ(imported(fileOf({ "a", "b", "c" })), "2 events were added. 1 existed already.");
    EXPECT_EQ(imported(fileOf({ "a", "b" })), "0 events were added. 2 existed already.");
    EXPECT_EQ(imported("nothing"), "There is no event in this file.");
    constexpr qsizetype most = 16 * 1024 * 1024;
    EXPECT_EQ(imported(QByteArray(most, ' ')), "There is no event in this file.");
    EXPECT_EQ(imported(QByteArray(most + 1, ' ')), "The file is larger than 16 MB.");
    view.importFile(QUrl::fromLocalFile(m_home.path(u"none.ics"_s)));
    EXPECT_EQ(told(), "The file could not be read.");
    view.importFile(QUrl::fromLocalFile(m_home.path(u"run"_s)));
    EXPECT_EQ(told(), "The file could not be read.");
    EXPECT_EQ(view.notice(), "");
}

TEST_F(CalendarFiles, theSelectedEventIsSavedAsAFile)
{
    write(u"a.ics"_s, "DTSTART:20261008T100000\r\nSUMMARY:Glaze/fire\r\nRRULE:FREQ=DAILY;COUNT=2\r\n");
    view.connection()->connectCalendar();
    ASSERT_TRUE(awaitShown("Glaze/fire,Glaze/fire"));
    ASSERT_TRUE(await([&] { return view.canAdd(); })) << "the page is shown before the calendars are known";
    view.exportSelected();
    EXPECT_EQ(told(), "The event no longer exists.") << "none is selected";
    view.select(view.tiles()->layout().blocks.last().id);
    EXPECT_EQ(view.card().when, "Fri 9 Oct, 10:00");
    view.exportSelected();
    EXPECT_EQ(told(), u"Saved to %1"_s.arg(m_home.path(u"Downloads/Glaze-fire.ics"_s)));
    EXPECT_TRUE(m_home.read("Downloads/Glaze-fire.ics").contains("UID:a.ics\r\n"));
    EXPECT_EQ(view.offeredFile(), "");
    const QSignalSpy changed(&view, &CalendarView::changed);
    view.offerFile();
    ASSERT_TRUE(await([&] { return !view.offeredFile().isEmpty() || !view.notice().isEmpty(); }));
    EXPECT_GT(changed.count(), 0);
    EXPECT_EQ(view.offeredFile(), QUrl::fromLocalFile(m_home.path(u"run/Glaze-fire.ics"_s)).toString());
    EXPECT_TRUE(m_home.read("run/Glaze-fire.ics").contains("RRULE:FREQ=DAILY;COUNT=2\r\n"));
    const QString id = view.selected();
    view.select(id);
    EXPECT_EQ(view.offeredFile(), "");
    QFile::remove(m_home.path(u"run/Glaze-fire.ics"_s));
    QDir().mkpath(m_home.path(u"run/Glaze-fire.ics"_s));
    view.offerFile();
    EXPECT_EQ(told(), "The file could not be written.");
    EXPECT_EQ(view.offeredFile(), "");
    QFile::remove(m_folder + u"a.ics"_s);
    view.exportSelected();
    EXPECT_EQ(told(), "The event no longer exists.");
}

TEST_F(CalendarFiles, aFolderIsUsedFromTheMomentItIsChosen)
{
    CalendarConnection& connection = *view.connection();
    const QSignalSpy asked(&connection, &CalendarConnection::folderAsked);
    EXPECT_EQ(connection.title(), "Calendar not connected");
    EXPECT_TRUE(connection.text().startsWith("Connect the calendars on this computer to see"));
    EXPECT_FALSE(connection.hasEvolution());
    desktop.chosen = failure(u"no portal"_s);
    connection.chooseFolder();
    EXPECT_EQ(asked.count(), 1) << "typed instead";
    desktop.chosen = QList<QUrl> {};
    connection.chooseFolder();
    EXPECT_EQ(asked.count(), 1);
    EXPECT_EQ(connection.state(), "unknown");
    desktop.chosen = QList<QUrl> { QUrl::fromLocalFile(m_home.path(u"none"_s)) };
    connection.chooseFolder();
    EXPECT_EQ(view.notice(), "There is no such folder.");
    m_home.write("mine/one/a.ics", fileOf({ "One" }).replace("20270301", "20261008"));
    desktop.chosen = QList<QUrl> { QUrl::fromLocalFile(m_home.path(u"mine"_s)) };
    connection.chooseFolder();
    EXPECT_EQ(view.notice(), "");
    EXPECT_TRUE(awaitShown("One"));
    EXPECT_EQ(connection.state(), "ready");
    EXPECT_EQ(calendarPlaces(m_defaults).folders, QStringList { m_home.path(u"mine"_s) });

    EXPECT_EQ(useFolder(services.store, u"mine"_s).error().message, "There is no such folder.") << "not absolute";
    EXPECT_EQ(useFolder(services.store, m_home.path(u"mine/one/a.ics"_s)).error().message, "There is no such folder.");
    QDir().mkpath(m_home.path(u"a:b"_s));
    EXPECT_EQ(useFolder(services.store, m_home.path(u"a:b"_s)).error().message,
        "The folder's name must not contain a colon.");
    EXPECT_TRUE(useFolder(services.store, m_home.path(u"mine"_s)));
    EXPECT_TRUE(useFolder(services.store, u"~/mine"_s)) << "in the user's home";
    EXPECT_EQ(services.store.places().folders, QStringList({ m_home.path(u"mine"_s), u"~/mine"_s }));
}

TEST_F(CalendarFilled, theSettingsShowAndChangeWhatIsUsed)
{
    CalendarSettings settings(services.store, services.commands, desktop);
    const QSignalSpy changed(&settings, &CalendarSettings::changed);
    EXPECT_FALSE(settings.isConnected());
    EXPECT_EQ(settings.stateText(), "Calendar not connected");
    settings.setAddresses(u"me@home.example"_s);
    EXPECT_EQ(settings.addresses(), "me@home.example");
    EXPECT_EQ(changed.count(), 1);
    m_fake.set(reading);
    settings.connectCalendar();
    EXPECT_TRUE(settings.isConnected());
    ASSERT_TRUE(await([&] { return settings.calendars().size() == 3; }));
    EXPECT_EQ(settings.stateText(), "3 calendars connected");
    const auto lines = [&] {
        QStringList lines;
        for (const CalendarLine& line : settings.calendars())
            lines.append(u"%1 %2 %3 %4%5%6"_s.arg(line.id, line.title, line.detail)
                    .arg(line.shown)
                    .arg(line.takesNew)
                    .arg(line.chosen));
        return lines;
    };
    EXPECT_EQ(lines(), QStringList({ u"r Read /r · read-only 100"_s, u"w Work /w 111"_s, u"p Personal /p 110"_s }));
    const auto before = changed.count();
    settings.chooseForNew(u"p"_s);
    EXPECT_EQ(changed.count(), before + 1);
    settings.toggle(u"Read"_s);
    EXPECT_EQ(lines(), QStringList({ u"r Read /r · read-only 000"_s, u"w Work /w 110"_s, u"p Personal /p 111"_s }));
    EXPECT_EQ(writableCalendar(services.store)->id, "p");
    EXPECT_EQ(writableCalendar(services.store, u"Work"_s)->id, "w");
    EXPECT_EQ(writableCalendar(services.store, u"Read"_s)->id, "p") << "it takes none";
    settings.chooseForNew(u"r"_s);
    EXPECT_EQ(writableCalendar(services.store)->id, "w") << "the first that takes some";

    EXPECT_TRUE(settings.agentsMayAdd());
    settings.setAgentsMayAdd(false);
    EXPECT_FALSE(settings.agentsMayAdd());
    EXPECT_TRUE(settings.hasEvolution());
    EXPECT_FALSE(settings.evolution());
    EXPECT_TRUE(view.connection()->hasEvolution());
    view.connection()->useEvolution();
    EXPECT_TRUE(settings.evolution());
    EXPECT_FALSE(view.connection()->hasEvolution()) << "it is used";
    EXPECT_TRUE(calendarPlaces(m_defaults).service);
    settings.setEvolution(false);
    EXPECT_FALSE(settings.evolution());

    EXPECT_FALSE(settings.addFolder(u"none"_s));
    EXPECT_EQ(settings.refusal(), "There is no such folder.");
    desktop.chosen = failure(u"no portal"_s);
    settings.chooseFolder();
    EXPECT_EQ(settings.refusal(), "no portal");
    desktop.chosen = QList<QUrl> {};
    settings.chooseFolder();
    EXPECT_EQ(settings.refusal(), "");
    EXPECT_EQ(settings.folders(), QStringList());
    desktop.chosen = QList<QUrl> { QUrl::fromLocalFile(m_home.path(u"share"_s)) };
    settings.chooseFolder();
    EXPECT_TRUE(settings.addFolder(u" %1 "_s.arg(m_home.path(u"config"_s))));
    EXPECT_EQ(settings.folders(), QStringList({ m_home.path(u"share"_s), m_home.path(u"config"_s) }));
    settings.removeFolder(m_home.path(u"share"_s));
    EXPECT_EQ(settings.folders(), QStringList { m_home.path(u"config"_s) });
    EXPECT_EQ(calendarPlaces(m_defaults).folders, settings.folders());

    reading.calendars = { reading.calendars.last() };
    reading.troubles = { u"One is broken."_s, u"Two, too."_s };
    connect();
    EXPECT_EQ(settings.stateText(), "One is broken.\nTwo, too.");
    EXPECT_EQ(view.notice(), settings.stateText());
    reading.troubles.clear();
    m_fake.set(reading);
    services.store.refresh();
    EXPECT_TRUE(await([&] { return settings.stateText() == "1 calendar connected"_L1; }));
    EXPECT_EQ(view.notice(), "");
    m_fake.given = CalendarAccess::None;
    settings.connectCalendar();
    EXPECT_TRUE(settings.stateText().startsWith("No calendar was found."_L1));
    EXPECT_EQ(view.connection()->title(), "Calendar access denied");
    EXPECT_EQ(view.connection()->text(), settings.stateText());
}

TEST_F(CalendarFilled, thePageIsAWeekOrADay)
{
    plan("Early", "2026-10-08 07:00", "2026-10-08 08:00");
    plan("Now", "2026-10-08 08:30", "2026-10-08 09:00");
    plan("Next", "2026-10-09 10:00", "2026-10-09 11:00");
    plan("Fair", "2026-10-06 00:00", "2026-10-08 00:00").allDay = true;
    plan("Away", "2026-11-02 10:00", "2026-11-02 11:00");
    connect();
    ASSERT_TRUE(awaitShown("Early,Now,Next"));
    EXPECT_TRUE(view.isWeek());
    const auto selected = [&](int step) {
        view.selectNext(step);
        return view.selected();
    };
    EXPECT_EQ(selected(1), "w:Now") << "the next one";
    EXPECT_EQ(selected(1), "w:Next");
    EXPECT_EQ(selected(1), "w:Next");
    EXPECT_EQ(selected(-2), "w:Early");
    EXPECT_EQ(selected(-2), "w:Fair") << "whole days are first";
    view.select({});
    EXPECT_EQ(view.card(), EventCard());
    m_clock.setNowMs(at("2026-10-09 11:01"));
    m_clock.advance(seconds(60));
    EXPECT_EQ(selected(1), "w:Fair") << "all are over";

    const QSignalSpy changed(&view, &CalendarView::changed);
    view.setWeek(true);
    EXPECT_EQ(changed.count(), 0);
    view.setWeek(false);
    EXPECT_GT(changed.count(), 0);
    EXPECT_EQ(view.title(), "Thursday, 8 October 2026");
    EXPECT_TRUE(awaitShown("Early,Now"));
    EXPECT_EQ(view.tiles()->layout().days.size(), 1);
    view.step(1);
    EXPECT_EQ(view.title(), "Friday, 9 October 2026");
    EXPECT_EQ(view.selected(), "");
    EXPECT_TRUE(awaitShown("Next"));
    view.step(-4);
    EXPECT_TRUE(awaitShown(""));
    EXPECT_EQ(view.selected(), "");
    view.selectNext(1);
    EXPECT_EQ(view.selected(), "") << "there is none on this day";
    view.setWeek(true);
    EXPECT_EQ(view.title(), "5 – 11 October 2026");
    view.step(3);
    EXPECT_EQ(view.title(), "26 October – 1 November 2026");
    view.show(u"w:Away"_s, at("2026-11-02 10:00"));
    EXPECT_EQ(view.title(), "2 – 8 November 2026");
    EXPECT_EQ(view.selected(), "w:Away");
    EXPECT_EQ(view.card().when, "Mon 2 Nov, 10:00–11:00");
    view.today();
    EXPECT_EQ(view.title(), "5 – 11 October 2026");
    services.store.toggleCalendar(u"Work"_s);
    EXPECT_TRUE(awaitShown(""));
}

TEST_F(CalendarFilled, theCardTellsWhoComes)
{
    m_db->exec(u"INSERT INTO contact(id, workspace_id, display_name) VALUES('c1','local','Cy');"_s);
    services.store.setExtraAddresses(u" me@x.example ,, other@x.example"_s);
    CalendarEntry& call = plan("Call", "2026-10-08 10:00", "2026-10-08 11:00");
    call.people = { { u"Me"_s, u"ME@x.example"_s, false, true }, { u"Ana"_s, u"ana@y.example"_s, false, true },
        { u"bo@y.example"_s, u"bo@y.example"_s }, { u"Cy"_s, u"cy@y.example"_s }, { u"Room 1"_s, {}, true } };
    call.location = u"Kiln"_s;
    call.notes = u"See https://docs.example/a"_s;
    connect();
    ASSERT_TRUE(awaitShown("Call"));
    view.select(u"w:Call"_s);
    const EventCard& card = view.card();
    QStringList people;
    for (const EventPerson& person : card.people)
        people.append(person.name + u'|' + person.detail + u'|' + person.contactId);
    EXPECT_EQ(people, QStringList({ u"Me|you|"_s, u"Ana|declined|"_s, u"bo@y.example||"_s, u"Cy|cy@y.example|c1"_s }));
    EXPECT_EQ(card.id + u'|' + card.place + u'|' + card.calendar + u'|' + card.notes + u'|' + card.link,
        "w:Call|Kiln|Work|See https://docs.example/a|https://docs.example/a");
    EXPECT_FALSE(card.joinable);
    EXPECT_FALSE(card.meeting) << "the user declined it";

    QStringList posted;
    const auto conversations = m_centre.observe(notifications::openConversation,
        [&](const Notification& notification) { posted.append(notification.object.value_or(u"-"_s)); });
    const auto approvals
        = m_centre.observe(notifications::openApprovals, [&](const Notification&) { posted.append(u"approvals"_s); });
    view.openPerson({});
    view.openPerson(u"c1"_s);
    lumo.model.setUnavailable(u"none"_s);
    view.prepare(u"none"_s);
    EXPECT_FALSE(view.prep()->isOpen());
    view.prepare(u"w:Call"_s);
    EXPECT_TRUE(view.prep()->isOpen());
    EXPECT_EQ(view.prep()->title(), "Call");
    view.openReview();
    EXPECT_FALSE(view.prep()->isOpen());
    EXPECT_EQ(posted, QStringList({ u"c1"_s, u"approvals"_s }));
    view.join(u"none"_s);
    EXPECT_TRUE(desktop.opened.isEmpty());
}

TEST_F(CalendarFilled, whatTheCalendarRefusesIsTold)
{
    view.beginEvent();
    EXPECT_FALSE(view.newEvent()->isOpen()) << "there is no calendar";
    connect();
    view.beginEvent();
    EXPECT_EQ(view.newEvent()->field(u"day"_s).text() + view.newEvent()->field(u"from"_s).text(), "2026-10-0810:00");
    view.newEvent()->field(u"title"_s).type(u"Call"_s);
    view.newEvent()->submit();
    EXPECT_FALSE(view.newEvent()->isOpen());
    EXPECT_EQ(told(), "It takes none.");
    m_clock.setNowMs(at("2026-10-08 22:00"));
    view.beginEvent();
    EXPECT_EQ(view.newEvent()->field(u"from"_s).text(), "18:00");
    m_clock.setNowMs(at("2026-10-08 03:00"));
    view.beginEvent();
    EXPECT_EQ(view.newEvent()->field(u"from"_s).text(), "08:00");
    view.step(1);
    view.beginEvent();
    EXPECT_EQ(view.newEvent()->field(u"day"_s).text(), "2026-10-12") << "the first day of the page";
    view.step(-2);
    view.beginEvent();
    EXPECT_EQ(view.newEvent()->field(u"day"_s).text(), "2026-09-28");
}

TEST_F(CalendarFilled, eventsOfAgentsAreAnsweredOnThePage)
{
    connect();
    services.commands.setAgentsMayAdd(false);
    for (const QString& id : { u"c1"_s, u"c2"_s, u"c3"_s })
        m_db->run(u"INSERT INTO calendar_command(id, workspace_id, title, start_ms, end_ms, notes, calendar, status, "
                  "created_at) VALUES(?,'local',?,?,?,'','','pending',?);"_s,
            { id, id.toUpper(), at("2026-10-09 12:00"), at("2026-10-09 13:00"), id.back().digitValue() });
    services.commands.processPendingCommands();
    const auto asked = [&] {
        QStringList asked;
        for (const Choice& choice : view.asked())
            asked.append(choice.id + u'|' + choice.label);
        return asked;
    };
    EXPECT_EQ(asked(),
        QStringList({ u"c1|C1 · Fri 9 Oct, 12:00–13:00"_s, u"c2|C2 · Fri 9 Oct, 12:00–13:00"_s,
            u"c3|C3 · Fri 9 Oct, 12:00–13:00"_s }));
    view.answer(u"none"_s, true);
    EXPECT_EQ(asked().size(), 3);
    view.answer(u"c1"_s, false);
    EXPECT_EQ(asked().size(), 2);
    EXPECT_EQ(view.notice(), "");
    m_db->run(u"UPDATE calendar_command SET title='Other' WHERE id='c2';"_s);
    view.answer(u"c2"_s, true);
    EXPECT_EQ(told(), "It has changed since you saw it.");
    EXPECT_EQ(asked().first(), "c2|Other · Fri 9 Oct, 12:00–13:00") << "read again";
    const QSignalSpy refused(&services.commands, &CalendarCommands::refused);
    view.answer(u"c3"_s, true);
    EXPECT_EQ(asked().size(), 1);
    ASSERT_TRUE(await([&] { return refused.count() == 1; }));
    EXPECT_EQ(refused.first(), QVariantList({ u"C3"_s, u"It takes none."_s }));
    EXPECT_EQ(table(u"SELECT id, status, error FROM calendar_command ORDER BY id;"_s),
        QStringList({ u"c1|failed|Rejected."_s, u"c2|pending|-"_s, u"c3|failed|It takes none."_s }));
    services.commands.setAgentsMayAdd(true);
    ASSERT_TRUE(await([&] { return cell(u"SELECT status FROM calendar_command WHERE id='c2';"_s) == "failed"_L1; }));
    EXPECT_EQ(refused.count(), 1) << "nobody let it in";
    EXPECT_EQ(asked(), QStringList());
    EXPECT_EQ(services.commands.undoText(), "");
}

TEST_F(CalendarFilled, theNextMeetingsAreEightAtMost)
{
    UpcomingMeetings meetings({ services.store, services.prep, desktop, m_centre });
    const QSignalSpy changed(&meetings, &UpcomingMeetings::changed);
    EXPECT_EQ(meetings.emptyTitle(), "Calendar not connected");
    EXPECT_EQ(meetings.emptyText(), "Connect the calendars on this computer to show meetings here.");
    EXPECT_EQ(meetings.connectLabel(), "Connect Calendar");
    m_fake.given = CalendarAccess::None;
    meetings.connectCalendar();
    EXPECT_EQ(meetings.emptyTitle(), "Calendar access denied");
    EXPECT_TRUE(meetings.emptyText().startsWith("No calendar was found."_L1));
    EXPECT_EQ(meetings.troubleTitle() + meetings.troubleText(), "");
    EXPECT_EQ(meetings.connectLabel(), "Connect Calendar");
    EXPECT_EQ(meetings.headline(), "");

    m_fake.given = CalendarAccess::Full;
    connect();
    EXPECT_EQ(meetings.emptyTitle(), "No upcoming mirrored events.");
    EXPECT_EQ(meetings.emptyText() + meetings.connectLabel() + meetings.troubleTitle(), "");
    plan("Over", "2026-10-08 07:00", "2026-10-08 08:59");
    plan("Ends", "2026-10-08 08:00", "2026-10-08 09:00");
    plan("Focus time", "2026-10-08 09:00", "2026-10-08 10:00");
    plan("Call", "2026-10-08 09:05", "2026-10-08 10:00").notes = u"https://zoom.us/1"_s;
    plan("Fair", "2026-10-09 00:00", "2026-10-10 00:00").allDay = true;
    for (const char* title : { "1", "2", "3", "4", "5", "6" })
        plan(title, "2026-10-10 10:00", "2026-10-10 11:00");
    reading.troubles = { u"One is broken."_s };
    m_fake.set(reading);
    services.store.refresh();
    ASSERT_TRUE(await([&] { return meetings.lines().size() == 8; }));
    QStringList lines;
    for (const MeetingLine& line : meetings.lines())
        lines.append(u"%1|%2|%3|%4%5"_s.arg(line.id, line.when, line.relative).arg(line.joinable).arg(line.meeting));
    EXPECT_EQ(lines.mid(0, 4),
        QStringList({ u"w:Ends|Thu 8 Oct, 08:00–09:00|started|00"_s, u"w:Call|Thu 8 Oct, 09:05–10:00|in 5m|11"_s,
            u"w:Fair|Fri 9 Oct, all day||00"_s, u"w:1|Sat 10 Oct, 10:00–11:00|in 3d|00"_s }));
    EXPECT_EQ(meetings.lines().last().title, "5");
    EXPECT_EQ(meetings.headline(), "Next meeting in 5m");
    EXPECT_EQ(meetings.troubleTitle() + u": "_s + meetings.troubleText(), "Calendar refresh failed: One is broken.");
    meetings.join(u"w:1"_s);
    meetings.join(u"none"_s);
    EXPECT_EQ(desktop.opened.size(), 0);
    meetings.join(u"w:Call"_s);
    EXPECT_EQ(desktop.opened, QList<QUrl> { QUrl(u"https://zoom.us/1"_s) });
    lumo.model.setUnavailable(u"none"_s);
    meetings.prepare(u"none"_s);
    EXPECT_FALSE(services.prep.isOpen());
    meetings.prepare(u"w:Call"_s);
    EXPECT_EQ(services.prep.title(), "Call");
    const auto before = changed.count();
    m_clock.advance(seconds(60));
    EXPECT_GT(changed.count(), before);
    EXPECT_EQ(meetings.lines().first().id, "w:Call");
    services.store.toggleCalendar(u"Work"_s);
    EXPECT_EQ(meetings.lines().size(), 0);
    EXPECT_EQ(meetings.headline(), "");
}

}
