#include "Platform/Linux/Calendar/IcsValues.h"

#include "Foundation/Literals.h"

#include <QTimeZone>
#include <utility>
#include <vector>

namespace corvane::ics {

namespace {

constexpr int mostPeople = 500;
constexpr qsizetype longestZone = 256;
constexpr qsizetype mostRemembered = 500; ///< zones
constexpr qint64 second = 1000;
constexpr qsizetype longestNotes = 20'000;
constexpr int firstYear = 1900;
constexpr int lastYear = 2200;

/// The rules of a zone are yearly; any other could be expanded without end.
void makeSafe(icalcomponent* zone)
{
    std::vector<icalproperty*> unsafe;
    forEachComponent(zone, ICAL_ANY_COMPONENT, [&](icalcomponent* part) {
        forEachProperty(part, ICAL_RRULE_PROPERTY, [&](icalproperty* property) {
            const icalrecurrencetype rule = icalproperty_get_rrule(property);
            if (rule.freq != ICAL_YEARLY_RECURRENCE || rule.by_hour[0] != ICAL_RECURRENCE_ARRAY_MAX
                || rule.by_minute[0] != ICAL_RECURRENCE_ARRAY_MAX || rule.by_second[0] != ICAL_RECURRENCE_ARRAY_MAX)
                unsafe.push_back(property);
        });
        for (icalproperty* property : std::exchange(unsafe, {})) {
            icalcomponent_remove_property(part, property);
            icalproperty_free(property);
        }
    });
}

QString addressOf(const char* value)
{
    const QString address = QString::fromUtf8(value).trimmed();
    return address.startsWith("mailto:"_L1, Qt::CaseInsensitive) ? address.sliced(7).left(longestTitle) : QString();
}

CalendarPerson personOf(icalproperty* property, const char* address)
{
    CalendarPerson person { {}, addressOf(address) };
    if (icalparameter* const name = icalproperty_get_first_parameter(property, ICAL_CN_PARAMETER))
        person.name = textOf(icalparameter_get_cn(name), longestTitle);
    if (icalparameter* const email = icalproperty_get_first_parameter(property, ICAL_EMAIL_PARAMETER);
        email && person.email.isEmpty())
        person.email = textOf(icalparameter_get_email(email), longestTitle);
    if (icalparameter* const kind = icalproperty_get_first_parameter(property, ICAL_CUTYPE_PARAMETER)) {
        const icalparameter_cutype type = icalparameter_get_cutype(kind);
        person.room = type == ICAL_CUTYPE_ROOM || type == ICAL_CUTYPE_RESOURCE;
    }
    if (icalparameter* const answer = icalproperty_get_first_parameter(property, ICAL_PARTSTAT_PARAMETER))
        person.declined = icalparameter_get_partstat(answer) == ICAL_PARTSTAT_DECLINED;
    if (person.name.isEmpty())
        person.name = person.email;
    return person;
}

}

std::mutex& library()
{
    static std::mutex mutex;
    return mutex;
}

QString textOf(const char* value, qsizetype limit)
{
    return QString::fromUtf8(value).left(limit);
}

namespace {

icaltimezone* findZone(QByteArray zone)
{
    if (const auto windows = QTimeZone::windowsIdToDefaultIanaId(zone); !windows.isEmpty())
        zone = windows;
    // Some programs prefix the zone's name: "/example.org/2023_1/Europe/Berlin".
    for (qsizetype at = 0; at >= 0 && at < zone.size(); at = zone.indexOf('/', at + 1)) {
        const QByteArray rest = zone.mid(zone[at] == '/' ? at + 1 : at);
        if (icaltimezone* const found = rest.isEmpty() ? nullptr : icaltimezone_get_builtin_timezone(rest.constData()))
            return found;
    }
    return nullptr;
}

}

icaltimezone* knownZone(const char* name)
{
    // Thousands of files use the same few zones, and a failed lookup costs as much as a successful one.
    static QHash<QByteArray, icaltimezone*> remembered;
    const QByteArray zone(name);
    if (zone.size() > longestZone)
        return nullptr;
    const auto known = remembered.constFind(zone);
    if (known != remembered.cend())
        return *known;
    if (remembered.size() >= mostRemembered)
        remembered.clear();
    return *remembered.insert(zone, findZone(zone));
}

void settleZones(icalcomponent* calendar)
{
    std::vector<icalcomponent*> known;
    forEachComponent(calendar, ICAL_VTIMEZONE_COMPONENT, [&](icalcomponent* zone) {
        icalproperty* const name = icalcomponent_get_first_property(zone, ICAL_TZID_PROPERTY);
        const char* const id = name ? icalproperty_get_tzid(name) : nullptr;
        if (!id || knownZone(id))
            known.push_back(zone);
        else
            makeSafe(zone);
    });
    for (icalcomponent* zone : known) {
        icalcomponent_remove_component(calendar, zone);
        icalcomponent_free(zone);
    }
}

namespace {

const icaltimezone* zoneOf(icalproperty* property, icalcomponent* calendar)
{
    icalparameter* const parameter = icalproperty_get_first_parameter(property, ICAL_TZID_PARAMETER);
    const char* const id = parameter ? icalparameter_get_tzid(parameter) : nullptr;
    if (!id)
        return nullptr;
    if (const icaltimezone* const zone = knownZone(id))
        return zone;
    return icalcomponent_get_timezone(calendar, id);
}

}

bool isUsable(const icaltimetype& time)
{
    return !icaltime_is_null_time(time) && icaltime_is_valid_time(time) && time.year >= firstYear
        && time.year <= lastYear;
}

icaltimetype timeOf(icalproperty* property, icalcomponent* calendar)
{
    const icalvalue* const value = icalproperty_get_value(property);
    icaltimetype time = icaltime_null_time();
    if (icalproperty_isa(property) == ICAL_RDATE_PROPERTY) {
        const icaldatetimeperiodtype moment = icalproperty_get_rdate(property);
        time = icaltime_is_null_time(moment.time) ? moment.period.start : moment.time;
    } else if (icalvalue_isa(value) == ICAL_DATE_VALUE)
        time = icalvalue_get_date(value);
    else if (icalvalue_isa(value) == ICAL_DATETIME_VALUE)
        time = icalvalue_get_datetime(value);
    if (!icaltime_is_null_time(time) && !icaltime_is_utc(time) && !time.is_date)
        time.zone = zoneOf(property, calendar);
    return time;
}

icaltimetype timeOf(icalcomponent* event, icalproperty_kind kind, icalcomponent* calendar)
{
    icalproperty* const property = icalcomponent_get_first_property(event, kind);
    return property ? timeOf(property, calendar) : icaltime_null_time();
}

qint64 msOf(const icaltimetype& time, icaltimezone* local)
{
    auto* const zone = time.zone && !time.is_date ? const_cast<icaltimezone*>(time.zone) : local;
    return qint64(icaltime_as_timet_with_zone(time, zone)) * second;
}

QList<CalendarPerson> peopleOf(icalcomponent* event)
{
    QList<CalendarPerson> people;
    if (icalproperty* const organizer = icalcomponent_get_first_property(event, ICAL_ORGANIZER_PROPERTY)) {
        if (const CalendarPerson person = personOf(organizer, icalproperty_get_organizer(organizer));
            !person.name.isEmpty())
            people.append(person);
    }
    const QString organizer = people.isEmpty() ? QString() : people.first().email.toLower();
    forEachProperty(event, ICAL_ATTENDEE_PROPERTY, [&](icalproperty* property) {
        const CalendarPerson person = personOf(property, icalproperty_get_attendee(property));
        if (!organizer.isEmpty() && person.email.toLower() == organizer)
            people.first() = person;
        else if (!person.name.isEmpty() && people.size() < mostPeople)
            people.append(person);
    });
    return people;
}

QString notesOf(icalcomponent* event)
{
    QString notes = textOf(icalcomponent_get_description(event), longestNotes);
    const auto add = [&](const QString& link) {
        if (link.startsWith("http"_L1, Qt::CaseInsensitive) && !notes.contains(link))
            notes += (notes.isEmpty() ? QString() : u"\n"_s) + link.left(longestTitle);
    };
    forEachProperty(event, ICAL_URL_PROPERTY,
        [&](icalproperty* property) { add(QString::fromUtf8(icalproperty_get_url(property))); });
    forEachProperty(event, ICAL_X_PROPERTY, [&](icalproperty* property) {
        const QByteArrayView name(icalproperty_get_x_name(property));
        if (name == "X-GOOGLE-CONFERENCE" || name == "X-MICROSOFT-SKYPETEAMSMEETINGURL")
            add(QString::fromUtf8(icalproperty_get_x(property)));
    });
    return notes;
}

}
