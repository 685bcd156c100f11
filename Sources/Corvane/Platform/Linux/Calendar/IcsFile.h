#pragma once

#include "Platform/CalendarSource.h"

#include <memory>

namespace corvane {

/// A calendar file that was read: single events, and series with their exceptions. What libical makes of files stands
/// here alone. Reading one is safe on any thread; they wait for each other.
class IcsFile {
public:
    /// `zone` is the name of the zone for times that name none. Nothing where the text is no calendar.
    static std::shared_ptr<const IcsFile> read(const QByteArray& text, const QByteArray& zone);

    ~IcsFile();

    /// What touches [fromMs, toMs), without the id of a calendar. A series that recurs more often than hourly, or would
    /// take too long to follow, shows its first instance only; of others there are at most 2,000.
    QList<CalendarEntry> entries(qint64 fromMs, qint64 toMs) const;

    const QStringList& uids() const; ///< of its events, each once

private:
    IcsFile();

    struct State;
    std::unique_ptr<State> m_state;
};

}
