#include "Calendar/CalendarEdits.h"

#include "Calendar/CalendarStore.h"
#include "Foundation/BackgroundQueue.h"
#include "Foundation/Literals.h"
#include "Foundation/UserDefaults.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPointer>
#include <QRegularExpression>
#include <QSaveFile>
#include <algorithm>

namespace corvane {

namespace {

const QString defaultKey = u"nimb.defaultCalendar"_s;
constexpr qint64 largestImport = 16LL * 1024 * 1024;

template <typename Value>
void inBackground(CalendarStore& store, QObject* context, const std::function<Value()>& work,
    const std::function<void(const Value&)>& done)
{
    store.surroundings().background.run<Value>(
        work, [self = QPointer(&store), owner = QPointer(context), done](const Value& value) {
            if (self)
                self->refresh();
            if (self && owner)
                done(value);
        });
}

std::optional<CalendarInfo> writable(
    const QList<CalendarInfo>& calendars, const QString& chosen, const QString& title = {})
{
    const CalendarInfo* found = nullptr;
    for (const CalendarInfo& calendar : calendars) {
        if (!calendar.writable)
            continue;
        if (!title.isEmpty() && calendar.title == title)
            return calendar;
        if (!found || calendar.id == chosen)
            found = &calendar;
    }
    return found ? std::optional(*found) : std::nullopt;
}

QString imported(const CalendarImport& result)
{
    const QString added = result.added == 1 ? u"1 event was added."_s : u"%1 events were added."_s.arg(result.added);
    if (result.present == 0)
        return added;
    return added + (result.present == 1 ? u" 1 existed already."_s : u" %1 existed already."_s.arg(result.present));
}

}

QString defaultCalendar(const UserDefaults& defaults)
{
    return defaults.text(defaultKey).value_or(QString());
}

void setDefaultCalendar(CalendarStore& store, const QString& id)
{
    store.surroundings().defaults.setText(defaultKey, id);
    Q_EMIT store.changed();
}

std::optional<CalendarInfo> writableCalendar(const CalendarStore& store, const QString& title)
{
    return writable(store.calendars(), defaultCalendar(store.surroundings().defaults), title);
}

void addEvent(CalendarStore& store, const QString& calendarId, const NewCalendarEntry& entry, QObject* context,
    const std::function<void(const Result<QString>& eventId)>& done)
{
    inBackground<Result<QString>>(
        store, context,
        [&source = store.surroundings().source, places = store.places(), calendarId, entry]() -> Result<QString> {
            if (const auto added = source.add(places, calendarId, entry); !added)
                return std::unexpected(added.error());
            return calendarId + u':' + entry.uid;
        },
        done);
}

void takeBackEvent(CalendarStore& store, const QString& calendarId, const QString& uid, QObject* context,
    const std::function<void(const Result<void>&)>& done)
{
    inBackground<Result<void>>(
        store, context,
        [&source = store.surroundings().source, places = store.places(), calendarId, uid] {
            return source.remove(places, calendarId, uid);
        },
        done);
}

Result<QString> importFile(
    CalendarSource& source, const CalendarPlaces& places, const QString& chosen, const QString& path)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly))
        return failure(u"The file could not be read."_s);
    if (file.size() > largestImport)
        return failure(u"The file is larger than 16 MB."_s);
    const auto calendar = writable(source.read(places, 0, 0).calendars, chosen);
    if (!calendar)
        return failure(u"There is no calendar for new events."_s);
    const auto result = source.import(places, calendar->id, file.readAll());
    if (!result)
        return std::unexpected(result.error());
    return imported(*result);
}

void importEvents(CalendarStore& store, const QString& path, QObject* context,
    const std::function<void(const Result<QString>&)>& done)
{
    inBackground<Result<QString>>(
        store, context,
        [&source = store.surroundings().source, places = store.places(),
            chosen = defaultCalendar(store.surroundings().defaults),
            path] { return importFile(source, places, chosen, path); },
        done);
}

void exportEvent(CalendarStore& store, const QString& eventId, const QString& path, QObject* context,
    const std::function<void(const Result<QString>&)>& done)
{
    static const QRegularExpression instance(u":\\d{8}T\\d{6}Z$"_s);
    const auto calendar = std::ranges::find_if(
        store.calendars(), [&](const CalendarInfo& one) { return eventId.startsWith(one.id + u':'); });
    if (calendar == store.calendars().end())
        return done(failure(u"The event no longer exists."_s));
    const QString uid = eventId.sliced(calendar->id.size() + 1).remove(instance);
    inBackground<Result<QString>>(
        store, context,
        [&source = store.surroundings().source, places = store.places(), id = calendar->id, uid,
            path]() -> Result<QString> {
            const auto text = source.exported(places, id, uid);
            if (!text)
                return std::unexpected(text.error());
            QSaveFile file(path);
            if (!file.open(QIODevice::WriteOnly) || file.write(*text) != text->size() || !file.commit())
                return failure(u"The file could not be written."_s);
            return u"The event was saved."_s;
        },
        done);
}

Result<void> useFolder(CalendarStore& store, const QString& path)
{
    const QString absolute = path.startsWith("~/"_L1) ? QDir::homePath() + path.sliced(1) : path;
    if (!QDir::isAbsolutePath(absolute) || !QFileInfo(absolute).isDir())
        return failure(u"There is no such folder."_s);
    if (absolute.contains(u':'))
        return failure(u"The folder's name must not contain a colon."_s);
    CalendarPlaces places = store.places();
    if (!places.folders.contains(path))
        places.folders.append(path);
    store.setPlaces(places);
    store.requestAccess();
    return {};
}

void useService(CalendarStore& store, bool use)
{
    CalendarPlaces places = store.places();
    places.service = use;
    store.setPlaces(places);
    if (use)
        store.requestAccess();
}

void makeCalendar(CalendarStore& store, const QString& title)
{
    inBackground<Result<void>>(
        store, &store, [&source = store.surroundings().source, title] { return source.makeCalendar(title); },
        [&store](const Result<void>&) { store.requestAccess(); });
}

}
