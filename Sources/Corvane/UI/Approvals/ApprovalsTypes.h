#pragma once

#include "Approvals/ApprovalsView.h"
#include "Approvals/PendingDraftsView.h"

#include <QtQml/qqml.h>

namespace corvane::qml {

// The types of the rooms that this module's QML names. The rooms know nothing of QML.

struct ApprovalsViewType {
    Q_GADGET
    QML_FOREIGN(corvane::ApprovalsView)
    QML_NAMED_ELEMENT(ApprovalsView)
    QML_UNCREATABLE("The program makes it.")
};

struct PendingDraftsViewType {
    Q_GADGET
    QML_FOREIGN(corvane::PendingDraftsView)
    QML_NAMED_ELEMENT(PendingDraftsView)
    QML_UNCREATABLE("The program makes it.")
};

struct DraftEditType {
    Q_GADGET
    QML_FOREIGN(corvane::DraftEdit)
    QML_NAMED_ELEMENT(DraftEdit)
    QML_UNCREATABLE("The program makes it.")
};

struct ContactPickType {
    Q_GADGET
    QML_FOREIGN(corvane::ContactPick)
    QML_NAMED_ELEMENT(ContactPick)
    QML_UNCREATABLE("The program makes it.")
};

struct DecisionLogType {
    Q_GADGET
    QML_FOREIGN(corvane::DecisionLog)
    QML_NAMED_ELEMENT(DecisionLog)
    QML_UNCREATABLE("The program makes it.")
};

struct ApprovalHeadsType {
    Q_GADGET
    QML_FOREIGN(corvane::ApprovalHeads)
    QML_VALUE_TYPE(approvalHeads)
};

struct ApprovalRowType {
    Q_GADGET
    QML_FOREIGN(corvane::ApprovalRow)
    QML_VALUE_TYPE(approvalRow)
};

struct DecidedRowType {
    Q_GADGET
    QML_FOREIGN(corvane::DecidedRow)
    QML_VALUE_TYPE(decidedRow)
};

struct PendingDraftItemType {
    Q_GADGET
    QML_FOREIGN(corvane::PendingDraftItem)
    QML_VALUE_TYPE(pendingDraft)
};

struct DraftFileType {
    Q_GADGET
    QML_FOREIGN(corvane::DraftFile)
    QML_VALUE_TYPE(draftFile)
};

struct DraftActionType {
    Q_GADGET
    QML_FOREIGN(corvane::DraftAction)
    QML_VALUE_TYPE(draftAction)
};

}
