#include "Calendar/NewEventForm.h"

#include "Calendar/CalendarTest.h"

#include <QSignalSpy>

namespace corvane {

namespace {

class NewEvent : public testing::Test {
protected:
    using Typed = QHash<QString, QString>;

    /// Opens the form on 8 October at nine, fills it in and submits it. Returns its message.
    QString add(const Typed& typed)
    {
        form.open(QDate(2026, 10, 8), QTime(9, 0));
        form.field(u"title"_s).type(u" Call "_s);
        for (const auto& [id, text] : typed.asKeyValueRange())
            form.field(id).type(text);
        form.submit();
        return form.message();
    }

    std::optional<NewCalendarEntry> added;
    QString refusal;
    NewEventForm form { [this](const NewCalendarEntry& entry) {
        added = entry;
        return refusal;
    } };
};

}

TEST_F(NewEvent, whatIsTypedBecomesAnEvent)
{
    EXPECT_EQ(form.title() + u'|' + form.buttonLabel(), "New event|Add");
    EXPECT_EQ(add({ { u"place"_s, u" Kiln "_s }, { u"notes"_s, u" bring tea "_s } }), "");
    EXPECT_FALSE(form.isOpen());
    EXPECT_EQ(form.fieldCount(), 0);
    EXPECT_EQ(added->title + u'|' + added->location + u'|' + added->notes, "Call|Kiln|bring tea");
    EXPECT_EQ(added->startMs, at("2026-10-08 09:00"));
    EXPECT_EQ(added->endMs, at("2026-10-08 10:00")) << "an hour later";
    EXPECT_FALSE(added->allDay);
    EXPECT_EQ(add({ { u"from"_s, u"9:30"_s }, { u"to"_s, u"9:31"_s } }), "");
    EXPECT_EQ(added->endMs - added->startMs, 60'000);
    EXPECT_EQ(add({ { u"from"_s, u" "_s }, { u"day"_s, u"2026-10-25"_s } }), "");
    EXPECT_TRUE(added->allDay);
    EXPECT_EQ(added->startMs, at("2026-10-25 00:00"));
    EXPECT_EQ(added->endMs, at("2026-10-26 00:00")) << "a day of 25 hours";
}

TEST_F(NewEvent, whatCannotBeAnEventIsNamedAndStays)
{
    EXPECT_EQ(add({ { u"title"_s, u" "_s } }), "Give the event a title.");
    EXPECT_EQ(add({ { u"day"_s, u"8.10."_s } }), "Enter the day like 2026-11-23.");
    const QString times = u"Enter times like 9:30, or leave them empty for an all-day event."_s;
    EXPECT_EQ(add({ { u"from"_s, u"nine"_s } }), times);
    EXPECT_EQ(add({ { u"to"_s, u"ten"_s } }), times);
    EXPECT_EQ(add({ { u"to"_s, u"9:00"_s } }), "The event ends before it starts.");
    EXPECT_EQ(add({ { u"to"_s, u"8:59"_s } }), "The event ends before it starts.");
    EXPECT_FALSE(added);
    EXPECT_TRUE(form.isOpen());
    refusal = u"It is full."_s;
    const QSignalSpy changed(&form, &Form::changed);
    form.submit();
    EXPECT_EQ(form.message(), "The event ends before it starts.");
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(add({}), "It is full.");
    EXPECT_TRUE(form.isOpen());
    form.open(QDate(2026, 10, 8), QTime(9, 0));
    EXPECT_EQ(form.message(), "") << "of the last one";
    EXPECT_EQ(
        form.field(u"day"_s).text() + form.field(u"from"_s).text() + form.field(u"title"_s).text(), "2026-10-0809:00");
    auto before = changed.count();
    form.close();
    EXPECT_EQ(changed.count(), before + 1);
    added.reset();
    before = changed.count();
    form.close();
    form.submit();
    EXPECT_EQ(changed.count(), before) << "it is closed";
    EXPECT_FALSE(added);
}

}
