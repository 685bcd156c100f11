#include "Calendar/CalendarStore.h"
#include "Foundation/Literals.h"

#include "Calendar/CalendarTest.h"
#include "Calendar/MeetingRules.h"
#include "Support/Environment.h"

#include <QSignalSpy>

namespace corvane {

namespace {

CalEvent titled(const char* title)
{
    CalEvent event;
    event.title = QString::fromUtf8(title);
    return event;
}

}

TEST(MeetingRules, aMeetingIsToldByPeopleThenByWordsAndNeverByAWholeDay)
{
    CalEvent call = titled("Team call");
    EXPECT_TRUE(isMeetingCandidate(call));
    call.allDay = true;
    EXPECT_FALSE(isMeetingCandidate(call));
    EXPECT_FALSE(isMeetingCandidate(titled("Team lunch")));
    EXPECT_TRUE(isMeetingCandidate(titled("Breakfast sync"))) << "no whole word";
    EXPECT_TRUE(isMeetingCandidate(titled("Demo")));
    EXPECT_FALSE(isMeetingCandidate(titled("Write report")));
    CalEvent withOthers = titled("Report");
    withOthers.attendeeDetails = { { u"Me"_s, {}, true } };
    EXPECT_FALSE(isMeetingCandidate(withOthers));
    withOthers.attendees = 2;
    EXPECT_TRUE(isMeetingCandidate(withOthers));
    withOthers.attendeeDetails.append({ u"Ana"_s, u"ana@x.example"_s });
    withOthers.notes = u"then\nlunch\nbreak"_s;
    EXPECT_FALSE(isMeetingCandidate(withOthers)) << "a word on a line of its own is a whole one";
    withOthers.notes.clear();
    withOthers.attendeeDetails.first().declined = true;
    EXPECT_FALSE(isMeetingCandidate(withOthers));
    EXPECT_TRUE(isPlaceholderBlock(titled("Focus Time, please")));
    EXPECT_FALSE(isPlaceholderBlock(titled("Team call")));
    EXPECT_FALSE(isMeetingCandidate(titled("Focus block, no call")));
    CalEvent byPlace = titled("Weekly");
    byPlace.location = u"Zoom"_s;
    EXPECT_TRUE(isMeetingCandidate(byPlace));
    withOthers.attendeeDetails = { { u"Ana"_s, {}, false, true } };
    withOthers.attendees = 1;
    EXPECT_TRUE(isMeetingCandidate(withOthers)) << "somebody else declined";
    withOthers.attendeeDetails.clear();
    EXPECT_FALSE(isMeetingCandidate(withOthers));
}

TEST(MeetingRules, theLinkOfAMeetingServiceComesBeforeAnyOther)
{
    CalEvent event;
    EXPECT_EQ(meetingURL(event), std::nullopt);
    event.location = u"Room 1"_s;
    event.notes = u"Agenda: https://docs.example/a. Join <a href=\"https://acme.zoom.us/j/1?pwd=a&amp;b=2\">here</a>"_s;
    EXPECT_EQ(meetingURL(event), QUrl(u"https://acme.zoom.us/j/1?pwd=a&b=2"_s));
    event.notes = u"mailto:a@x.example, see ftp://x.example or (https://docs.example/a)."_s;
    EXPECT_EQ(meetingURL(event), QUrl(u"https://docs.example/a"_s));
    EXPECT_EQ(joinURL(event), QUrl(u"https://docs.example/a"_s));
    event.notes = u"zoommtg://zoom.us/join?a=1 or https://docs.example/a"_s;
    EXPECT_EQ(meetingURL(event), QUrl(u"zoommtg://zoom.us/join?a=1"_s));
    EXPECT_EQ(joinURL(event), std::nullopt) << "no browser opens it";
    event.notes = u"ftp://x.example/a"_s;
    EXPECT_EQ(meetingURL(event), std::nullopt);
    event.notes = u"WWW.Example.org/a?b*!) http://x"_s;
    EXPECT_EQ(joinURL(event), QUrl(u"https://WWW.Example.org/a?b"_s));
    event.notes = u"http://x.example/."_s;
    EXPECT_EQ(joinURL(event), QUrl(u"http://x.example/"_s));
}

TEST(MeetingRules, theTimeUntilAMeetingIsToldInTheLargestUnitsThatMatter)
{
    const qint64 now = at("2026-10-08 09:00");
    const auto in = [&](qint64 secondsAhead) {
        return relativeStart(now + secondsAhead * 1000, now);
    };
    EXPECT_EQ(in(-61), u"started"_s);
    EXPECT_EQ(in(-60), u"now"_s);
    EXPECT_EQ(in(60), u"now"_s);
    EXPECT_EQ(in(61), u"in 1m"_s);
    EXPECT_EQ(in(3600), u"in 1h"_s);
    EXPECT_EQ(in(5460), u"in 1h 31m"_s);
    EXPECT_EQ(in(86'400), u"in 1d"_s);
    EXPECT_EQ(in(90'000), u"in 2d"_s);
    EXPECT_EQ(in(521'999), u"in 6d"_s);
    EXPECT_EQ(in(522'000), u"Oct 14"_s);
    EXPECT_EQ(in(3599), u"in 59m"_s);
    EXPECT_EQ(in(86'399), u"in 23h 59m"_s);
    EXPECT_EQ(relativeStart(now + 1, now), u"now"_s);
    EXPECT_EQ(relativeStart(now + 60'001, now), u"in 1m"_s) << "a second that has begun counts";
    EXPECT_EQ(relativeStart(now - 60'999, now), u"now"_s);
    EXPECT_EQ(compactCountdown(now + 60'000, now), u"Now"_s);
    EXPECT_EQ(compactCountdown(now + 600'000, now), u"10m"_s);
    CalEvent event = titled("Standup");
    event.startMs = now + 300'000;
    event.endMs = now + 600'000;
    EXPECT_EQ(nextMeetingHeadline(event, now), u"Next meeting in 5m"_s);
    EXPECT_EQ(nextMeetingHeadline(event, event.startMs), u"Meeting starts now"_s);
    EXPECT_EQ(nextMeetingHeadline(event, event.endMs), u"Meeting already started"_s);
    CalEvent ended = event;
    ended.endMs = now - 1;
    ended.startMs = now - 2;
    EXPECT_EQ(nextMeetingCandidate({ ended, event }, now), event);
    EXPECT_EQ(nextMeetingCandidate({ ended }, now), std::nullopt);
    ended.endMs = now;
    EXPECT_EQ(nextMeetingCandidate({ event, ended }, now), ended) << "it ends now";
    CalEvent lunch = ended;
    lunch.title = u"Lunch"_s;
    EXPECT_EQ(nextMeetingCandidate({ lunch, event }, now), event);
    EXPECT_EQ(compactTitle(titled(" 12345678901234567890123456789012 ")), u"12345678901234567890123456789012"_s);
    EXPECT_EQ(compactTitle(titled("123456789012345678901234567890123")), u"1234567890123456789012345678901…"_s);
    EXPECT_EQ(compactTitle(titled("123456789012345678901234567890😀😀😀")), u"123456789012345678901234567890😀…"_s);
}

using CalendarMirror = CalendarTest;

TEST_F(CalendarMirror, nothingIsReadBeforeConnectIsPressedAndTheChoiceIsKept)
{
    EXPECT_EQ(start(*m_source).access(), CalendarStore::Access::Unknown);
    m_store->requestAccess();
    EXPECT_EQ(m_store->access(), CalendarStore::Access::Denied);
    EXPECT_TRUE(m_store->lastError().value_or(QString()).contains(u"No calendar was found"_s));
    write(u"a.ics"_s, "DTSTART:20261008T100000\r\n");
    EXPECT_TRUE(awaitEvents({ u"(no title)"_s })) << "what was missing came";
    EXPECT_EQ(m_store->access(), CalendarStore::Access::Granted);
    EXPECT_EQ(m_store->lastError(), std::nullopt);
    EXPECT_EQ(start(*m_source).access(), CalendarStore::Access::Granted) << "at the next start";
    EXPECT_EQ(m_store->events().size(), 1) << "shown before the calendars answer";

    FakeCalendarSource& writeOnly = m_fake;
    writeOnly.given = CalendarAccess::WriteOnly;
    EXPECT_EQ(start(writeOnly).access(), CalendarStore::Access::Denied);
    EXPECT_EQ(
        m_store->lastError(), u"Corvane has write-only Calendar access. Connect Calendar to grant full read access."_s);
}

TEST_F(CalendarMirror, theMirrorFollowsFilesDaysAndTheWorkspace)
{
    write(u"a.ics"_s,
        "DTSTART:20261008T100000\r\nDTEND:20261008T110000\r\nSUMMARY:Today\r\nORGANIZER:mailto:Me@x.example\r\n"
        "ATTENDEE;CN=Ana:mailto:ana@y.example\r\nATTENDEE;CUTYPE=ROOM:mailto:room@y.example\r\n");
    write(u"b.ics"_s, "DTSTART:20261206T083000\r\nDTEND:20261206T093000\r\nSUMMARY:Later\r\n");
    m_defaults.setBoolean(u"nimb.calendarConnected"_s, true);
    start(*m_source);
    ASSERT_TRUE(awaitEvents({ u"Today"_s, u"Later"_s }));
    EXPECT_EQ(table(u"SELECT id, attendees, attendees_json FROM calendar_event WHERE title='Today';"_s),
        QStringList { u"work:a.ics|2|[{\"currentUser\":true,\"email\":\"Me@x.example\",\"name\":\"Me@x.example\"},"
                      "{\"currentUser\":false,\"email\":\"ana@y.example\",\"name\":\"Ana\"}]"_s });
    EXPECT_EQ(fetchCalendarEvents(*m_db, 0, 1).first(), m_store->events().first());
    write(u"a.ics"_s, "DTSTART:20261008T100000\r\nSUMMARY:Changed\r\n");
    EXPECT_TRUE(awaitEvents({ u"Changed"_s, u"Later"_s }));
    QFile::remove(m_folder + u"a.ics"_s);
    write(u"d.ics"_s, "DTSTART:20261210T100000\r\nSUMMARY:Next\r\n");
    EXPECT_TRUE(awaitEvents({ u"Later"_s })) << "sixty days ahead";
    m_clock.setNowMs(at("2026-10-11 11:30"));
    EXPECT_TRUE(awaitEvents({ u"Later"_s, u"Next"_s })) << "the day moved, as after sleep";

    QDir(m_folder + u".."_s).removeRecursively();
    EXPECT_TRUE(await([&] {
        m_clock.advance(Milliseconds(250));
        return m_store->access() == CalendarStore::Access::Denied;
    }));
    EXPECT_EQ(m_store->events().size(), 2) << "a folder may be away for a moment";
}

TEST_F(CalendarMirror, wakingAndAnotherZoneAreNoticedWithinASecond)
{
    write(u"a.ics"_s, "DTSTART:20261008T120000\r\nSUMMARY:Floating\r\n");
    write(u"b.ics"_s, "DTSTART:20261008T110000Z\r\nSUMMARY:Fixed\r\n");
    write(u"c.ics"_s, "DTSTART:20261207T090000Z\r\nSUMMARY:Far\r\n");
    m_defaults.setBoolean(u"nimb.calendarConnected"_s, true);
    start(*m_source);
    ASSERT_TRUE(awaitEvents({ u"Floating"_s, u"Fixed"_s }));
    const auto noticed = [this](const QStringList& titles) {
        m_clock.advance(seconds(1));
        return await([&] { return table(u"SELECT title FROM calendar_event ORDER BY start_ms;"_s) == titles; });
    };
    const Environment elsewhere { { "TZ", "America/New_York" } };
    EXPECT_TRUE(noticed({ u"Fixed"_s, u"Floating"_s }));
    EXPECT_EQ(m_store->events().last().startMs, at("2026-10-08 12:00"));
    m_clock.setNowMs(m_clock.nowMs() + 3 * 3'600'000);
    EXPECT_TRUE(noticed({ u"Fixed"_s, u"Floating"_s, u"Far"_s })) << "later on the same day";
}

TEST_F(CalendarMirror, hiddenCalendarsAreMirroredAndOnlyNotShown)
{
    FakeCalendarSource& source = m_fake;
    const qint64 startMs = at("2026-10-08 10:00");
    source.set({ { { u"w"_s, u"Work"_s }, { u"h"_s, u"Home, sweet"_s } },
        { { u"w"_s, u"1"_s, {}, u"A"_s, {}, {}, startMs, startMs + 1 },
            { u"h"_s, u"2"_s, at("2026-10-08 11:00"), u"B"_s, {}, {}, startMs + 5, startMs + 6 } },
        {} });
    m_defaults.setBoolean(u"nimb.calendarConnected"_s, true);
    start(source);
    ASSERT_TRUE(awaitEvents({ u"A"_s, u"B"_s }));
    EXPECT_EQ(m_store->events().last().id, u"h:2:20261008T090000Z"_s);
    EXPECT_EQ(m_store->calendarNames(), QStringList({ u"Home, sweet"_s, u"Work"_s }));
    m_store->toggleCalendar(u"Home, sweet"_s);
    start(source);
    EXPECT_FALSE(m_store->isCalendarIncluded(u"Home, sweet"_s));
    EXPECT_EQ(m_store->visible(m_store->events()).size(), 1);
    m_store->toggleCalendar(u"Home, sweet"_s);
    EXPECT_EQ(m_store->visible(m_store->events()).size(), 2);
}

TEST_F(CalendarMirror, aReadingBecomesEventsInTheirOrder)
{
    CalendarEntry early { u"w"_s, u"1"_s, {}, {}, u"Kiln"_s, u"tea"_s, at("2026-10-08 10:00"), at("2026-10-08 11:00") };
    early.people = { { u"Me"_s, u"ME@x.example"_s }, { u"Ana"_s, u"ana@x.example"_s, false, true },
        { u"Own"_s, u"own@x.example"_s }, { u"Room"_s, {}, true } };
    CalendarEntry lost { u"gone"_s, u"2"_s, at("2026-10-08 12:00"), u"Lost"_s, {}, {}, at("2026-10-08 13:00"),
        at("2026-10-08 14:00"), true };
    CalendarEntry same = lost;
    same.uid = u"0"_s;
    m_fake.set({ { { u"w"_s, u"Work"_s } }, { lost, same, early }, { u"One is broken."_s } });
    QSignalSpy changed(&start(m_fake), &CalendarStore::changed);
    m_store->refresh();
    EXPECT_EQ(changed.count(), 0) << "nothing is connected";
    m_store->eventsBetween(0, at("2026-10-09 00:00"), m_store.get(), [](const auto&) { FAIL(); });
    m_store->setExtraAddresses(u"own@x.example"_s);
    EXPECT_EQ(m_store->extraAddresses(), "own@x.example");
    EXPECT_EQ(changed.count(), 1);
    m_store->requestAccess();
    EXPECT_EQ(changed.count(), 2);
    m_store->requestAccess();
    EXPECT_EQ(changed.count(), 2) << "granted already";
    ASSERT_TRUE(await([&] { return m_store->events().size() == 3; }));
    EXPECT_EQ(m_store->lastError(), u"One is broken."_s);
    const CalEvent& first = m_store->events().first();
    EXPECT_EQ(first.id + u'|' + first.title + u'|' + first.calendar + u'|' + first.location + u'|' + first.notes,
        "w:1|(no title)|Work|Kiln|tea");
    EXPECT_EQ(first.attendees, 3);
    EXPECT_EQ(first.attendeeDetails,
        (QList<CalAttendee> { { u"Me"_s, u"ME@x.example"_s, true, false },
            { u"Ana"_s, u"ana@x.example"_s, false, true }, { u"Own"_s, u"own@x.example"_s, true, false } }));
    EXPECT_EQ(m_store->events().value(1).id, "gone:0:20261008T100000Z");
    const CalEvent& last = m_store->events().last();
    EXPECT_EQ(last.id + u'|' + last.title + u'|' + last.calendar, "gone:2:20261008T100000Z|Lost|Calendar");
    EXPECT_TRUE(last.allDay);
    EXPECT_EQ(m_store->calendarNames(), QStringList({ u"Calendar"_s, u"Work"_s }));
    QList<CalEvent> between;
    m_store->eventsBetween(0, at("2026-10-08 12:00"), m_store.get(), [&](const auto& events) { between = events; });
    EXPECT_TRUE(await([&] { return between == m_store->events().first(1); }));

    m_store->toggleCalendar(u"Work"_s);
    m_store->toggleCalendar(u"Calendar"_s);
    EXPECT_EQ(m_store->visible(m_store->events()).size(), 0);
    EXPECT_FALSE(start(m_fake).isCalendarIncluded(u"Work"_s)) << "kept";
    m_store->toggleCalendar(u"Work"_s);
    EXPECT_TRUE(start(m_fake).isCalendarIncluded(u"Work"_s));
    EXPECT_FALSE(m_store->isCalendarIncluded(u"Calendar"_s));
}

TEST_F(CalendarMirror, anotherWorkspaceAndAFailedWriteAreMirroredAgain)
{
    m_fake.set({ { { u"w"_s, u"Work"_s } },
        { { u"w"_s, u"1"_s, {}, u"A"_s, {}, {}, at("2026-10-08 10:00"), at("2026-10-08 11:00") } }, {} });
    m_db->exec(u"ALTER TABLE calendar_event RENAME TO away;"_s);
    start(m_fake).requestAccess();
    ASSERT_TRUE(await([&] { return m_store->events().size() == 1; }));
    m_db->exec(u"ALTER TABLE away RENAME TO calendar_event;"_s);
    m_clock.advance(seconds(5));
    const QString rows = u"SELECT COUNT(*) FROM calendar_event;"_s;
    EXPECT_TRUE(await([&] { return cell(rows) == "1"_L1; }));
    m_db->exec(u"DELETE FROM calendar_event;"_s);
    m_centre.post(notifications::activeWorkspaceChanged);
    EXPECT_TRUE(await([&] { return cell(rows) == "1"_L1; })) << "mirrored for the other one";
    m_fake.given = CalendarAccess::None;
    m_store->refresh();
    EXPECT_EQ(m_store->access(), CalendarStore::Access::Denied);
    EXPECT_EQ(m_store->events().size(), 1);
    m_fake.given = CalendarAccess::Full;
    Q_EMIT m_fake.changed();
    m_clock.advance(Milliseconds(200));
    EXPECT_EQ(m_store->access(), CalendarStore::Access::Granted) << "it came back";
    EXPECT_EQ(m_store->lastError(), std::nullopt);
}

}
