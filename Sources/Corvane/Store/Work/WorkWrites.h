#pragma once

#include "Store/Work/WorkRecords.h"

namespace corvane {

// What the program notes in the work records. Nothing here carries anything out: a decision only records that an
// action is held for a person. A row counts as saved when it can be read back, which is what each insert returns;
// nothing is returned where the table is missing, refuses the row, or another process replaced it meanwhile.
// A write that concerns a context moves it to the head of the list of contexts.

struct NewWorkContext {
    QString module;
    QString kind;
    QString slug; ///< with the module the key: a second save changes the text and keeps the first one's id
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
    QString body; ///< one that is only white space is refused
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

// False where there is no such row, or the id or the status is blank.
bool updateWorkItemStatus(LocalDB& db, const QString& id, const QString& status);

enum class WorkItemSaved { Saved, Changed, Failed };

/// Writes what a person edited, if the row still is as they saw it. A blank status is refused.
WorkItemSaved updateWorkItem(LocalDB& db, const WorkItemRecord& seen, const WorkItemRecord& wanted);

bool updateWorkDecisionStatus(LocalDB& db, const QString& id, const QString& status, const QString& decidedBy);

/// An approval is the moment of the memory's verification; any other word clears it.
bool updateWorkMemoryStatus(LocalDB& db, const QString& id, const QString& status, const QString& owner);

}
