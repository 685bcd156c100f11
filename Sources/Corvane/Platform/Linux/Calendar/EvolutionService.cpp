#include "Platform/Linux/Calendar/EvolutionService.h"

#include "Foundation/Literals.h"
#include "Platform/Linux/Bus/BusObject.h"

#include <QDBusError>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QMap>
#include <QRegularExpression>

namespace corvane {

namespace {

constexpr int allCallsMs = 5000;
constexpr uint noFlags = 0;
const QString wholeSeries = u"all"_s;

const BusObject sourceManager { evolution::sources, u"/org/gnome/evolution/dataserver/SourceManager"_s,
    u"org.freedesktop.DBus.ObjectManager"_s };
const BusObject factory { evolution::calendars, u"/org/gnome/evolution/dataserver/CalendarFactory"_s,
    u"org.gnome.evolution.dataserver.CalendarFactory"_s };

using Interfaces = QMap<QString, QVariantMap>;

/// A space for each kind of white space.
QString unescaped(const QString& value)
{
    static const QRegularExpression escaped(u"\\\\(.)"_s);
    QString plain;
    qsizetype at = 0;
    for (auto match = escaped.globalMatch(value); match.hasNext();) {
        const QRegularExpressionMatch each = match.next();
        plain += value.sliced(at, each.capturedStart() - at) + (each.captured(1) == u"\\" ? u'\\' : u' ');
        at = each.capturedEnd();
    }
    return plain + value.sliced(at);
}

std::unexpected<Error> noAnswer()
{
    return failure(u"Evolution's calendars do not answer."_s);
}

/// The object no longer exists: the service was restarted, and its calendars must be opened again.
bool isGone(const QDBusError& error)
{
    return error.type() == QDBusError::UnknownObject || error.type() == QDBusError::UnknownMethod
        || error.type() == QDBusError::ServiceUnknown || error.type() == QDBusError::UnknownInterface;
}

}

QDBusArgument& operator<<(QDBusArgument& argument, const EvolutionObjectId& id)
{
    argument.beginStructure();
    argument << id.uid << id.recurrence;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, EvolutionObjectId& id)
{
    argument.beginStructure();
    argument >> id.uid >> id.recurrence;
    argument.endStructure();
    return argument;
}

EvolutionKeys evolutionKeys(const QString& data)
{
    EvolutionKeys keys;
    QString group;
    for (const QString& line : data.split(u'\n')) {
        const qsizetype equals = line.indexOf(u'=');
        if (line.startsWith(u'[') && line.trimmed().endsWith(u']'))
            group = line.trimmed().sliced(1).chopped(1);
        else if (equals > 0 && !line.startsWith(u'#'))
            keys[group].insert(line.first(equals).trimmed(), unescaped(line.sliced(equals + 1).trimmed()));
        if (!group.isEmpty())
            keys[group]; // an empty group is valid, too
    }
    return keys;
}

EvolutionService::EvolutionService(const QDBusConnection& bus, int answerMs)
    : m_bus(bus)
    , m_answerMs(answerMs)
{
    qDBusRegisterMetaType<EvolutionObjectId>();
    qDBusRegisterMetaType<QList<EvolutionObjectId>>();
}

void EvolutionService::begin()
{
    m_deadline.setRemainingTime(allCallsMs);
    m_silent = false;
}

Result<QDBusMessage> EvolutionService::call(const QDBusMessage& message, bool* gone)
{
    if (m_silent || m_deadline.hasExpired() || !m_bus.isConnected())
        return noAnswer();
    const qint64 left = std::min<qint64>(m_answerMs, m_deadline.remainingTime() + 1);
    const QDBusMessage reply = m_bus.call(message, QDBus::Block, int(left));
    if (reply.type() == QDBusMessage::ReplyMessage)
        return reply;
    const QDBusError error(reply);
    if (gone)
        *gone = isGone(error);
    m_silent = error.type() == QDBusError::NoReply || error.type() == QDBusError::TimedOut
        || error.type() == QDBusError::Timeout;
    return m_silent ? noAnswer() : failure(u"Evolution: "_s + error.message());
}

Result<QHash<QString, CalendarInfo>> EvolutionService::calendars()
{
    return sourcesOf(u"Calendar"_s);
}

Result<QStringList> EvolutionService::taskLists()
{
    const auto lists = sourcesOf(u"Task List"_s);
    if (!lists)
        return std::unexpected(lists.error());
    m_taskLists = lists->keys();
    return m_taskLists;
}

Result<QHash<QString, CalendarInfo>> EvolutionService::sourcesOf(const QString& group)
{
    const auto reply = call(sourceManager.method(u"GetManagedObjects"_s));
    if (!reply)
        return std::unexpected(reply.error());
    if (reply->signature() != u"a{oa{sa{sv}}}")
        return noAnswer();
    QMap<QDBusObjectPath, Interfaces> objects;
    reply->arguments().constFirst().value<QDBusArgument>() >> objects;
    QHash<QString, CalendarInfo> found;
    for (const Interfaces& interfaces : std::as_const(objects)) {
        const QVariantMap source = interfaces.value(u"org.gnome.evolution.dataserver.Source"_s);
        const EvolutionKeys keys = evolutionKeys(source.value(u"Data"_s).toString());
        const auto about = keys.value(u"Data Source"_s);
        const auto kind = keys.constFind(group);
        if (kind == keys.cend() || kind->value(u"BackendName"_s).isEmpty() || about.value(u"Enabled"_s) == u"false"
            || kind->value(u"Enabled"_s) == u"false")
            continue;
        const QString uid = source.value(u"UID"_s).toString();
        found.insert(
            uid, { uid, about.value(u"DisplayName"_s), kind->value(u"Color"_s).left(7), u"Evolution"_s, false });
    }
    return found;
}

Result<EvolutionCalendar> EvolutionService::open(const QString& source)
{
    if (const auto known = m_open.constFind(source); known != m_open.cend())
        return *known;
    const QString method = m_taskLists.contains(source) ? u"OpenTaskList"_s : u"OpenCalendar"_s;
    const auto opened = call(factory.method(method, { source }));
    if (!opened)
        return std::unexpected(opened.error());
    if (opened->signature() != u"ss")
        return noAnswer();
    EvolutionCalendar calendar { opened->arguments().at(0).toString(), opened->arguments().at(1).toString() };
    const BusObject object { calendar.service, calendar.path, evolution::calendarInterface };
    if (const auto ready = call(object.method(u"Open"_s)); !ready)
        return std::unexpected(ready.error());
    const BusObject properties { calendar.service, calendar.path, evolution::propertiesInterface };
    const auto writable = call(properties.method(u"Get"_s, { evolution::calendarInterface, u"Writable"_s }));
    calendar.writable = writable && firstValue(*writable).toBool();
    m_open.insert(source, calendar);
    return calendar;
}

/// If the service was restarted, the calendar is opened once more.
Result<QDBusMessage> EvolutionService::ask(
    const QString& source, const QString& interface, const QString& method, const QVariantList& arguments)
{
    for (bool again = false;; again = true) {
        const auto calendar = open(source);
        if (!calendar)
            return std::unexpected(calendar.error());
        const BusObject object { calendar->service, calendar->path, interface };
        bool gone = false;
        const auto reply = call(object.method(method, arguments), &gone);
        if (reply || !gone || again)
            return reply;
        m_open.remove(source);
    }
}

Result<QString> EvolutionService::text(
    const QString& source, const QString& interface, const QString& method, const QVariantList& arguments)
{
    const auto reply = ask(source, interface, method, arguments);
    if (!reply)
        return std::unexpected(reply.error());
    return firstValue(*reply).toString();
}

Result<void> EvolutionService::order(const QString& source, const QString& method, const QVariantList& arguments)
{
    const auto reply = ask(source, evolution::calendarInterface, method, arguments);
    return reply ? Result<void>() : std::unexpected(reply.error());
}

bool EvolutionService::isWritable(const QString& source)
{
    return open(source).value_or(EvolutionCalendar()).writable;
}

Result<QString> EvolutionService::revision(const QString& source)
{
    return text(source, evolution::propertiesInterface, u"Get"_s, { evolution::calendarInterface, u"Revision"_s });
}

Result<QStringList> EvolutionService::objects(const QString& source, const QString& query)
{
    const auto reply = ask(source, evolution::calendarInterface, u"GetObjectList"_s, { query });
    if (!reply)
        return std::unexpected(reply.error());
    return firstValue(*reply).toStringList();
}

Result<QString> EvolutionService::object(const QString& source, const QString& uid)
{
    return text(source, evolution::calendarInterface, u"GetObject"_s, { uid, QString(u""_s) });
}

Result<QString> EvolutionService::zone(const QString& source, const QString& name)
{
    return text(source, evolution::calendarInterface, u"GetTimezone"_s, { name });
}

Result<void> EvolutionService::create(const QString& source, const QString& component)
{
    return order(source, u"CreateObjects"_s, { QStringList { component }, noFlags });
}

Result<void> EvolutionService::modify(const QString& source, const QString& component)
{
    return order(source, u"ModifyObjects"_s, { QStringList { component }, wholeSeries, noFlags });
}

Result<void> EvolutionService::remove(const QString& source, const QString& uid)
{
    const QList<EvolutionObjectId> ids { { uid, u""_s } };
    return order(source, u"RemoveObjects"_s, { QVariant::fromValue(ids), wholeSeries, noFlags });
}

Result<void> EvolutionService::receive(const QString& source, const QString& calendar)
{
    return order(source, u"ReceiveObjects"_s, { calendar, noFlags });
}

}
