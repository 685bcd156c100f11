#include "Calendar/CalendarCommands.h"
#include "Foundation/Literals.h"

#include "Calendar/CalendarTest.h"
#include "Support/WaitingItems.h"

#include <QSignalSpy>

namespace corvane {

namespace {

class AgentEvents : public CalendarTest {
protected:
    AgentEvents()
    {
        QDir().mkpath(m_folder);
        m_defaults.setBoolean(u"nimb.calendarConnected"_s, true);
        start(*m_source);
        EXPECT_TRUE(await([&] { return !m_store->calendars().isEmpty(); }));
        commands = std::make_unique<CalendarCommands>(*m_store);
    }

    void ask(const char* id, const char* title, const char* from, const char* to, const char* calendar = "")
    {
        m_db->run(u"INSERT INTO calendar_command(id, workspace_id, title, start_ms, end_ms, notes, calendar, status, "
                  "created_at) VALUES(?,'local',?,?,?,'',?,'pending',0);"_s,
            { QString::fromLatin1(id), QString::fromUtf8(title), at(from), at(to), QString::fromLatin1(calendar) });
    }

    bool awaitRow(const char* expected)
    {
        return await([&] {
            return table(u"SELECT id, status, error FROM calendar_command ORDER BY id;"_s)
                == QString::fromUtf8(expected).split(u';');
        });
    }

    std::unique_ptr<CalendarCommands> commands;
};

TEST_F(AgentEvents, areAddedAsToldAndTakenBackWithinTenSeconds)
{
    ask("c1", "Lunch with Ana", "2026-10-09 12:00", "2026-10-09 13:00", "no such calendar");
    ask("c2", "Backwards", "2026-10-09 12:00", "2026-10-09 11:00");
    commands->processPendingCommands();
    EXPECT_TRUE(awaitRow("c1|done|-;c2|failed|The event has no time, or ends before it starts."));
    EXPECT_EQ(cell(u"SELECT event_id FROM calendar_command WHERE id='c1';"_s), u"work:c1@corvane"_s);
    EXPECT_TRUE(commands->undoText().contains(u"Lunch with Ana"_s));
    EXPECT_TRUE(awaitEvents({ u"Lunch with Ana"_s }));
    ask("c3", "Later", "2026-10-10 12:00", "2026-10-10 13:00");
    m_clock.advance(seconds(11));
    EXPECT_TRUE(await([&] { return commands->undoText().contains(u"Later"_s); })) << "asked for every five seconds";
    commands->undo();
    EXPECT_TRUE(awaitRow("c1|done|-;c2|failed|The event has no time, or ends before it starts.;c3|failed|Undone."));
    EXPECT_TRUE(awaitEvents({ u"Lunch with Ana"_s }));
}

TEST_F(AgentEvents, waitForAWordWhereThePersonWantsIt)
{
    commands->setAgentsMayAdd(false);
    ask("c1", "One", "2026-10-09 12:00", "2026-10-09 13:00");
    ask("c2", "Two", "2026-10-09 14:00", "2026-10-09 15:00");
    commands->processPendingCommands();
    ASSERT_EQ(commands->waiting().size(), 2);
    const QString seen = eventHash(commands->waiting().last());
    EXPECT_EQ(commands->reject(u"c1"_s), Decided::Taken);
    m_db->run(u"UPDATE calendar_command SET title='Tower' WHERE id='c2';"_s);
    EXPECT_EQ(commands->add(u"c2"_s, seen), Decided::Changed) << "only what was seen is added";
    m_db->run(u"UPDATE calendar_command SET title='Two' WHERE id='c2';"_s);
    EXPECT_EQ(commands->add(u"c2"_s, seen), Decided::Taken);
    EXPECT_TRUE(awaitRow("c1|failed|Rejected.;c2|done|-"));
    EXPECT_TRUE(awaitEvents({ u"Two"_s }));
    writeProposal(*m_db, u"p"_s, u"event"_s, u"Three"_s,
        u"{\"startMs\":%1,\"endMs\":%2}"_s.arg(at("2026-10-10 09:00")).arg(at("2026-10-10 10:00")));
    EXPECT_TRUE(applyAsSeen(*m_db, u"p"_s));
    commands->processPendingCommands();
    EXPECT_TRUE(commands->waiting().isEmpty()) << "a proposal that was applied is not asked about again";
    EXPECT_TRUE(awaitEvents({ u"Two"_s, u"Three"_s }));
}

TEST_F(AgentEvents, severalAreOneOfferAndOneThatChangedSinceStays)
{
    const QSignalSpy changed(commands.get(), &CalendarCommands::changed);
    ask("c1", "One", "2026-10-09 12:00", "2026-10-09 12:00", "work");
    ask("c2", "Two", "2026-10-10 12:00", "2026-10-10 13:00");
    commands->processPendingCommands();
    commands->processPendingCommands();
    EXPECT_TRUE(await([&] { return !commands->undoText().isEmpty(); }));
    EXPECT_EQ(commands->undoText(), "2 events were added for agents.");
    EXPECT_GT(changed.count(), 0);
    EXPECT_TRUE(awaitEvents({ u"One"_s, u"Two"_s }));
    const QString file = QDir(m_folder).entryList({ u"*c2*"_s }, QDir::Files).value(0);
    QFile changedSince(m_folder + file);
    ASSERT_TRUE(changedSince.open(QIODevice::ReadWrite));
    QByteArray content = changedSince.readAll();
    content.replace("SUMMARY:Two", "SUMMARY:Too");
    changedSince.seek(0);
    changedSince.write(content);
    changedSince.close();
    commands->undo();
    EXPECT_EQ(commands->undoText(), "");
    EXPECT_TRUE(awaitRow("c1|failed|Undone.;c2|done|-"));
    EXPECT_TRUE(awaitEvents({ u"Too"_s }));
}

TEST_F(AgentEvents, eachNamesItsCalendarItsTextAndItsPlace)
{
    QDir().mkpath(m_folder + u"../home"_s);
    m_store->refresh();
    ASSERT_TRUE(await([&] { return m_store->calendars().size() == 2; }));
    ask("c1", " Lunch  with\nAna ", "2026-10-09 12:00", "2026-10-09 13:00", "home");
    m_db->run(u"UPDATE calendar_command SET notes='bring tea', location='Kiln';"_s);
    commands->processPendingCommands();
    ASSERT_TRUE(awaitRow("c1|done|-"));
    EXPECT_EQ(commands->undoText(), u"“Lunch with Ana” was added: 9 Oct 2026, 12:00."_s);
    ASSERT_TRUE(await([&] { return m_store->events().size() == 1; }));
    const CalEvent& event = m_store->events().first();
    EXPECT_EQ(event.calendar + u'|' + event.location + u'|' + event.notes, "home|Kiln|bring tea");
    commands->dismiss();
    EXPECT_EQ(commands->undoText(), "");
    EXPECT_EQ(cell(u"SELECT status FROM calendar_command;"_s), "done");
    m_db->run(u"UPDATE calendar_command SET status='pending', start_ms=0, end_ms=0;"_s);
    commands->processPendingCommands();
    EXPECT_TRUE(awaitRow("c1|failed|The event has no time, or ends before it starts."));
}

TEST_F(AgentEvents, nothingIsDecidedWithoutACalendar)
{
    commands->setAgentsMayAdd(false);
    ask("c1", "One", "2026-10-09 12:00", "2026-10-09 13:00");
    commands->processPendingCommands();
    ASSERT_EQ(commands->waiting().size(), 1);
    const QString seen = eventHash(commands->waiting().first());
    EXPECT_EQ(commands->reject(u"none"_s), Decided::Refused);
    QDir(m_folder).removeRecursively();
    m_store->refresh();
    ASSERT_TRUE(await([&] { return m_store->calendars().isEmpty(); }));
    EXPECT_EQ(commands->add(u"c1"_s, seen), Decided::Taken);
    EXPECT_TRUE(awaitRow("c1|failed|There is no calendar for new events."));
    EXPECT_TRUE(commands->waiting().isEmpty());
    QDir(m_home.path(u"share/calendars"_s)).removeRecursively();
    m_store->refresh();
    EXPECT_EQ(m_store->access(), CalendarStore::Access::Denied);
    ask("c2", "Two", "2026-10-09 12:00", "2026-10-09 13:00");
    commands->processPendingCommands();
    EXPECT_TRUE(commands->waiting().isEmpty());
    EXPECT_EQ(commands->add(u"c2"_s, seen), Decided::Refused);
}

}

}
