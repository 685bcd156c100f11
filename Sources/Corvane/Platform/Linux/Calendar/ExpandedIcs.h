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

private:
    std::shared_ptr<const IcsFile> m_file;
    qint64 m_fromMs = 0; ///< the range that `m_entries` covers
    qint64 m_toMs = 0;
    QList<CalendarEntry> m_entries;
};

}
