#pragma once

#include "Platform/CalendarSource.h"
#include "Platform/Linux/Calendar/ExpandedIcs.h"
#include "Platform/Linux/Calendar/FolderWatch.h"

#include <QHash>
#include <QSet>
#include <mutex>

namespace corvane {

/// Calendars in folders of files, an event each, as vdirsyncer and khal keep them: "{data home}/calendars/*/*.ics", and
/// each further folder with its own files and those one level below. A file is read again only once it changed.
class FolderCalendars final : public CalendarSource {
public:
    /// "~/" at the start of a further folder is `home`.
    FolderCalendars(const QString& dataHome, const QString& home);

    CalendarAccess access(const CalendarPlaces& places) const override;
    CalendarReading read(const CalendarPlaces& places, qint64 fromMs, qint64 toMs) override;
    Result<void> add(const CalendarPlaces& places, const QString& calendarId, const NewCalendarEntry& entry) override;
    Result<void> remove(const CalendarPlaces& places, const QString& calendarId, const QString& uid) override;
    Result<CalendarImport> import(
        const CalendarPlaces& places, const QString& calendarId, const QByteArray& ics) override;
    Result<QByteArray> exported(const CalendarPlaces& places, const QString& calendarId, const QString& uid) override;
    int openTasks(const CalendarPlaces& places) const override;
    Result<void> makeCalendar(const QString& title) override;
    bool hasService() const override { return false; }
    void watch(const CalendarPlaces& places) override;

private:
    /// What shows that a file is the one that was read.
    struct Stamp {
        qint64 modifiedNs = 0;
        qint64 size = 0;
        quint64 inode = 0;

        bool operator==(const Stamp&) const = default;
    };
    struct File {
        Stamp stamp;
        ExpandedIcs calendar;
    };
    using Files = QHash<QByteArray, File>; ///< of a folder, by name

    struct Folder {
        QString path;
        CalendarInfo info;
    };

    QStringList roots(const CalendarPlaces& places) const; ///< also those that are not there
    QList<Folder> folders(const CalendarPlaces& places) const;
    Result<Folder> folder(const CalendarPlaces& places, const QString& calendarId) const;
    void useZone();
    Files update(const Folder& folder, QStringList& troubles);
    static Stamp stampOf(const QString& path);
    QHash<QString, QByteArray> filesByUid(const Folder& folder);

    const QString m_dataHome;
    const QString m_home;
    FolderWatch m_watch;

    std::mutex m_mutex; ///< for all below
    QHash<QString, Files> m_read; ///< by folder
    QByteArray m_zone; ///< in which they were read
    QHash<QString, Stamp> m_written; ///< by path: what `add` wrote
};

}
