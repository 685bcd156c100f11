#include "Calendar/MeetingPrep.h"
#include "Calendar/MeetingReminder.h"
#include "Foundation/Literals.h"

#include "Calendar/CalendarTest.h"
#include "Support/FakeLanguageModel.h"

namespace corvane {

namespace {

class Prep : public CalendarTest {
protected:
    Prep()
    {
        event.id = u"work:Review"_s;
        event.title = u"Review"_s;
        event.startMs = at("2026-10-08 10:00");
        event.calendar = u"Work"_s;
        event.attendeeDetails
            = { { u"Me"_s, u"me@x.example"_s, true }, { u"Ana"_s, u"ANA@acme.example"_s }, { u"Bo"_s, {} } };
    }

    QStringList decisions() { return table(u"SELECT id, status, risk FROM work_decision;"_s); }

    CalEvent event;
    FakeLumo lumo { m_clock };
};

TEST_F(Prep, thePacketTellsWhatIsKnownOfEveryoneElse)
{
    CalEvent solo = event;
    solo.attendeeDetails = {};
    EXPECT_EQ(meetingPrepPacket(*m_db, solo),
        u"Meeting: Review\nWhen: Thursday 8 October 2026, 10:00\nCalendar: Work\n"
        "Attendees: No external attendees on the calendar event."_s);
    m_db->exec(u"INSERT INTO contact(id, workspace_id, display_name) VALUES('c1','local','Ana Ruiz');"
               "INSERT INTO contact_identity(id, workspace_id, contact_id, channel, handle, email, updated_at)"
               " VALUES('i1','local','c1','EMAIL','ana@acme.example','Ana@Acme.example',0);"
               "INSERT INTO crm_deal(id, workspace_id, name, stage, company, updated_at)"
               " VALUES('d1','local','Bowls','Offer','ACME Ltd',0);"_s);
    event.location = u"Room 1"_s;
    EXPECT_EQ(meetingPrepPacket(*m_db, event),
        u"Meeting: Review\nWhen: Thursday 8 October 2026, 10:00\nCalendar: Work\nLocation: Room 1\n"
        "Attendee: Ana Ruiz\nLast message: No local messages yet.\nLast touch: No local timestamp yet.\n"
        "Open deal: Bowls · Offer\nNotes: No local notes yet.\nAttendee: Bo\nNo history with Bo yet."_s);
    EXPECT_EQ(agoLabel(1000, 0), u"0m ago"_s);
    EXPECT_EQ(agoLabel(0, 7'200'000), u"2h ago"_s);
    EXPECT_EQ(agoLabel(0, 86'400'000), u"1d ago"_s);
}

TEST_F(Prep, aBriefIsMadeOnceKeptAndHintsBecomeOneDecision)
{
    MeetingPrep prep({ *m_db, lumo });
    lumo.model.willAnswer(u"Who: Ana\nSuggested goal: send the offer"_s);
    prep.prepare(event);
    EXPECT_EQ(prep.summary(), u"Who: Ana\nSuggested goal: send the offer"_s);
    EXPECT_EQ(prep.madeBy(), u"Fake Model · 0m ago"_s);
    EXPECT_TRUE(prep.asksReview());
    EXPECT_EQ(decisions(), QStringList { u"dec:native:gtm:work:review|proposed|external"_s });
    EXPECT_EQ(table(u"SELECT id, kind, owner FROM work_context;"_s),
        QStringList { u"ctx:gtm:meeting-work:review|meeting|Oskel"_s });
    prep.close();
    EXPECT_FALSE(prep.isOpen());
    prep.prepare(event);
    EXPECT_EQ(lumo.model.asked.size(), 1) << "kept";

    lumo.model.willFail(u"no"_s);
    prep.regenerate();
    EXPECT_EQ(prep.summary(), u"LumoAI failed — showing the raw local brief."_s);
    EXPECT_EQ(prep.message(), u"Brief regenerated."_s);
    EXPECT_EQ(decisions().size(), 1);
    EXPECT_EQ(fetchMeetingPrepCache(*m_db, event.id)->rawBrief, meetingPrepPacket(*m_db, event));
    m_db->exec(u"DROP TABLE meeting_prep_cache;"_s);
    lumo.model.willAnswer(u"Who: nobody"_s);
    prep.regenerate();
    EXPECT_EQ(prep.message(), u"Could not cache this meeting brief."_s);
    EXPECT_EQ(prep.summary(), u"Who: nobody"_s) << "shown all the same";
}

TEST_F(Prep, aBriefMadeAheadComesFromThisMachineAndProposesOnlyOnceItIsOpened)
{
    MeetingPrep prep({ *m_db, lumo });
    lumo.machine.now.physicalMemoryBytes = 32ULL << 30;
    lumo.model.elsewhere = true;
    prep.prepareAhead(event); // a request to the model would fail the test
    lumo.model.elsewhere = false;
    lumo.model.willAnswer(u"Suggested goal: follow up"_s);
    prep.prepareAhead(event);
    prep.prepareAhead(event);
    EXPECT_FALSE(prep.isOpen());
    EXPECT_EQ(decisions(), QStringList());
    prep.prepare(event);
    EXPECT_EQ(prep.summary(), u"Suggested goal: follow up"_s);
    EXPECT_EQ(decisions().size(), 1);
    m_db->exec(u"UPDATE work_decision SET status='rejected';"_s);
    prep.prepare(event);
    EXPECT_FALSE(prep.asksReview()) << "the person has said it";
}

TEST_F(Prep, aMeetingIsAnnouncedTenMinutesAheadWithItsBriefUntilItIsDismissedOrUnderWay)
{
    lumo.machine.now.physicalMemoryBytes = 32ULL << 30;
    MeetingPrep prep({ *m_db, lumo });
    CalendarStore& store = start(m_fake);
    MeetingReminder reminder(store, prep);
    const auto planned = [](const QString& title, const char* from, const char* to, const QString& calendar) {
        CalendarEntry entry;
        entry.calendarId = calendar;
        entry.uid = entry.title = title;
        entry.startMs = at(from);
        entry.endMs = at(to);
        entry.people = { { u"Me"_s, u"me@x.example"_s }, { u"Ana"_s, u"ana@x.example"_s } };
        return entry;
    };
    CalendarEntry alone = planned(u"Glazing"_s, "2026-10-08 10:00", "2026-10-08 11:00", u"work"_s);
    alone.people.clear();
    m_fake.set({ { { .id = u"work"_s, .title = u"Work"_s }, { .id = u"home"_s, .title = u"Home"_s } },
        { alone, planned(u"Dentist"_s, "2026-10-08 10:00", "2026-10-08 11:00", u"home"_s),
            planned(u"Review"_s, "2026-10-08 10:00", "2026-10-08 11:00", u"work"_s),
            planned(u"Brief"_s, "2026-10-08 11:00", "2026-10-08 11:02", u"work"_s),
            planned(u"Handover"_s, "2026-10-08 12:00", "2026-10-08 13:00", u"work"_s) },
        {} });
    store.toggleCalendar(u"Home"_s);
    store.requestAccess();
    store.refresh();
    ASSERT_TRUE(await([&] { return store.events().size() == 5; }));

    const auto textAfter = [&](Milliseconds time) {
        m_clock.advance(time);
        return reminder.text();
    };
    EXPECT_EQ(textAfter(seconds(49 * 60)), u""_s);
    lumo.model.willAnswer(u"Who: Ana"_s);
    EXPECT_EQ(textAfter(seconds(90)), u"Ready for the next meeting: Review, in 9m"_s)
        << "blocked time and hidden calendars do not count";
    EXPECT_EQ(lumo.model.asked.size(), 1);
    EXPECT_EQ(textAfter(seconds(14 * 60)), u"Ready for the next meeting: Review, started"_s);
    EXPECT_EQ(textAfter(seconds(60)), u""_s) << "five minutes after its start";

    lumo.model.willAnswer(u"Who: Ana"_s);
    m_clock.setNowMs(at("2026-10-08 10:59"));
    EXPECT_EQ(textAfter(seconds(60)), u"Ready for the next meeting: Brief, now"_s);
    EXPECT_EQ(textAfter(seconds(120)), u""_s) << "it has ended";
    lumo.model.willAnswer(u"Who: Ana"_s);
    m_clock.setNowMs(at("2026-10-08 11:59"));
    EXPECT_NE(textAfter(seconds(60)), u""_s);
    reminder.dismiss();
    EXPECT_EQ(reminder.text(), u""_s);
    EXPECT_EQ(textAfter(seconds(30)), u""_s) << "a dismissed one does not come back";
}

TEST_F(Prep, withNobodyToAnswerTheRawBriefStandsAndNothingIsProposed)
{
    lumo.model.setUnavailable(u"none"_s);
    MeetingPrep prep({ *m_db, lumo });
    event.notes = u"send the draft "_s;
    prep.prepare(event);
    EXPECT_TRUE(prep.summary().endsWith(u"unavailable — showing the raw local brief."_s));
    EXPECT_TRUE(prep.madeBy().startsWith(u"Raw LocalDB brief"_s));
    EXPECT_EQ(decisions(), QStringList());
}

}

}
