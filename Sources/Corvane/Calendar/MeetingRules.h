#pragma once

#include "Store/Work/CalendarQueries.h"

#include <QUrl>

namespace corvane {

// What counts as a meeting, where to join it, and how its time is shown. All times in milliseconds since the epoch.

bool isPlaceholderBlock(const CalEvent& event); ///< blocked time, not a meeting

/// An event with other people, or with words that imply them. Declined events are not meetings.
bool isMeetingCandidate(const CalEvent& event);

std::optional<QUrl> meetingURL(const CalEvent& event); ///< of a meeting service, else the first web link

std::optional<QUrl> joinURL(const CalEvent& event); ///< the same, if a browser may open it

QString compactTitle(const CalEvent& event); ///< 32 characters at most

/// The first candidate that has not ended.
std::optional<CalEvent> nextMeetingCandidate(const QList<CalEvent>& events, qint64 nowMs);

QString nextMeetingHeadline(const CalEvent& event, qint64 nowMs); ///< "Next meeting in 5m"
QString relativeStart(qint64 ms, qint64 fromMs); ///< "in 5m", "now", "started"
QString compactCountdown(qint64 toMs, qint64 fromMs); ///< "5m", "Now"

}
