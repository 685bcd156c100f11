#pragma once

#include "Platform/CalendarSource.h"
#include "Platform/Linux/Calendar/ExpandedIcs.h"
#include "Platform/Linux/Calendar/FolderWatch.h"

#include <QHash>
#include <QSet>
#include <mutex>

namespace corvane {

/// Calendars in folders with one event per file, as vdirsyncer and khal keep them: "{data home}/calendars/*/*.ics", and
/// each additional folder with its own files and those one level below. Only changed files are read again.
class FolderCalendars final : public CalendarSource {
public:
    /// A leading "~/" of an additional folder is `home`.
    FolderCalendars(const QString& dataHome, const QString& home);

    CalendarAccess access(const CalendarPlaces& places) const override;
    CalendarReading read(const CalendarPlaces& places, qint64 fromMs, qint64 toMs) override;
    CalendarReading readKnown(const CalendarPlaces& places, qint64 fromMs, qint64 toMs) override;
    Result<void> add(const CalendarPlaces& places, const QString& calendarId, const NewCalendarEntry& entry) override;
    Result<void> remove(const CalendarPlaces& places, const QString& calendarId, const QString& uid) override;
    Result<CalendarImport> import(
        const CalendarPlaces& places, const QString& calendarId, const QByteArray& ics) override;
    Result<QByteArray> exported(const CalendarPlaces& places, const QString& calendarId, const QString& uid) override;
    int openTasks(const CalendarPlaces& places) override;
    Result<void> makeCalendar(const QString& title) override;
    bool hasService() const override { return false; }
    void watch(const CalendarPlaces& places) override;

private:
    /// Identifies the version of a file that was read.
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

    QStringList roots(const CalendarPlaces& places) const; ///< including missing ones
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
    QByteArray m_zone; ///< the time zone they were read in
    QHash<QString, Stamp> m_written; ///< by path: what `add` wrote
};

}
