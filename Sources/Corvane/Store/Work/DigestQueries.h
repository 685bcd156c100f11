#pragma once

#include "Store/Core/LocalDB.h"

namespace corvane {

/// The day at a glance; what comes from a table that is missing is 0 or nothing.
struct TodayDigest {
    int meetingsToday = 0; ///< without those that last all day
    std::optional<QString> nextMeetingTitle;
    int openWorkItems = 0; ///< of every module; all that are not done, closed or rejected
    int agentActionsToday = 0;
    std::optional<QString> latestUpdate; ///< of today

    bool operator==(const TodayDigest&) const = default;
};

/// The day is [dayStartMs, dayEndMs), and `dayStartISO` the same start as `isoTime` writes it.
TodayDigest todayDigest(LocalDB& db, qint64 dayStartMs, qint64 dayEndMs, const QString& dayStartISO);

bool hasCalendar(LocalDB& db); ///< some calendar was mirrored: a day without meetings says something

struct InboxGlanceRow {
    QString conversationId;
    QString contactId; ///< empty where the conversation has no contact
    QString title;
    QString channel;
    QString snippet; ///< body of the newest message
    int unread = 0;
    qint64 lastTs = 0; ///< milliseconds since the epoch

    bool operator==(const InboxGlanceRow&) const = default;
};

QList<InboxGlanceRow> fetchInboxGlance(LocalDB& db, int limit); ///< unread ones, then the newest

}
