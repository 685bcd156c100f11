#include "Dev/DevAssistant.h"

#include "Dev/AssistantPacket.h"
#include "Foundation/Literals.h"
#include "Terminals/LumoTerminalSession.h"

namespace corvane {

namespace {

struct Target {
    const char* id;
    const char* label;
    const char* session; ///< the label of its terminal
    const char* command; ///< typed there, once the packet is on the clipboard
};

const Target& targetOf(WorkAssistantTarget target)
{
    static constexpr std::array<Target, 3> targets { {
        { "codex", "Codex", "AI Codex", "echo 'Corvane context copied to clipboard.'; codex" },
        { "claude", "Claude", "AI Claude",
            "pgrep -fl claude || true; echo 'Corvane context copied to clipboard. Keep local Claude under 2 "
            "processes.'; claude" },
        { "terminal", "Terminal", "AI Context", "echo 'Corvane context copied to clipboard.'" },
    } };
    return targets.at(size_t(target));
}

constexpr std::array allTargets { WorkAssistantTarget::Codex, WorkAssistantTarget::Claude,
    WorkAssistantTarget::Terminal };

}

DevAssistant::DevAssistant(DevDesk& desk, QObject* parent)
    : QObject(parent)
    , m_desk(desk)
{
}

void DevAssistant::reload()
{
    m_packet = assistantContextPacket(m_desk, m_prompt);
    Q_EMIT changed();
}

void DevAssistant::setAssistantPrompt(const QString& prompt)
{
    if (std::exchange(m_prompt, prompt) != prompt)
        reload();
}

QString DevAssistant::promptHint() const
{
    return u"What should the agent do? Empty: the most useful next action"_s;
}

QList<Choice> DevAssistant::targets() const
{
    QList<Choice> choices;
    for (const WorkAssistantTarget target : allTargets)
        choices.append({ QLatin1StringView(targetOf(target).id), QLatin1StringView(targetOf(target).label) });
    return choices;
}

QString DevAssistant::target() const
{
    return QLatin1StringView(targetOf(m_target).id);
}

void DevAssistant::setTarget(const QString& target)
{
    for (const WorkAssistantTarget each : allTargets) {
        if (target == QLatin1StringView(targetOf(each).id) && std::exchange(m_target, each) != each)
            Q_EMIT changed();
    }
}

QString DevAssistant::launchLabel() const
{
    return m_target == WorkAssistantTarget::Terminal
        ? u"Copy the packet"_s
        : u"Copy the packet, start "_s + QLatin1StringView(targetOf(m_target).label);
}

QString DevAssistant::targetText() const
{
    switch (m_target) {
    case WorkAssistantTarget::Codex:
        return u"A new terminal starts codex. Paste the packet there when it is ready."_s;
    case WorkAssistantTarget::Claude:
        return u"A new terminal lists the running claude processes, then starts claude. Keep them under two."_s;
    case WorkAssistantTarget::Terminal:
        break;
    }
    return u"The packet is copied, and the selected terminal says so."_s;
}

QString DevAssistant::transcriptText() const
{
    const LumoTerminalSession* const session = m_desk.session();
    return session ? u"With what %1 shows, secrets masked"_s.arg(session->title())
                   : u"No terminal of this project is open"_s;
}

void DevAssistant::copyPacket()
{
    reload();
    Q_EMIT copyRequested(m_packet);
    m_notice = u"The packet is on the clipboard."_s;
    Q_EMIT changed();
}

void DevAssistant::launchAssistant()
{
    copyPacket();
    const Target& target = targetOf(m_target);
    const QString command = QString::fromLatin1(target.command);
    LumoTerminalSession* const selected = m_desk.session();
    if (m_target == WorkAssistantTarget::Terminal && selected && selected->isRunning())
        selected->send(command + u'\n');
    else
        m_desk.openTerminal(QString::fromLatin1(target.session), command);
    Q_EMIT launched();
}

void DevAssistant::dismissNotice()
{
    m_notice.clear();
    Q_EMIT changed();
}

}
