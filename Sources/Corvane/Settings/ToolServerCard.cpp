#include "Settings/ToolServerCard.h"

#include "Engines/EngineManager.h"
#include "Engines/ToolServer.h"

namespace corvane {

ToolServerCard::ToolServerCard(EngineManager& engine, QObject* parent)
    : QObject(parent)
    , m_engine(engine)
{
    connect(&m_engine, &EngineManager::mcpRunningChanged, this, &ToolServerCard::changed);
}

bool ToolServerCard::running() const
{
    return m_engine.mcpRunning();
}

QString ToolServerCard::stateText() const
{
    const QString& problem = m_engine.mcpProblem();
    if (!problem.isEmpty())
        return (running() ? QStringLiteral("Started again: ") : QStringLiteral("Stopped: ")) + problem;
    return running() ? QStringLiteral("Running") : QStringLiteral("Stopped");
}

QString ToolServerCard::url() const
{
    return m_engine.mcpURL();
}

QString ToolServerCard::actionLabel() const
{
    return running() ? QStringLiteral("Stop") : QStringLiteral("Start");
}

void ToolServerCard::startOrStop()
{
    if (running())
        m_engine.stopUnifiedMCP();
    else
        m_engine.startUnifiedMCP(toolServerPort);
}

}
