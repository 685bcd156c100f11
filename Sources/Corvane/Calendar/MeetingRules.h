#pragma once

#include "Store/Work/CalendarQueries.h"

#include <QUrl>

namespace corvane {

// What counts as a meeting, where it is joined, and when it is in words. All times in milliseconds since the epoch.

bool isPlaceholderBlock(const CalEvent& event); ///< time that somebody keeps free

/// Somebody is to be met: an event with others, or one whose words say so. One that the user declined is none.
bool isMeetingCandidate(const CalEvent& event);

std::optional<QUrl> meetingURL(const CalEvent& event); ///< of a meeting service, else the first web link

std::optional<QUrl> joinURL(const CalEvent& event); ///< the same, where a browser may open it

QString compactTitle(const CalEvent& event); ///< 32 characters at most

/// The first candidate that has not ended.
std::optional<CalEvent> nextMeetingCandidate(const QList<CalEvent>& events, qint64 nowMs);

QString nextMeetingHeadline(const CalEvent& event, qint64 nowMs); ///< "Next meeting in 5m"
QString relativeStart(qint64 ms, qint64 fromMs); ///< "in 5m", "now", "started"
QString compactCountdown(qint64 toMs, qint64 fromMs); ///< "5m", "Now"

}
