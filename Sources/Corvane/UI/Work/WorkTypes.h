#pragma once

#include "Work/CXHub.h"
#include "Work/GTMHub.h"
#include "Work/LumoHub.h"
#include "Work/OpsHub.h"

#include <QtQml/qqml.h>

namespace corvane::qml {

// The types of the rooms that this module's QML names. The rooms know nothing of QML.

struct OpsHubType {
    Q_GADGET
    QML_FOREIGN(corvane::OpsHub)
    QML_NAMED_ELEMENT(OpsHub)
    QML_UNCREATABLE("The program makes it.")
};

struct LumoHubType {
    Q_GADGET
    QML_FOREIGN(corvane::LumoHub)
    QML_NAMED_ELEMENT(LumoHub)
    QML_UNCREATABLE("The program makes it.")
};

struct GTMHubType {
    Q_GADGET
    QML_FOREIGN(corvane::GTMHub)
    QML_NAMED_ELEMENT(GTMHub)
    QML_UNCREATABLE("The program makes it.")
};

struct CXHubType {
    Q_GADGET
    QML_FOREIGN(corvane::CXHub)
    QML_NAMED_ELEMENT(CXHub)
    QML_UNCREATABLE("The program makes it.")
};

struct WorkModuleShellType {
    Q_GADGET
    QML_FOREIGN(corvane::WorkModuleShell)
    QML_NAMED_ELEMENT(WorkModuleShell)
    QML_UNCREATABLE("The program makes it.")
};

struct WorkRailType {
    Q_GADGET
    QML_FOREIGN(corvane::WorkRail)
    QML_NAMED_ELEMENT(WorkRail)
    QML_UNCREATABLE("The program makes it.")
};

struct WorkHeaderType {
    Q_GADGET
    QML_FOREIGN(corvane::WorkHeader)
    QML_NAMED_ELEMENT(WorkHeader)
    QML_UNCREATABLE("The program makes it.")
};

struct WorkHistoryType {
    Q_GADGET
    QML_FOREIGN(corvane::WorkHistory)
    QML_NAMED_ELEMENT(WorkHistory)
    QML_UNCREATABLE("The program makes it.")
};

struct WorkShellsType {
    Q_GADGET
    QML_FOREIGN(corvane::WorkShells)
    QML_NAMED_ELEMENT(WorkShells)
    QML_UNCREATABLE("The program makes it.")
};

struct WorkBoardType {
    Q_GADGET
    QML_FOREIGN(corvane::WorkBoard)
    QML_NAMED_ELEMENT(WorkBoard)
    QML_UNCREATABLE("The program makes it.")
};

struct WorkLaneType {
    Q_GADGET
    QML_FOREIGN(corvane::WorkLane)
    QML_NAMED_ELEMENT(WorkLane)
    QML_UNCREATABLE("The program makes it.")
};

struct WorkItemSheetType {
    Q_GADGET
    QML_FOREIGN(corvane::WorkItemSheet)
    QML_NAMED_ELEMENT(WorkItemSheet)
    QML_UNCREATABLE("The program makes it.")
};

struct WorkCreateType {
    Q_GADGET
    QML_FOREIGN(corvane::WorkCreate)
    QML_NAMED_ELEMENT(WorkCreate)
    QML_UNCREATABLE("The program makes it.")
};

struct WorkTerminalChatType {
    Q_GADGET
    QML_FOREIGN(corvane::WorkTerminalChat)
    QML_NAMED_ELEMENT(WorkTerminalChat)
    QML_UNCREATABLE("The program makes it.")
};

struct WorkDecisionsType {
    Q_GADGET
    QML_FOREIGN(corvane::WorkDecisions)
    QML_NAMED_ELEMENT(WorkDecisions)
    QML_UNCREATABLE("The program makes it.")
};

struct WorkAgentsType {
    Q_GADGET
    QML_FOREIGN(corvane::WorkAgents)
    QML_NAMED_ELEMENT(WorkAgents)
    QML_UNCREATABLE("The program makes it.")
};

struct OpsAsksType {
    Q_GADGET
    QML_FOREIGN(corvane::OpsAsks)
    QML_NAMED_ELEMENT(OpsAsks)
    QML_UNCREATABLE("The program makes it.")
};

struct OpsProjectsType {
    Q_GADGET
    QML_FOREIGN(corvane::OpsProjects)
    QML_NAMED_ELEMENT(OpsProjects)
    QML_UNCREATABLE("The program makes it.")
};

struct OpsFinanceType {
    Q_GADGET
    QML_FOREIGN(corvane::OpsFinance)
    QML_NAMED_ELEMENT(OpsFinance)
    QML_UNCREATABLE("The program makes it.")
};

struct PipelineStageType {
    Q_GADGET
    QML_FOREIGN(corvane::PipelineStage)
    QML_NAMED_ELEMENT(PipelineStage)
    QML_UNCREATABLE("The program makes it.")
};

struct WorkContextSeedType {
    Q_GADGET
    QML_FOREIGN(corvane::WorkContextSeed)
    QML_VALUE_TYPE(workContext)
};

struct WorkItemSeedType {
    Q_GADGET
    QML_FOREIGN(corvane::WorkItemSeed)
    QML_VALUE_TYPE(workItem)
};

struct WorkMetricSeedType {
    Q_GADGET
    QML_FOREIGN(corvane::WorkMetricSeed)
    QML_VALUE_TYPE(workMetric)
};

struct OpsTimelineEventType {
    Q_GADGET
    QML_FOREIGN(corvane::OpsTimelineEvent)
    QML_VALUE_TYPE(workEvent)
};

struct WorkActionType {
    Q_GADGET
    QML_FOREIGN(corvane::WorkAction)
    QML_VALUE_TYPE(workAction)
};

struct WorkChatSeedType {
    Q_GADGET
    QML_FOREIGN(corvane::WorkChatSeed)
    QML_VALUE_TYPE(workChatLine)
};

struct WorkDecisionSeedType {
    Q_GADGET
    QML_FOREIGN(corvane::WorkDecisionSeed)
    QML_VALUE_TYPE(workDecision)
};

struct WorkMemorySeedType {
    Q_GADGET
    QML_FOREIGN(corvane::WorkMemorySeed)
    QML_VALUE_TYPE(workMemory)
};

struct WorkAgentSeedType {
    Q_GADGET
    QML_FOREIGN(corvane::WorkAgentSeed)
    QML_VALUE_TYPE(workAgent)
};

struct WorkEvidenceSeedType {
    Q_GADGET
    QML_FOREIGN(corvane::WorkEvidenceSeed)
    QML_VALUE_TYPE(workEvidence)
};

struct WorkFieldClashType {
    Q_GADGET
    QML_FOREIGN(corvane::WorkFieldClash)
    QML_VALUE_TYPE(workFieldClash)
};

struct OpsAskSeedType {
    Q_GADGET
    QML_FOREIGN(corvane::OpsAskSeed)
    QML_VALUE_TYPE(opsAsk)
};

struct OpsProjectSeedType {
    Q_GADGET
    QML_FOREIGN(corvane::OpsProjectSeed)
    QML_VALUE_TYPE(opsProject)
};

struct OpsTabSeedType {
    Q_GADGET
    QML_FOREIGN(corvane::OpsTabSeed)
    QML_VALUE_TYPE(opsTab)
};

struct OpsLineType {
    Q_GADGET
    QML_FOREIGN(corvane::OpsLine)
    QML_VALUE_TYPE(opsLine)
};

struct DealSeedType {
    Q_GADGET
    QML_FOREIGN(corvane::DealSeed)
    QML_VALUE_TYPE(workDeal)
};

struct WaitingSeedType {
    Q_GADGET
    QML_FOREIGN(corvane::WaitingSeed)
    QML_VALUE_TYPE(waitingPerson)
};

struct QueueMessageType {
    Q_GADGET
    QML_FOREIGN(corvane::QueueMessage)
    QML_VALUE_TYPE(queueMessage)
};

}
