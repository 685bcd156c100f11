#pragma once

#include "Presentation/Choice.h"
#include "Presentation/RowListModel.h"
#include "Work/WorkConsoleConfig.h"
#include "Work/WorkServices.h"

namespace corvane {

class DateWords;

/// An agent, and how long ago it was heard of.
class WorkAgentSeed {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString tool MEMBER tool)
    Q_PROPERTY(QString task MEMBER task)
    Q_PROPERTY(QString state MEMBER state)
    Q_PROPERTY(QString tone MEMBER tone)
    Q_PROPERTY(QString heartbeat MEMBER heartbeat)
    Q_PROPERTY(QString session MEMBER session)
    Q_PROPERTY(QString lastWords MEMBER lastWords)
    Q_PROPERTY(QString place MEMBER place)
    Q_PROPERTY(QString aloud MEMBER aloud)
public:
    QString id;
    QString name;
    QString tool; ///< and its role
    QString task;
    QString state; ///< "At work", "Silent", "Ready" or a word of another writer
    QString tone; ///< good, bad or empty
    QString heartbeat;
    QString session; ///< what its session is for
    QString lastWords;
    QString place; ///< its module
    QString aloud;

    static constexpr const char* role = "agent";
    const QString& key() const { return id; }
    bool operator==(const WorkAgentSeed&) const = default;
};

/// One that says it works and was not heard of for twice 600 seconds, or never.
bool isSilent(const WorkAgentRecord& agent, qint64 nowMs);

WorkAgentSeed agentSeed(const WorkAgentRecord& agent, const QList<WorkSessionRecord>& sessions,
    const QString& lastWords, const DateWords& words, qint64 nowMs);

struct AgentLaunchPlan {
    QString name;
    QString role;
    QString task;
};
AgentLaunchPlan agentLaunchPlan(
    const WorkConsoleConfig& config, const WorkContextRow& context, const QString& agentName);

/// The line that a person reviews and runs; each argument is quoted for the shell.
QString workAgentLaunchCommand(const QString& module, const WorkContextRow& context, const AgentLaunchPlan& plan);

/// What a launch shell shows. It is only shown: the person runs the command.
QString launchBanner(
    const WorkConsoleConfig& config, const WorkContextRow& context, const QString& agentName, const QString& command);

/// The agents of a context or of a module, and how another is brought to work.
class WorkAgents : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::GadgetListModel* agents READ agents CONSTANT)
    Q_PROPERTY(int silent READ silent NOTIFY changed)
    Q_PROPERTY(bool canLaunch READ canLaunch NOTIFY changed)
    Q_PROPERTY(QString banner READ banner NOTIFY changed) ///< of the launch that was prepared; empty without one
    Q_PROPERTY(QString command READ command NOTIFY changed)
    Q_PROPERTY(QString error READ error NOTIFY changed)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY changed)
    Q_PROPERTY(QList<corvane::Choice> safety READ safety CONSTANT) ///< rules that always hold
public:
    WorkAgents(const WorkServices& services, const WorkConsoleConfig& config, QObject* parent);

    /// Without a context those of the module; `everyModule`: of all.
    void setScope(const WorkContext& context, bool everyModule = false);
    void reload();

    GadgetListModel* agents() { return &m_agents; }
    const QList<WorkAgentSeed>& rows() const { return m_agents.rows(); }
    int silent() const { return m_silent; }
    bool canLaunch() const { return m_context.has_value(); }
    const QString& banner() const { return m_banner; }
    const QString& command() const { return m_command; }
    const QString& error() const { return m_error; }
    QString emptyText() const;
    QList<Choice> safety() const;

    /// Notes session and agent, and opens a terminal that shows the command. Empty: the usual agent of the module.
    Q_INVOKABLE void launch(const QString& agentName = {});
    Q_INVOKABLE void showLaunchShell();
    Q_INVOKABLE void createLocalShell(); ///< a terminal that names the context
    Q_INVOKABLE void dismissLaunch();

Q_SIGNALS:
    void changed();
    void wrote();

private:
    const WorkServices m_at;
    const WorkConsoleConfig m_config;
    WorkContext m_context;
    bool m_everyModule = false;
    int m_silent = 0;
    QString m_launched; ///< the agent's name
    QString m_command;
    QString m_banner;
    QString m_error;
    RowListModel<WorkAgentSeed> m_agents;
};

}
