#pragma once

#include "Store/Work/WorkRecords.h"

namespace corvane {

// Writes to the work records. Nothing is executed here: a decision only records that an action waits for the user. A
// row counts as saved when it can be read back, which each insert returns; it returns nothing if the table is missing,
// refuses the row, or another process replaced it meanwhile. A write in a context moves it to the top of the list of
// contexts.

struct NewWorkContext {
    QString module;
    QString kind;
    QString slug; ///< unique per module: a second save updates the text and keeps the id
    QString title;
    QString subtitle;
    QString owner;
};

std::optional<WorkContextRow> upsertWorkContext(LocalDB& db, const NewWorkContext& context);

struct NewWorkItem {
    QString module;
    WorkContextId context;
    QString kind;
    QString title;
    QString priority;
    QString owner;
    QString source;
    QString summary;
};

std::optional<WorkItemRecord> insertWorkItem(LocalDB& db, const NewWorkItem& item); ///< "open"

struct NewWorkDecision {
    QString module;
    WorkContextId context;
    QString title;
    QString proposal;
    QString rationale;
    QString risk;
};

std::optional<WorkDecisionRecord> insertWorkDecision(LocalDB& db, const NewWorkDecision& decision); ///< "proposed"

struct NewWorkEvidence {
    QString module;
    WorkContextId context;
    std::optional<QString> itemId;
    QString kind;
    QString title;
    QString source;
    QString uri;
    QString summary;
};

std::optional<WorkEvidenceRecord> insertWorkEvidence(LocalDB& db, const NewWorkEvidence& evidence);

struct NewWorkMessage {
    QString module;
    WorkContextId context;
    QString speaker;
    QString role;
    QString kind;
    QString body; ///< must not be blank
};

std::optional<WorkMessageRecord> insertWorkMessage(LocalDB& db, const NewWorkMessage& message);

struct NewWorkSession {
    QString module;
    WorkContextId context;
    QString purpose;
    QString owner;
    QString tool;
    QString status;
};

std::optional<WorkSessionRecord> insertWorkSession(LocalDB& db, const NewWorkSession& session);

/// Module, context, name and tool are the key: an agent that registers again keeps its id.
struct NewWorkAgent {
    QString module;
    WorkContextId context;
    QString name;
    QString tool;
    QString role;
    QString status;
    QString currentTask;
    QString sessionId;
};

std::optional<WorkAgentRecord> upsertWorkAgent(LocalDB& db, const NewWorkAgent& agent);

struct NewWorkMemory {
    QString module;
    WorkContextId context;
    QString kind;
    QString body;
    QString source;
    QString confidence;
    QString owner;
};

std::optional<WorkMemoryRecord> insertWorkMemory(LocalDB& db, const NewWorkMemory& memory); ///< "proposed"

// False if there is no such row, or the id or the status is blank.
bool updateWorkItemStatus(LocalDB& db, const QString& id, const QString& status);

enum class WorkItemSaved { Saved, Changed, Failed };

/// Saves the user's edits if the row is still as they saw it. A blank status is refused.
WorkItemSaved updateWorkItem(LocalDB& db, const WorkItemRecord& seen, const WorkItemRecord& wanted);

bool updateWorkDecisionStatus(LocalDB& db, const QString& id, const QString& status, const QString& decidedBy);

/// Approving a memory sets its verification time; any other status clears it.
bool updateWorkMemoryStatus(LocalDB& db, const QString& id, const QString& status, const QString& owner);

}
