#pragma once

#include "AI/AppleIntelligenceChatService.h"
#include "AI/CLIChatService.h"
#include "AI/LocalAIAvailability.h"
#include "AI/LumoAI.h"
#include "AI/LumoAISummaryService.h"
#include "AI/LumoDraftService.h"
#include "AI/TranslationService.h"

namespace corvane {

/// The text generation services, built once and connected.
struct AIServices {
    /// All references outlive the services. `codexCandidates`: possible paths of the Codex tool.
    AIServices(SystemLanguageModel& model, const MachineFacts& machine, ToolRunner& tools,
        const QStringList& codexCandidates, const Scheduler& scheduler)
        : systemModel(model)
        , onDevice(model, machine)
        , codex(tools, codexCandidates)
        , ai(onDevice, codex)
        , gate(machine)
        , drafts(ai, scheduler)
        , summaries(ai, scheduler)
        , translations(machine)
    {
    }

    SystemLanguageModel& systemModel;
    const AppleIntelligenceChatService onDevice;
    const CLIChatService codex;
    LumoAI ai;
    const LocalAIAvailability gate;
    LumoDraftService drafts;
    LumoAISummaryService summaries;
    TranslationService translations;
};

}
