#pragma once

#include "Store/Approvals/CrmProposals.h"
#include "Store/Approvals/OutboundQueries.h"
#include "Store/Core/LocalDB.h"

#include <gtest/gtest.h>

namespace corvane {

// Rows that other processes write when they need a person's decision.

inline void writeDraft(
    LocalDB& db, const QString& id, const QString& title, const QString& body, const QString& status = "pending")
{
    EXPECT_TRUE(db.run(
        R"(INSERT INTO outbound_draft(id, workspace_id, conversation_id, channel, account_id, external_id, title, body, status, source, created_at, updated_at)
VALUES(?,'local','wa:main:1','WHATSAPP','main','1@s.whatsapp.net',?,?,?,'mcp',?,?);)",
        { id, title, body, status, db.nowMs(), db.nowMs() }));
}

inline void writeProposal(
    LocalDB& db, const QString& id, const QString& kind, const QString& title, const QString& payload)
{
    EXPECT_TRUE(db.run(
        R"(INSERT INTO crm_update_proposal(id, workspace_id, kind, title, payload_json, status, created_at, updated_at)
VALUES(?,'local',?,?,?,'pending',?,?);)",
        { id, kind, title, payload, db.nowMs(), db.nowMs() }));
}

/// Applies the proposal in its current state, as a person does.
inline bool applyAsSeen(LocalDB& db, const QString& id)
{
    const auto seen = crmProposal(db, id).value_or(CRMUpdateProposal());
    return applyCRMUpdateProposal(db, id, proposalHash(seen)) == Decided::Taken;
}

inline void writeDecision(LocalDB& db, const QString& id, const QString& title, const QString& proposal,
    const QString& rationale, const QString& risk)
{
    EXPECT_TRUE(db.run(
        R"(INSERT INTO work_decision(id, module, title, status, proposal, rationale, risk, created_at, updated_at)
VALUES(?,'ops',?,'proposed',?,?,?,?,?);)",
        { id, title, proposal, rationale, risk, isoTime(db.nowMs()), isoTime(db.nowMs()) }));
}

}
