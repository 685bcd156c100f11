#include "AI/AppleIntelligenceChatService.h"

#include "Foundation/Literals.h"
#include "Foundation/MachineWords.h"
#include "Platform/MachineFacts.h"

namespace corvane {

QString describe(AppleAIError)
{
    return u"There is no model on %1 — falling back requires the codex CLI."_s.arg(machineWords::thisMachine);
}

AppleIntelligenceChatService::AppleIntelligenceChatService(SystemLanguageModel& model, const MachineFacts& machine)
    : m_model(model)
    , m_machine(machine)
{
}

bool AppleIntelligenceChatService::platformIsTooOld() const
{
    return m_machine.version() < m_machine.minimumVersion();
}

std::optional<QString> AppleIntelligenceChatService::unavailableReason() const
{
    if (platformIsTooOld())
        return u"Requires a newer system."_s;
    return m_model.unavailableReason();
}

QCoro::Task<Result<QString>> AppleIntelligenceChatService::respond(
    QString instructions, QString prompt, CancelHandle cancel) const
{
    if (platformIsTooOld())
        co_return failure(describe(AppleAIError::Unavailable));
    co_return co_await m_model.respond(instructions, prompt, cancel);
}

QCoro::Task<Result<QJsonObject>> AppleIntelligenceChatService::respondGenerating(
    QString instructions, QString prompt, QJsonObject schema, CancelHandle cancel) const
{
    if (unavailableReason())
        co_return failure(describe(AppleAIError::Unavailable));
    co_return co_await m_model.respondGenerating(instructions, prompt, schema, cancel);
}

}
