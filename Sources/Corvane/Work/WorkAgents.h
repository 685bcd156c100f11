#pragma once

#include "Presentation/Choice.h"
#include "Presentation/RowListModel.h"
#include "Work/WorkConsoleConfig.h"
#include "Work/WorkServices.h"
#include "Work/WorkShells.h"

namespace corvane {

class DateWords;

/// An agent and its last heartbeat.
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
    QString tool; ///< with its role
    QString task;
    QString state; ///< "Working", "Silent", "Ready" or a word of another program
    QString tone; ///< good, bad or empty
    QString heartbeat;
    QString session; ///< the purpose of its session
    QString lastWords;
    QString place; ///< its module
    QString aloud;

    static constexpr const char* role = "agent";
    const QString& key() const { return id; }
    bool operator==(const WorkAgentSeed&) const = default;
};

/// It claims to be working and its last heartbeat is older than twice 600 seconds, or missing.
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

/// The command line that the user reviews and runs; each argument is shell-quoted.
QString workAgentLaunchCommand(const QString& module, const WorkContextRow& context, const AgentLaunchPlan& plan);

/// The content of a launch shell. It is only displayed: the user runs the command.
QString launchBanner(
    const WorkConsoleConfig& config, const WorkContextRow& context, const QString& agentName, const QString& command);

/// The agents of a context or of a module, and launching new ones.
class WorkAgents : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::GadgetListModel* agents READ agents CONSTANT)
    Q_PROPERTY(int silent READ silent NOTIFY changed)
    Q_PROPERTY(bool canLaunch READ canLaunch NOTIFY changed)
    Q_PROPERTY(QString banner READ banner NOTIFY changed) ///< about the prepared launch; empty without one
    Q_PROPERTY(QString command READ command NOTIFY changed)
    Q_PROPERTY(QString error READ error NOTIFY changed)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY changed)
    Q_PROPERTY(QList<corvane::Choice> safety READ safety CONSTANT) ///< rules that always apply
public:
    /// The shells outlive it.
    WorkAgents(const WorkServices& services, const WorkConsoleConfig& config, WorkShells& shells, QObject* parent);

    /// Without a context those of the module; `everyModule`: of all modules.
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

    /// Records session and agent, and opens a terminal that shows the command. Empty: the module's default agent.
    Q_INVOKABLE void launch(const QString& agentName = {});
    Q_INVOKABLE void createLocalShell(); ///< a terminal that names the context
    Q_INVOKABLE void dismissLaunch();

Q_SIGNALS:
    void changed();
    void wrote();

private:
    const WorkServices m_at;
    const WorkConsoleConfig m_config;
    WorkShells& m_shells;
    WorkContext m_context;
    bool m_everyModule = false;
    int m_silent = 0;
    QString m_command;
    QString m_banner;
    QString m_error;
    RowListModel<WorkAgentSeed> m_agents;
};

}
