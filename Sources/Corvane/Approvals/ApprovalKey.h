#pragma once

#include <QString>
#include <optional>
#include <tuple>

namespace corvane {

enum class ApprovalKind { Draft, Proposal, Decision, Event };

/// An item that waits for the user, identified by its table and row.
struct ApprovalKey {
    ApprovalKind kind = ApprovalKind::Draft;
    QString id;

    QString text() const; ///< "draft:{id}", "proposal:{id}", "decision:{id}" or "event:{id}"
    static std::optional<ApprovalKey> fromText(const QString& text);
    bool operator==(const ApprovalKey&) const = default;
    bool operator<(const ApprovalKey& other) const { return std::tie(kind, id) < std::tie(other.kind, other.id); }
};

QString kindWord(ApprovalKind kind); ///< "draft", "proposal", "decision" or "event"
std::optional<ApprovalKind> kindOf(const QString& word); ///< "draft_failed" is a draft, too

inline ApprovalKey draftKey(const QString& id)
{
    return { ApprovalKind::Draft, id };
}

/// The user's verdict.
enum class Verdict { Approve, Reject };

}
