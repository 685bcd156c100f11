#pragma once

#include "Store/Core/LocalDB.h"

namespace corvane {

/// Today's figures; values from missing tables are 0 or absent.
struct TodayDigest {
    int meetingsToday = 0; ///< without all-day events
    std::optional<QString> nextMeetingTitle;
    int openWorkItems = 0; ///< of all modules; all that are not done, closed or rejected
    int agentActionsToday = 0;
    std::optional<QString> latestUpdate; ///< of today

    bool operator==(const TodayDigest&) const = default;
};

/// The day is [dayStartMs, dayEndMs); `dayStartISO` is its start in the format of `isoTime`.
TodayDigest todayDigest(LocalDB& db, qint64 dayStartMs, qint64 dayEndMs, const QString& dayStartISO);

bool hasCalendar(LocalDB& db); ///< a calendar was mirrored: a day without meetings is meaningful

struct InboxGlanceRow {
    QString conversationId;
    QString contactId; ///< empty if the conversation has no contact
    QString title;
    QString channel;
    QString snippet; ///< body of the newest message
    int unread = 0;
    qint64 lastTs = 0; ///< milliseconds since the epoch

    bool operator==(const InboxGlanceRow&) const = default;
};

QList<InboxGlanceRow> fetchInboxGlance(LocalDB& db, int limit); ///< unread ones, then the newest

}
