#include "Calendar/CalendarView.h"
#include "Foundation/Literals.h"

#include "Calendar/CalendarPage.h"
#include "Calendar/UpcomingMeetings.h"

namespace corvane {

namespace {

CalEvent event(const char* title, const char* from, const char* to, bool allDay = false)
{
    CalEvent event;
    event.id = event.title = QString::fromUtf8(title);
    event.startMs = at(from);
    event.endMs = at(to);
    event.allDay = allDay;
    return event;
}

/// One line per block: "title day top height lane/lanes".
QStringList placed(const QList<EventBlock>& blocks)
{
    QStringList lines;
    for (const EventBlock& block : blocks)
        lines.append(u"%1 %2 %3 %4 %5/%6"_s.arg(block.title)
                .arg(block.day)
                .arg(block.top)
                .arg(block.height)
                .arg(block.lane)
                .arg(block.lanes));
    return lines;
}

}

TEST(CalendarLayout, eventsAtTheSameTimeShareTheColumnAndTheHoursHoldThemAll)
{
    const CalendarLayout layout = calendarLayout(
        { event("A", "2026-10-08 07:30", "2026-10-08 09:00"), event("B", "2026-10-08 08:00", "2026-10-08 08:30"),
            event("C", "2026-10-08 08:30", "2026-10-08 10:00"), event("D", "2026-10-08 11:30", "2026-10-08 11:30"),
            event("E", "2026-10-08 12:15", "2026-10-08 13:00"), event("Night", "2026-10-09 23:00", "2026-10-10 01:00"),
            event("Fair", "2026-10-08 00:00", "2026-10-10 00:00", true),
            event("Trip", "2026-10-09 00:00", "2026-10-12 00:00", true) },
        QDate(2026, 10, 8), 2, at("2026-10-08 09:00"), {});
    EXPECT_EQ(layout.firstHour, 7);
    EXPECT_EQ(layout.lastHour, 24);
    EXPECT_EQ(placed(layout.blocks),
        QStringList({ u"A 0 0.5 1.5 0/2"_s, u"B 0 1 0.5 1/2"_s, u"C 0 1.5 1.5 1/2"_s, u"D 0 4.5 0.4 0/1"_s,
            u"E 0 5.25 0.75 0/1"_s, u"Night 1 16 1 0/1"_s }));
    EXPECT_EQ(placed(layout.allDay), QStringList({ u"Fair 0 0 0 0/1"_s, u"Trip 1 0 0 1/1"_s }));
    EXPECT_EQ(layout.allDay.first().days, 2);
    EXPECT_EQ(layout.allDayRows, 2);
    ASSERT_EQ(layout.gaps.size(), 2);
    EXPECT_EQ(layout.gaps.first().text, u"1 h 30 min free"_s);
    EXPECT_EQ(layout.gaps.last().text, u"45 min free"_s) << "a tile is longer than a short event";
    EXPECT_TRUE(layout.days.first().today);
}

TEST(CalendarLayout, aTileTellsItsEvent)
{
    CalEvent call = event("Call", "2026-10-08 09:10", "2026-10-08 10:00");
    call.calendar = u"Work"_s;
    call.notes = u"https://zoom.us/1"_s;
    call.attendeeDetails = { { u"Me"_s, {}, true, true }, { u"Ana"_s, {}, false, false } };
    const auto tileAt = [&](const char* now) {
        return calendarLayout({ call }, QDate(2026, 10, 8), 1, at(now), { { u"Work"_s, u"#112233"_s } }).blocks.first();
    };
    const EventBlock tile = tileAt("2026-10-08 09:00");
    EXPECT_EQ(tile.id + u'|' + tile.title + u'|' + tile.timeText + u'|' + tile.colour + u'|' + tile.place,
        "Call|Call|09:10–10:00|#112233|0");
    EXPECT_EQ(tile.spoken, "Call, Thu 8 Oct, 09:10–10:00, Work");
    EXPECT_TRUE(tile.joinable && tile.declined && !tile.past);
    EXPECT_FALSE(tileAt("2026-10-08 08:59").joinable);
    EXPECT_TRUE(tileAt("2026-10-08 09:59").joinable);
    EXPECT_FALSE(tileAt("2026-10-08 10:00").joinable);
    EXPECT_FALSE(tileAt("2026-10-08 10:00").past);
    EXPECT_TRUE(tileAt("2026-10-08 10:01").past);
    call.attendeeDetails = { { u"Me"_s, {}, true, false }, { u"Ana"_s, {}, false, true } };
    EXPECT_FALSE(tileAt("2026-10-08 09:00").declined) << "somebody else";
    call.allDay = true;
    EXPECT_FALSE(isJoinable(call, at("2026-10-08 09:30")));
    call.allDay = false;
    call.notes.clear();
    EXPECT_FALSE(isJoinable(call, at("2026-10-08 09:30")));

    const qint64 now = at("2026-10-08 09:00");
    EXPECT_EQ(whenText(event("", "2026-10-08 10:00", "2026-10-08 10:00"), now), "Thu 8 Oct, 10:00");
    EXPECT_EQ(whenText(event("", "2026-10-08 23:00", "2026-10-09 01:00"), now), "Thu 8 Oct, 23:00 – Fri 9 Oct, 01:00");
    EXPECT_EQ(whenText(event("", "2026-10-08 00:00", "2026-10-09 00:00", true), now), "Thu 8 Oct, all day");
    EXPECT_EQ(whenText(event("", "2026-10-08 00:00", "2026-10-10 00:00", true), now), "Thu 8 Oct – Fri 9 Oct");
}

TEST(CalendarLayout, rowsAndGapsAreUsedAgain)
{
    const CalendarLayout layout = calendarLayout(
        { event("Mon", "2026-10-05 00:00", "2026-10-06 00:00", true),
            event("Both", "2026-10-05 00:00", "2026-10-07 00:00", true),
            event("Tue", "2026-10-06 00:00", "2026-10-07 00:00", true),
            event("A", "2026-10-06 10:00", "2026-10-06 11:00"), event("B", "2026-10-06 11:30", "2026-10-06 12:00"),
            event("C", "2026-10-06 12:29", "2026-10-06 13:00"), event("D", "2026-10-06 15:00", "2026-10-06 16:00"),
            event("E", "2026-10-05 10:00", "2026-10-05 11:00"), event("F", "2026-10-05 13:00", "2026-10-05 14:00") },
        QDate(2026, 10, 5), 2, at("2026-10-06 09:00"), {});
    EXPECT_EQ(placed(layout.allDay), QStringList({ u"Mon 0 0 0 0/1"_s, u"Both 0 0 0 1/1"_s, u"Tue 1 0 0 0/1"_s }));
    EXPECT_EQ(layout.allDayRows, 2);
    EXPECT_EQ(layout.allDay.last().place, "2");
    EXPECT_EQ(layout.allDay[1].days, 2);
    EXPECT_EQ(layout.firstHour, 8);
    EXPECT_EQ(layout.lastHour, 18);
    QStringList gaps;
    for (const FreeGap& gap : layout.gaps)
        gaps.append(u"%1 %2 %3 %4"_s.arg(gap.text).arg(gap.day).arg(gap.top).arg(gap.height));
    EXPECT_EQ(gaps, QStringList({ u"30 min free 1 3 0.5"_s, u"2 h free 1 5 2"_s })) << "not of a past day";
    EXPECT_EQ(layout.days.last(), (DayHead { u"Tue"_s, u"6"_s, true }));
    EXPECT_FALSE(layout.days.first().today);
    const CalendarLayout late = calendarLayout({ event("Late", "2026-10-05 23:50", "2026-10-05 23:55"),
                                                   event("Dawn", "2026-10-05 00:00", "2026-10-05 18:01") },
        QDate(2026, 10, 5), 1, at("2026-10-05 09:00"), {});
    EXPECT_EQ(late.firstHour, 0);
    EXPECT_EQ(late.lastHour, 24);
    EXPECT_EQ(placed(late.blocks).last(), "Late 0 23.6 0.4 0/1") << "within the day";
}

class CalendarPage : public CalendarPageOn {
protected:
    CalendarPage()
        : CalendarPageOn(true)
    {
    }
};

TEST_F(CalendarPage, aPersonConnectsMakesACalendarAddsAnEventJoinsAndMovesOn)
{
    EXPECT_EQ(view.connection()->state(), u"unknown"_s);
    view.connection()->connectCalendar();
    EXPECT_EQ(view.connection()->state(), u"denied"_s);
    view.connection()->makeLocal();
    ASSERT_TRUE(await([&] { return view.canAdd(); }));
    EXPECT_EQ(view.title(), u"5 – 11 October 2026"_s);
    NewEventForm& form = *view.newEvent();
    using Typed = QHash<QString, QString>;
    const auto add = [&](const Typed& typed) {
        view.beginEvent();
        for (const auto& [id, text] : typed.asKeyValueRange())
            form.field(id).type(text);
        form.submit();
        return form.message();
    };
    EXPECT_EQ(add({}), u"Give the event a title."_s);
    for (Typed typed : { Typed { { u"day"_s, u"8.10."_s } }, Typed { { u"from"_s, u"nine"_s } },
             Typed { { u"from"_s, u"10:00"_s }, { u"to"_s, u"9:00"_s } } }) {
        typed.insert(u"title"_s, u"Call"_s);
        EXPECT_FALSE(add(typed).isEmpty());
        EXPECT_EQ(form.field(u"title"_s).text(), u"Call"_s) << "what was typed stays";
    }
    EXPECT_EQ(add({ { u"title"_s, u"Call"_s }, { u"from"_s, u"9:05"_s }, { u"place"_s, u"https://meet.example/a"_s } }),
        QString());
    EXPECT_FALSE(form.isOpen());
    ASSERT_TRUE(awaitShown("Call"));
    EXPECT_EQ(view.card().title, u"Call"_s);
    EXPECT_EQ(view.card().when, u"Thu 8 Oct, 09:05–10:05"_s);
    EXPECT_TRUE(view.tiles()->layout().blocks.first().joinable) << "from ten minutes before";
    view.join(view.selected());
    EXPECT_EQ(desktop.opened, QList<QUrl> { QUrl(u"https://meet.example/a"_s) });
    view.step(20); // outside the mirrored range
    EXPECT_TRUE(view.tiles()->layout().blocks.isEmpty());
    EXPECT_EQ(add({ { u"title"_s, u"Far"_s }, { u"day"_s, u"2027-03-01"_s } }), QString());
    EXPECT_TRUE(awaitShown("Far"));
    view.today();
    view.selectNext(1);
    EXPECT_EQ(view.card().title, u"Call"_s);

    EXPECT_EQ(view.title(), u"5 – 11 October 2026"_s);
    UpcomingMeetings meetings({ services.store, services.prep, desktop, m_centre });
    ASSERT_EQ(meetings.lines().size(), 1);
    EXPECT_TRUE(meetings.headline().startsWith(u"Next meeting in "_s));
}

}
