#include "AI/LumoAI.h"

#include "AI/AppleIntelligenceChatService.h"
#include "AI/CLIChatService.h"
#include "Foundation/Literals.h"

#include <QPointer>

namespace corvane {

LumoAI::LumoAI(const AppleIntelligenceChatService& onDevice, const CLIChatService& codex, QObject* parent)
    : QObject(parent)
    , m_onDevice(onDevice)
    , m_codex(codex)
{
}

std::optional<QString> LumoAI::availableName() const
{
    if (!m_onDevice.unavailableReason())
        return m_onDevice.displayName();
    return m_codex.codexPath() ? std::optional(u"Codex CLI"_s) : std::nullopt;
}

LocalAIModelSpec LumoAI::modelSpec() const
{
    return { availableName().value_or(u"LumoAI"_s) };
}

QCoro::Task<> LumoAI::refresh()
{
    return m_onDevice.refresh();
}

QCoro::Task<Result<QString>> LumoAI::respond(QString instructions, QString prompt, CancelHandle cancel)
{
    const QPointer<LumoAI> self(this);
    co_await m_onDevice.refresh();
    if (!self || cancel.isCancelled())
        co_return cancelled();
    if (!m_onDevice.unavailableReason())
        co_return co_await m_onDevice.respond(instructions, prompt, cancel);
    if (!m_codex.codexPath())
        co_return failure(describe(AppleAIError::Unavailable));
    co_return co_await m_codex.respond(instructions, prompt, cancel);
}

QCoro::Task<bool> LumoAI::answersUnderSchema()
{
    const QPointer<LumoAI> self(this);
    co_await m_onDevice.refresh();
    co_return self && !m_onDevice.unavailableReason();
}

QCoro::Task<Result<QJsonObject>> LumoAI::respondGenerating(
    QString instructions, QString prompt, QJsonObject schema, CancelHandle cancel)
{
    const QPointer<LumoAI> self(this);
    co_await m_onDevice.refresh();
    if (!self || cancel.isCancelled())
        co_return cancelled();
    co_return co_await m_onDevice.respondGenerating(instructions, prompt, schema, cancel);
}

}
