#pragma once

#include "Foundation/Literals.h"
#include "Foundation/Result.h"
#include "Platform/CalendarSource.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QHash>

namespace corvane {

/// A calendar of Evolution Data Server, as reported when it was opened.
struct EvolutionCalendar {
    QString path; ///< of its object
    QString service;
    bool writable = false;
};

/// The key file of a source: its groups with their keys.
using EvolutionKeys = QHash<QString, QHash<QString, QString>>;
EvolutionKeys evolutionKeys(const QString& data);

/// Blocking calls to Evolution Data Server. On any thread, but one at a time. An opened calendar stays open for the
/// lifetime of the connection.
class EvolutionService {
public:
    EvolutionService(const QDBusConnection& bus, int answerMs); ///< how long one call waits

    /// From here on all calls share five seconds, and after one timed out the others fail at once.
    void begin();
    bool isSilent() const { return m_silent; }

    /// The enabled calendar sources, by id.
    Result<QHash<QString, CalendarInfo>> calendars();
    Result<QStringList> taskLists(); ///< ids of the enabled task lists; `objects` takes them, too
    Result<QString> revision(const QString& source); ///< changes whenever the calendar changes
    Result<QStringList> objects(const QString& source, const QString& query); ///< VEVENT or VTODO components
    Result<QString> object(const QString& source, const QString& uid);
    Result<QString> zone(const QString& source, const QString& name); ///< a VTIMEZONE component
    Result<void> create(const QString& source, const QString& component);
    Result<void> modify(const QString& source, const QString& component);
    Result<void> remove(const QString& source, const QString& uid);
    Result<void> receive(const QString& source, const QString& calendar);
    bool isWritable(const QString& source);

    void forget() { m_open.clear(); } ///< the service was restarted

private:
    Result<QDBusMessage> call(const QDBusMessage& message, bool* gone = nullptr);
    Result<QHash<QString, CalendarInfo>> sourcesOf(const QString& group); ///< of their description
    Result<EvolutionCalendar> open(const QString& source);
    Result<QDBusMessage> ask(
        const QString& source, const QString& interface, const QString& method, const QVariantList& arguments);
    Result<QString> text(
        const QString& source, const QString& interface, const QString& method, const QVariantList& arguments);
    Result<void> order(const QString& source, const QString& method, const QVariantList& arguments);

    QDBusConnection m_bus;
    const int m_answerMs;
    QDeadlineTimer m_deadline;
    bool m_silent = false;
    QStringList m_taskLists; ///< as last reported
    QHash<QString, EvolutionCalendar> m_open; ///< by source
};

/// A calendar object in the service's format.
struct EvolutionObjectId {
    QString uid;
    QString recurrence;
};
QDBusArgument& operator<<(QDBusArgument& argument, const EvolutionObjectId& id);
const QDBusArgument& operator>>(const QDBusArgument& argument, EvolutionObjectId& id);

namespace evolution {

inline const QString sources = u"org.gnome.evolution.dataserver.Sources5"_s;
inline const QString calendars = u"org.gnome.evolution.dataserver.Calendar8"_s;
inline const QString calendarInterface = u"org.gnome.evolution.dataserver.Calendar"_s;
inline const QString propertiesInterface = u"org.freedesktop.DBus.Properties"_s;

}

}

Q_DECLARE_METATYPE(corvane::EvolutionObjectId)
