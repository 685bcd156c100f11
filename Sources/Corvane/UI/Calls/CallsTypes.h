#pragma once

#include "Calls/CallSettings.h"
#include "Calls/CallsView.h"

#include <QtQml/qqml.h>

namespace corvane::qml {

// The types of the rooms that this module's QML names. The rooms know nothing of QML.

struct CallsViewType {
    Q_GADGET
    QML_FOREIGN(corvane::CallsView)
    QML_NAMED_ELEMENT(CallsView)
    QML_UNCREATABLE("The program makes it.")
};

struct CallPageType {
    Q_GADGET
    QML_FOREIGN(corvane::CallPage)
    QML_NAMED_ELEMENT(CallPage)
    QML_UNCREATABLE("The program makes it.")
};

struct CallTranscriptViewType {
    Q_GADGET
    QML_FOREIGN(corvane::CallTranscriptView)
    QML_NAMED_ELEMENT(CallTranscriptView)
    QML_UNCREATABLE("The program makes it.")
};

struct CallSoundViewType {
    Q_GADGET
    QML_FOREIGN(corvane::CallSoundView)
    QML_NAMED_ELEMENT(CallSoundView)
    QML_UNCREATABLE("The program makes it.")
};

struct CallProcessingType {
    Q_GADGET
    QML_FOREIGN(corvane::CallProcessing)
    QML_NAMED_ELEMENT(CallProcessing)
    QML_UNCREATABLE("The program makes it.")
};

struct CallProposalsViewType {
    Q_GADGET
    QML_FOREIGN(corvane::CallProposalsView)
    QML_NAMED_ELEMENT(CallProposalsView)
    QML_UNCREATABLE("The program makes it.")
};

struct CallPlayerType {
    Q_GADGET
    QML_FOREIGN(corvane::CallPlayer)
    QML_NAMED_ELEMENT(CallPlayer)
    QML_UNCREATABLE("The program makes it.")
};

struct RecordingViewType {
    Q_GADGET
    QML_FOREIGN(corvane::RecordingView)
    QML_NAMED_ELEMENT(RecordingView)
    QML_UNCREATABLE("The program makes it.")
};

struct CallSettingsType {
    Q_GADGET
    QML_FOREIGN(corvane::CallSettings)
    QML_NAMED_ELEMENT(CallSettings)
    QML_UNCREATABLE("The program makes it.")
};

struct CallRowType {
    Q_GADGET
    QML_FOREIGN(corvane::CallRow)
    QML_VALUE_TYPE(callRow)
};

struct CallTurnRowType {
    Q_GADGET
    QML_FOREIGN(corvane::CallTurnRow)
    QML_VALUE_TYPE(callTurn)
};

struct CallSummarySectionType {
    Q_GADGET
    QML_FOREIGN(corvane::CallSummarySection)
    QML_VALUE_TYPE(callSummarySection)
};

struct CallProposalRowType {
    Q_GADGET
    QML_FOREIGN(corvane::CallProposalRow)
    QML_VALUE_TYPE(callProposal)
};

}
