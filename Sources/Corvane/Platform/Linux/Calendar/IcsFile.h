#pragma once

#include "Platform/CalendarSource.h"

#include <memory>

namespace corvane {

/// A parsed calendar file: single events, and series with their exceptions. Only this class uses libical on files.
/// Reading one is safe on any thread; readers wait for each other.
class IcsFile {
public:
    /// `zone` names the time zone of floating times. Nothing if the text is not a calendar.
    static std::shared_ptr<const IcsFile> read(const QByteArray& text, const QByteArray& zone);

    ~IcsFile();

    /// Instances that overlap [fromMs, toMs), without a calendar id. A series that recurs more often than hourly, or
    /// would take too long to expand, yields its first instance only; others yield at most 2,000.
    QList<CalendarEntry> entries(qint64 fromMs, qint64 toMs) const;

    const QStringList& uids() const; ///< of its events, without duplicates

private:
    IcsFile();

    struct State;
    std::unique_ptr<State> m_state;
};

}
