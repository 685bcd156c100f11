#include "Approvals/ApprovalKey.h"

#include "Foundation/Literals.h"

namespace corvane {

QString kindWord(ApprovalKind kind)
{
    switch (kind) {
    case ApprovalKind::Draft:
        return u"draft"_s;
    case ApprovalKind::Proposal:
        return u"proposal"_s;
    case ApprovalKind::Decision:
        return u"decision"_s;
    case ApprovalKind::Event:
        return u"event"_s;
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
