#pragma once

#include <QList>
#include <QString>

namespace corvane {

class LocalDB;

/// A text generation request from another process.
struct AIRequest {
    QString id;
    QString instructions; ///< may be empty
    QString prompt;
};

/// Oldest first.
QList<AIRequest> fetchPendingAIRequests(LocalDB& db, int limit);

/// Atomically claims a pending request for `owner`; of several programs only one succeeds.
[[nodiscard]] bool claimAIRequest(LocalDB& db, const QString& id, const QString& owner);

// Finishes a request that is being processed. One that was reset or has finished meanwhile keeps its later state.
void completeAIRequest(LocalDB& db, const QString& id, const QString& response);
void failAIRequest(LocalDB& db, const QString& id, const QString& error);

/// Requests that waited too long expire; then requests that were claimed too long ago become pending again, since their
/// owner is gone.
void failStaleAIRequests(LocalDB& db, qint64 olderThanMs);

}
