#include "Calendar/NewEventForm.h"

#include "Foundation/Literals.h"

#include <QDateTime>

namespace corvane {

namespace {

const QString titleField = u"title"_s;
const QString dayField = u"day"_s;
const QString fromField = u"from"_s;
const QString toField = u"to"_s;
const QString placeField = u"place"_s;
const QString notesField = u"notes"_s;

constexpr int usualSeconds = 3600;

const QList<FieldSpec>& fields()
{
    static const QList<FieldSpec> all {
        { .id = titleField, .label = u"Title"_s },
        { .id = dayField, .label = u"Day"_s, .narrow = true },
        { .id = fromField, .label = u"From"_s, .placeholder = u"all day"_s, .narrow = true },
        { .id = toField, .label = u"To"_s, .placeholder = u"an hour later"_s, .narrow = true },
        { .id = placeField, .label = u"Place or link"_s },
        { .id = notesField, .label = u"Notes"_s },
    };
    return all;
}

QTime timeOf(const QString& text)
{
    return QTime::fromString(text, u"H:mm"_s);
}

}

NewEventForm::NewEventForm(std::function<QString(const NewCalendarEntry&)> add, QObject* parent)
    : Form(parent)
    , m_add(std::move(add))
{
}

QString NewEventForm::title() const
{
    return u"New event"_s;
}

QString NewEventForm::buttonLabel() const
{
    return u"Add"_s;
}

void NewEventForm::open(const QDate& day, const QTime& from)
{
    setFields(fields(), { { dayField, day.toString(Qt::ISODate) }, { fromField, from.toString(u"HH:mm"_s) } });
    m_isOpen = true;
    m_error.clear();
    Q_EMIT changed();
}

Result<NewCalendarEntry> NewEventForm::entry() const
{
    const auto typed = [this](const QString& id) {
        return field(id).trimmed();
    };
    const QDate day = QDate::fromString(typed(dayField), Qt::ISODate);
    const bool wholeDay = typed(fromField).isEmpty();
    const QTime start = timeOf(typed(fromField));
    const QTime end = typed(toField).isEmpty() ? start.addSecs(usualSeconds) : timeOf(typed(toField));
    if (typed(titleField).isEmpty())
        return failure(u"Give the event a title."_s);
    if (!day.isValid())
        return failure(u"Enter the day like 2026-11-23."_s);
    if (!wholeDay && (!start.isValid() || !end.isValid()))
        return failure(u"Enter times like 9:30, or leave them empty for an all-day event."_s);
    if (!wholeDay && end <= start)
        return failure(u"The event ends before it starts."_s);
    NewCalendarEntry entry;
    entry.title = typed(titleField);
    entry.location = typed(placeField);
    entry.notes = typed(notesField);
    entry.startMs = (wholeDay ? day.startOfDay() : QDateTime(day, start)).toMSecsSinceEpoch();
    entry.endMs = (wholeDay ? day.addDays(1).startOfDay() : QDateTime(day, end)).toMSecsSinceEpoch();
    entry.allDay = wholeDay;
    return entry;
}

void NewEventForm::submit()
{
    if (!m_isOpen)
        return;
    const auto wanted = entry();
    m_error = wanted ? m_add(*wanted) : wanted.error().message;
    if (m_error.isEmpty())
        return close();
    Q_EMIT changed();
}

void NewEventForm::close()
{
    if (!m_isOpen)
        return;
    m_isOpen = false;
    setFields({});
    Q_EMIT changed();
}

}
