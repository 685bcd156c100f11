#pragma once

#include "Store/Core/LocalDB.h"

namespace corvane {

// The records of people, agents and the program about a piece of work. Other processes create and write these tables,
// too: a missing table or column reads as empty, checked at each call, and unknown words are passed through. `module`
// is lower case; times are ISO 8601 text.

struct WorkContextRow {
    QString id;
    QString module;
    QString kind;
    QString slug;
    QString title;
    QString subtitle;
    QString status;
    QString owner;
    QString externalRef = {};
    QString updatedAt = {};
    int openItems = 0; ///< all that are not "done"
    int liveSessions = 0;
    int liveAgents = 0;

    bool operator==(const WorkContextRow&) const = default;
};

struct WorkItemRecord {
    QString id;
    QString contextId = {}; ///< empty if there is none, as in the records below
    QString module;
    QString kind;
    QString title;
    QString status;
    QString priority;
    QString owner;
    QString source;
    QString summary;
    QString updatedAt = {};

    bool operator==(const WorkItemRecord&) const = default;
};

/// An action that waits for the user.
struct WorkDecisionRecord {
    QString id;
    QString contextId = {};
    QString module;
    QString title;
    QString status; ///< "proposed" while it waits
    QString proposal;
    QString rationale;
    QString risk; ///< "money", "credential", "external", "high", or anything else
    QString decidedBy = {};
    QString updatedAt = {};

    bool operator==(const WorkDecisionRecord&) const = default;
};

struct WorkEvidenceRecord {
    QString id;
    QString contextId = {};
    QString module;
    QString kind;
    QString title;
    QString source;
    QString uri;
    QString summary;
    QString createdAt = {};

    bool operator==(const WorkEvidenceRecord&) const = default;
};

struct WorkMessageRecord {
    QString id;
    QString contextId = {};
    QString module;
    QString speaker;
    QString role;
    QString kind;
    QString body;
    QString status;
    QString createdAt = {};

    bool operator==(const WorkMessageRecord&) const = default;
};

struct WorkSessionRecord {
    QString id;
    QString contextId = {};
    QString module;
    QString purpose;
    QString owner;
    QString tool;
    QString status;
    QString heartbeatAt;

    bool operator==(const WorkSessionRecord&) const = default;
};

struct WorkAgentRecord {
    QString id;
    QString contextId = {};
    QString module;
    QString name;
    QString tool;
    QString role;
    QString status;
    QString currentTask;
    QString heartbeatAt;

    bool operator==(const WorkAgentRecord&) const = default;
};

struct WorkMemoryRecord {
    QString id;
    QString contextId = {};
    QString module;
    QString kind;
    QString body;
    QString source;
    QString confidence;
    QString status = {};
    QString owner;
    QString updatedAt = {};

    bool operator==(const WorkMemoryRecord&) const = default;
};

/// One context, or nothing for all contexts of the module.
using WorkContextId = std::optional<QString>;

QList<WorkContextRow> fetchWorkContexts(LocalDB& db, const QString& module, int limit); ///< last used first
std::optional<WorkContextRow> fetchWorkContext(LocalDB& db, const QString& id);
std::optional<WorkContextRow> fetchWorkContext(LocalDB& db, const QString& module, const QString& slug);

/// By priority: high, normal, the rest; last changed first.
QList<WorkItemRecord> fetchWorkItems(LocalDB& db, const QString& module, const WorkContextId& context, int limit);
std::optional<WorkItemRecord> fetchWorkItem(LocalDB& db, const QString& id);

/// By risk: money, credential, external, high, the rest; last changed first.
QList<WorkDecisionRecord> fetchWorkDecisions(
    LocalDB& db, const QString& module, const WorkContextId& context, int limit);
QList<WorkDecisionRecord> fetchPendingWorkDecisions(LocalDB& db, int limit); ///< of all modules, in the same order
std::optional<WorkDecisionRecord> fetchWorkDecision(LocalDB& db, const QString& id); ///< the current row

QList<WorkEvidenceRecord> fetchWorkEvidence( ///< newest first
    LocalDB& db, const QString& module, const WorkContextId& context, int limit);

/// Oldest first; the limit keeps the oldest.
QList<WorkMessageRecord> fetchWorkMessages(LocalDB& db, const QString& module, const WorkContextId& context, int limit);

/// Oldest first; the limit keeps the newest.
QList<WorkMessageRecord> fetchNewestWorkMessages(
    LocalDB& db, const QString& module, const WorkContextId& context, int limit);

QList<WorkSessionRecord> fetchWorkSessions( ///< last changed first
    LocalDB& db, const QString& module, const WorkContextId& context, int limit);
QList<WorkAgentRecord> fetchWorkAgents( ///< last changed first
    LocalDB& db, const QString& module, const WorkContextId& context, int limit);
QList<WorkAgentRecord> fetchAgentRoster(LocalDB& db, int limit); ///< of all modules: live ones, then by last heartbeat

/// Proposed, approved, the rest; last changed first.
QList<WorkMemoryRecord> fetchWorkMemory(LocalDB& db, const QString& module, const WorkContextId& context, int limit);

// Of all modules, in the orders above.
QList<WorkMemoryRecord> fetchMemoryOfAllModules(LocalDB& db, int limit);
QList<WorkEvidenceRecord> fetchEvidenceOfKind(LocalDB& db, const QString& kind, int limit);
QList<WorkSessionRecord> fetchSessionsOfAllModules(LocalDB& db, int limit);

}
