#pragma once

#include "Platform/Linux/Calendar/IcsFile.h"

namespace corvane {

/// A file with what was followed of its series, which is kept for the next question. Not for two threads at once.
class ExpandedIcs {
public:
    explicit ExpandedIcs(std::shared_ptr<const IcsFile> file = {})
        : m_file(std::move(file))
    {
    }

    const IcsFile* file() const { return m_file.get(); } ///< null where it does not read

    /// Adds what touches [fromMs, toMs).
    void addTo(QList<CalendarEntry>& entries, const QString& calendarId, qint64 fromMs, qint64 toMs);

private:
    std::shared_ptr<const IcsFile> m_file;
    qint64 m_fromMs = 0; ///< what `m_entries` cover
    qint64 m_toMs = 0;
    QList<CalendarEntry> m_entries;
};

}
