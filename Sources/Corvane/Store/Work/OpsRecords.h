#pragma once

#include "Store/Core/LocalDB.h"

namespace corvane {

// Projects, and what the agents in their terminals report: updates, questions to the user, orders to an agent. Other
// programs write these tables, too. Times are ISO 8601 text.

struct OpsProjectRow {
    QString id;
    QString slug;
    QString name;
    QString goal;
    QString status;
    int priority = 3; ///< lower is more important
    QString category;
    QString controlDir;
    QString repoPath;
    QString execHost;
    QString updatedAt;
    int liveTabs = 0;
    int downTabs = 0;
    int openAsks = 0;
    QString latestKind; ///< of the newest update; empty if there is none
    QString latestBody;
    QString latestAt;

    bool operator==(const OpsProjectRow&) const = default;
};

struct OpsTabRow {
    QString id;
    QString projectId;
    QString projectSlug;
    QString name;
    QString role;
    QString status;
    int pid = 0;
    QString cwd;
    QString model;
    int intervalSec = 600;
    QString heartbeatAt;
    QString currentTask;
    std::optional<int> staleSec; ///< none if the heartbeat cannot be parsed
    bool isLive = false;

    bool operator==(const OpsTabRow&) const = default;
};

struct OpsUpdateRow {
    QString id;
    QString projectSlug;
    QString tabId;
    QString ts;
    QString kind;
    QString body;

    bool operator==(const OpsUpdateRow&) const = default;
};

/// A question, "open" until it is answered.
struct OpsAskRow {
    QString id;
    QString projectId;
    QString projectSlug;
    QString tabId;
    QString ts;
    QString question;
    QString urgency;
    QString status;
    QString answer;
    QString answeredBy;
    QString answeredAt;

    bool operator==(const OpsAskRow&) const = default;
};

struct Liveness {
    std::optional<int> staleSec; ///< seconds since the heartbeat, never below 0
    bool isLive = false; ///< its heartbeat is at most two intervals old, of at least 30 seconds each
};
Liveness opsTabLiveness(const QString& heartbeatAt, int intervalSec, qint64 nowMs);

/// Milliseconds since the epoch; nothing if it is not an ISO 8601 time.
std::optional<qint64> parsedIsoTime(const QString& text);

QList<OpsProjectRow> fetchOpsProjects(LocalDB& db); ///< by priority, last changed first

/// Writes a project, trimmed: one without an id is new and gets "pj:{slug}". Counts in the row are ignored. Nothing if
/// it was not saved, or another project has the slug.
std::optional<OpsProjectRow> upsertOpsProject(LocalDB& db, const OpsProjectRow& project);

using OpsProjectId = std::optional<QString>; ///< none: all projects

QList<OpsTabRow> fetchOpsTabs(LocalDB& db, const OpsProjectId& project); ///< newest first
QList<OpsUpdateRow> fetchOpsUpdates(LocalDB& db, const OpsProjectId& project, int limit); ///< newest first

enum class AnsweredAsks { Leave, Include };

/// Open ones first, by urgency, newest first.
QList<OpsAskRow> fetchOpsAsks(LocalDB& db, const OpsProjectId& project, AnsweredAsks answered, int limit);
std::optional<OpsAskRow> fetchOpsAsk(LocalDB& db, const QString& id);
int openAsks(LocalDB& db);
int openUrgentAsks(LocalDB& db); ///< of urgency "high"

struct NewOpsAsk {
    OpsProjectId project = {}; ///< if absent: the one with the slug, else none
    std::optional<QString> tab = {};
    QString projectSlug = {};
    QString question; ///< must not be blank
    QString urgency;
};

// Nothing, or false, if the row was not saved.
std::optional<OpsAskRow> createOpsAsk(LocalDB& db, const NewOpsAsk& ask);
std::optional<OpsAskRow> answerOpsAsk(LocalDB& db, const QString& id, const QString& answer, const QString& answeredBy);

/// An order is a message that waits until the tab's agent picks it up.
bool createOpsOrder(LocalDB& db, const QString& projectId, const QString& targetTabId, const QString& body,
    const std::optional<QString>& fromId);

struct OpsOrderRow {
    QString id;
    QString tabName;
    QString ts;
    QString body;
    QString status; ///< "pending" until it is picked up

    bool operator==(const OpsOrderRow&) const = default;
};
QList<OpsOrderRow> fetchOpsOrders(LocalDB& db, const QString& projectId, int limit); ///< newest first

}
