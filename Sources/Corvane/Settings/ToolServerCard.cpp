#include "Settings/ToolServerCard.h"

#include "Engines/EngineManager.h"
#include "Engines/ToolServer.h"
#include "Foundation/Literals.h"

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
        return (running() ? u"Started again: "_s : u"Stopped: "_s) + problem;
    return running() ? u"Running"_s : u"Stopped"_s;
}

QString ToolServerCard::url() const
{
    return m_engine.mcpURL();
}

QString ToolServerCard::actionLabel() const
{
    return running() ? u"Stop"_s : u"Start"_s;
}

void ToolServerCard::startOrStop()
{
    if (running())
        m_engine.stopUnifiedMCP();
    else
        m_engine.startUnifiedMCP(toolServerPort());
}

}
