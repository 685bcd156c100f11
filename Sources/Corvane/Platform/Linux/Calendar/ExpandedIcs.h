#pragma once

#include "Platform/Linux/Calendar/IcsFile.h"

namespace corvane {

/// A file with the expanded instances of its series, cached for the next query. Not thread-safe.
class ExpandedIcs {
public:
    explicit ExpandedIcs(std::shared_ptr<const IcsFile> file = {})
        : m_file(std::move(file))
    {
    }

    const IcsFile* file() const { return m_file.get(); } ///< null if it is unreadable

    /// Adds the instances that overlap [fromMs, toMs).
    void addTo(QList<CalendarEntry>& entries, const QString& calendarId, qint64 fromMs, qint64 toMs);

    /// The same for a page of the calendar; the pages around it are expanded along with it.
    void addPageTo(QList<CalendarEntry>& entries, const QString& calendarId, qint64 fromMs, qint64 toMs);

private:
    /// The instances that overlap [fromMs, toMs).
    struct Stretch {
        qint64 fromMs = 0;
        qint64 toMs = 0;
        QList<CalendarEntry> entries;

        bool holds(qint64 from, qint64 to) const { return from >= fromMs && to <= toMs; }
        void addTo(QList<CalendarEntry>& found, qint64 from, qint64 to) const;
    };
    Stretch follow(const QString& calendarId, qint64 fromMs, qint64 toMs) const;

    std::shared_ptr<const IcsFile> m_file;
    Stretch m_ahead;
    Stretch m_around;
};

}
