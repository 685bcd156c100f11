#pragma once

#include "Store/Core/LocalDB.h"

#include <QHash>

namespace corvane {

// People and deals as the hubs of a module look at them. Times are milliseconds since the epoch.

struct DealLensRow {
    QString id;
    QString contactId;
    QString contactName;
    QString name;
    QString company;
    QString stage;
    QString value; ///< free text, as typed
    qint64 updatedAt = 0;
    qint64 touchedAt = 0; ///< when a message was last exchanged with the person; 0 for never

    bool operator==(const DealLensRow&) const = default;
};

QList<DealLensRow> fetchDealLens(LocalDB& db, int limit); ///< the last changed first

/// Somebody who wrote last and was not answered.
struct WaitingPerson {
    QString contactId;
    QString name;
    QString channel;
    QString snippet;
    qint64 sinceMs = 0; ///< their first message since the last answer

    bool operator==(const WaitingPerson&) const = default;
};

/// No groups, nobody muted or archived, nobody silent since `notBeforeMs`. Longest waiting first.
QList<WaitingPerson> fetchWaitingPeople(LocalDB& db, qint64 notBeforeMs, int limit);

}
