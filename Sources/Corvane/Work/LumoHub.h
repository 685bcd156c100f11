#pragma once

#include "Work/WorkModuleShell.h"

namespace corvane {

/// The assistant's hub: its knowledge and permissions, the agents, and the house rules.
class LumoHub : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::WorkModuleShell* shell READ shell CONSTANT)
    Q_PROPERTY(corvane::WorkDecisions* knowledge READ knowledge CONSTANT)
    Q_PROPERTY(corvane::WorkAgents* agents READ agents CONSTANT)
    Q_PROPERTY(corvane::GadgetListModel* flows READ flows CONSTANT)
    Q_PROPERTY(QString knowledgeEmpty READ knowledgeEmpty CONSTANT)
    Q_PROPERTY(QString flowsEmpty READ flowsEmpty CONSTANT)
    Q_PROPERTY(QString error READ error NOTIFY changed)
public:
    explicit LumoHub(const WorkServices& services, QObject* parent = nullptr);

    WorkModuleShell* shell() { return &m_shell; }
    WorkDecisions* knowledge() { return &m_knowledge; }
    WorkAgents* agents() { return &m_agents; }
    GadgetListModel* flows() { return &m_flows; }
    const QList<WorkEvidenceSeed>& flowRows() const { return m_flows.rows(); }
    QString knowledgeEmpty() const;
    QString flowsEmpty() const;
    const QString& error() const { return m_error; }

    /// A fact from the user: it is added to the proposals like any other. False if it was not saved.
    Q_INVOKABLE bool propose(const QString& fact);

Q_SIGNALS:
    void changed();

private:
    void readPlaces();

    const WorkServices m_at;
    WorkModuleShell m_shell;
    WorkDecisions m_knowledge;
    WorkAgents m_agents;
    QString m_error;
    RowListModel<WorkEvidenceSeed> m_flows;
};

}
