#pragma once

#include <QList>
#include <QString>

namespace corvane {

class LocalDB;

/// A text that another process asks this one to generate.
struct AIRequest {
    QString id;
    QString instructions; ///< may be empty
    QString prompt;
};

/// Oldest first.
QList<AIRequest> fetchPendingAIRequests(LocalDB& db, int limit);

/// Takes a pending request for `owner`, in one step that only one of several programs can win.
[[nodiscard]] bool claimAIRequest(LocalDB& db, const QString& id, const QString& owner);

// The end of a request that is being processed. One that was reset or has ended meanwhile keeps its later state.
void completeAIRequest(LocalDB& db, const QString& id, const QString& response);
void failAIRequest(LocalDB& db, const QString& id, const QString& error);

/// Requests that have waited longer end as expired; then those that were claimed longer ago wait again, since
/// whoever claimed them is gone.
void failStaleAIRequests(LocalDB& db, qint64 olderThanMs);

}
