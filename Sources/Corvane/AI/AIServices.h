#pragma once

#include "AI/AppleIntelligenceChatService.h"
#include "AI/CLIChatService.h"
#include "AI/LocalAIAvailability.h"
#include "AI/LumoAI.h"
#include "AI/LumoAISummaryService.h"
#include "AI/LumoDraftService.h"

namespace corvane {

/// What generates, built once and wired to each other.
struct AIServices {
    /// All of it outlives the services. `codexCandidates`: where the Codex tool may stand.
    AIServices(SystemLanguageModel& model, const MachineFacts& machine, ToolRunner& tools,
        const QStringList& codexCandidates, const Scheduler& scheduler)
        : systemModel(model)
        , onDevice(model, machine)
        , codex(tools, codexCandidates)
        , ai(onDevice, codex)
        , gate(machine)
        , drafts(ai, scheduler)
        , summaries(ai, scheduler)
    {
    }

    SystemLanguageModel& systemModel;
    const AppleIntelligenceChatService onDevice;
    const CLIChatService codex;
    LumoAI ai;
    const LocalAIAvailability gate;
    LumoDraftService drafts;
    LumoAISummaryService summaries;
};

}
