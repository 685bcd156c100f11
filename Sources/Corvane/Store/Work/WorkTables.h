#pragma once

#include "Foundation/Literals.h"
#include "Store/Core/Table.h"
#include "Store/Work/WorkRecords.h"

namespace corvane {

// The tables of the work records: their columns, including those that are only written.

inline const QString byRisk
    = u"ORDER BY CASE risk WHEN 'money' THEN 0 WHEN 'credential' THEN 1 WHEN 'external' THEN 2 WHEN 'high' THEN 3 "
      "ELSE 4 END, updated_at DESC\nLIMIT ?;"_s;

inline const Table<WorkContextRow> workContexts("work_context c",
    {
        { "c.id", &WorkContextRow::id },
        { "c.module", &WorkContextRow::module },
        { "c.kind", &WorkContextRow::kind },
        { "c.slug", &WorkContextRow::slug },
        { "c.title", &WorkContextRow::title },
        { "c.subtitle", &WorkContextRow::subtitle },
        { "c.status", &WorkContextRow::status },
        { "c.owner", &WorkContextRow::owner },
        { "c.external_ref", &WorkContextRow::externalRef },
        { "metadata_json" },
        { "created_at" },
        { "c.updated_at", &WorkContextRow::updatedAt },
        { "i.n", &WorkContextRow::openItems, "0", onlyRead },
        { "s.n", &WorkContextRow::liveSessions, "0", onlyRead },
        { "a.n", &WorkContextRow::liveAgents, "0", onlyRead },
    });

inline const Table<WorkItemRecord> workItems("work_item",
    {
        { "id", &WorkItemRecord::id },
        { "context_id", &WorkItemRecord::contextId, "''" },
        { "module", &WorkItemRecord::module },
        { "kind", &WorkItemRecord::kind },
        { "title", &WorkItemRecord::title },
        { "status", &WorkItemRecord::status },
        { "priority", &WorkItemRecord::priority },
        { "owner", &WorkItemRecord::owner },
        { "session_id", {}, asStored, "NULL" },
        { "source", &WorkItemRecord::source },
        { "summary", &WorkItemRecord::summary },
        { "due_at" },
        { "metadata_json" },
        { "created_at" },
        { "updated_at", &WorkItemRecord::updatedAt },
    });

inline const Table<WorkDecisionRecord> workDecisions("work_decision",
    {
        { "id", &WorkDecisionRecord::id },
        { "context_id", &WorkDecisionRecord::contextId, "''" },
        { "module", &WorkDecisionRecord::module },
        { "title", &WorkDecisionRecord::title },
        { "status", &WorkDecisionRecord::status },
        { "proposal", &WorkDecisionRecord::proposal },
        { "rationale", &WorkDecisionRecord::rationale },
        { "risk", &WorkDecisionRecord::risk },
        { "decided_by", &WorkDecisionRecord::decidedBy },
        { "created_at" },
        { "updated_at", &WorkDecisionRecord::updatedAt },
    });

inline const Table<WorkEvidenceRecord> workEvidence("work_evidence",
    {
        { "id", &WorkEvidenceRecord::id },
        { "context_id", &WorkEvidenceRecord::contextId, "''" },
        { "module", &WorkEvidenceRecord::module },
        { "item_id" },
        { "session_id", {}, asStored, "NULL" },
        { "kind", &WorkEvidenceRecord::kind },
        { "title", &WorkEvidenceRecord::title },
        { "source", &WorkEvidenceRecord::source },
        { "uri", &WorkEvidenceRecord::uri },
        { "summary", &WorkEvidenceRecord::summary },
        { "metadata_json" },
        { "created_at", &WorkEvidenceRecord::createdAt },
    });

inline const Table<WorkMessageRecord> workMessages("work_message",
    {
        { "id", &WorkMessageRecord::id },
        { "context_id", &WorkMessageRecord::contextId, "''" },
        { "module", &WorkMessageRecord::module },
        { "session_id", {}, asStored, "NULL" },
        { "agent_id", {}, asStored, "NULL" },
        { "speaker", &WorkMessageRecord::speaker },
        { "role", &WorkMessageRecord::role },
        { "kind", &WorkMessageRecord::kind },
        { "body", &WorkMessageRecord::body },
        { "status", &WorkMessageRecord::status },
        { "metadata_json" },
        { "created_at", &WorkMessageRecord::createdAt },
    });

inline const Table<WorkSessionRecord> workSessions("work_session",
    {
        { "id", &WorkSessionRecord::id },
        { "context_id", &WorkSessionRecord::contextId, "''" },
        { "module", &WorkSessionRecord::module },
        { "purpose", &WorkSessionRecord::purpose },
        { "owner", &WorkSessionRecord::owner },
        { "tool", &WorkSessionRecord::tool },
        { "status", &WorkSessionRecord::status },
        { "pid", {}, asStored, "NULL" },
        { "cwd", {}, asStored, "''" },
        { "endpoint" },
        { "current_item_id", {}, asStored, "NULL" },
        { "heartbeat_at", &WorkSessionRecord::heartbeatAt },
        { "metadata_json" },
        { "created_at" },
        { "updated_at" },
    });

inline const Table<WorkAgentRecord> workAgents("work_agent",
    {
        { "id", &WorkAgentRecord::id },
        { "context_id", &WorkAgentRecord::contextId, "''" },
        { "module", &WorkAgentRecord::module },
        { "name", &WorkAgentRecord::name },
        { "tool", &WorkAgentRecord::tool },
        { "role", &WorkAgentRecord::role },
        { "status", &WorkAgentRecord::status },
        { "current_task", &WorkAgentRecord::currentTask, "''" },
        { "session_id" },
        { "heartbeat_at", &WorkAgentRecord::heartbeatAt, "''" },
        { "created_at" },
        { "updated_at" },
    });

inline const Table<WorkMemoryRecord> workMemory("work_memory",
    {
        { "id", &WorkMemoryRecord::id },
        { "context_id", &WorkMemoryRecord::contextId, "''" },
        { "module", &WorkMemoryRecord::module },
        { "kind", &WorkMemoryRecord::kind },
        { "body", &WorkMemoryRecord::body },
        { "source", &WorkMemoryRecord::source },
        { "confidence", &WorkMemoryRecord::confidence },
        { "status", &WorkMemoryRecord::status, asStored, "'proposed'" },
        { "owner", &WorkMemoryRecord::owner },
        { "verified_at", {}, asStored, "''" },
        { "created_at" },
        { "updated_at", &WorkMemoryRecord::updatedAt },
    });

}
