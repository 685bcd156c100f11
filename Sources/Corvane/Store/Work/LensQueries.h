#pragma once

#include "Store/Core/LocalDB.h"

#include <QStringList>

namespace corvane {

// People and deals as the module hubs show them. Times are milliseconds since the epoch.

struct DealLensRow {
    QString id;
    QString contactId;
    QString contactName;
    QString name;
    QString company;
    QString stage;
    QString value; ///< free text, as entered
    qint64 updatedAt = 0;
    qint64 touchedAt = 0; ///< the last message with the person; 0 for none

    bool operator==(const DealLensRow&) const = default;
};

QList<DealLensRow> fetchDealLens(LocalDB& db, int limit); ///< last changed first

/// A person who wrote last and got no answer.
struct WaitingPerson {
    QString contactId;
    QString name;
    QString channel;
    QString snippet;
    QStringList handles = {}; ///< addresses and numbers
    qint64 sinceMs = 0; ///< their first message since the last answer
    int unanswered = 0; ///< messages since then
    bool everAnswered = false;

    bool operator==(const WaitingPerson&) const = default;
};

/// Without groups, muted and archived people, and people whose last message is before `notBeforeMs`. Longest waiting
/// first.
QList<WaitingPerson> fetchWaitingPeople(LocalDB& db, qint64 notBeforeMs, int limit);

}
