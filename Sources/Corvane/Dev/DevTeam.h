#pragma once

#include "Dev/DevDesk.h"
#include "Presentation/Choice.h"
#include "Work/WorkAgents.h"

namespace corvane {

/// The agents of a project, including those that the user registers.
class DevTeam : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::WorkAgents* agents READ agents CONSTANT)
    Q_PROPERTY(QList<corvane::Choice> tools READ tools CONSTANT)
    Q_PROPERTY(QString error READ error NOTIFY changed)
public:
    DevTeam(DevDesk& desk, WorkShells& shells, QObject* parent); ///< both outlive it

    void reload();

    WorkAgents* agents() { return &m_agents; }
    QList<Choice> tools() const;
    const QString& error() const { return m_error; }

    Q_INVOKABLE void registerAgent(const QString& tool); ///< "codex", "claude" or "browser"

Q_SIGNALS:
    void changed();
    void wrote();

private:
    DevDesk& m_desk;
    WorkAgents m_agents;
    QString m_error;
};

}
