#include "Approvals/ApprovalKey.h"

namespace corvane {

QString kindWord(ApprovalKind kind)
{
    switch (kind) {
    case ApprovalKind::Draft:
        return QStringLiteral("draft");
    case ApprovalKind::Proposal:
        return QStringLiteral("proposal");
    case ApprovalKind::Decision:
        return QStringLiteral("decision");
    case ApprovalKind::Event:
        return QStringLiteral("event");
    }
    return {};
}

std::optional<ApprovalKind> kindOf(const QString& word)
{
    if (word == u"draft" || word == u"draft_failed")
        return ApprovalKind::Draft;
    if (word == u"proposal")
        return ApprovalKind::Proposal;
    if (word == u"decision")
        return ApprovalKind::Decision;
    if (word == u"event")
        return ApprovalKind::Event;
    return std::nullopt;
}

QString ApprovalKey::text() const
{
    return kindWord(kind) + u':' + id;
}

std::optional<ApprovalKey> ApprovalKey::fromText(const QString& text)
{
    const auto kind = kindOf(text.section(u':', 0, 0));
    return kind ? std::optional(ApprovalKey { *kind, text.section(u':', 1) }) : std::nullopt;
}

}
