#pragma once

#include "Dev/DevDesk.h"
#include "Presentation/Choice.h"
#include "Work/WorkShells.h"

#include <QObject>

namespace corvane {

/// The command that starts an agent on another host, for the user to review and run. It is not run here.
class DevServerAgent : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString name READ serverAgentName WRITE setServerAgentName NOTIFY changed)
    Q_PROPERTY(QString role READ serverAgentRole WRITE setServerAgentRole NOTIFY changed)
    Q_PROPERTY(QString task READ serverAgentTask WRITE setServerAgentTask NOTIFY changed)
    Q_PROPERTY(QString taskHint READ taskHint NOTIFY changed)
    Q_PROPERTY(bool dryRun READ dryRun WRITE setDryRun NOTIFY changed)
    Q_PROPERTY(QString command READ serverAgentCommand NOTIFY changed)
    Q_PROPERTY(QString relayCommand READ relayCommand CONSTANT)
    Q_PROPERTY(QString tunnelCommand READ tunnelCommand CONSTANT)
    Q_PROPERTY(QList<corvane::Choice> rules READ rules CONSTANT)
public:
    DevServerAgent(DevDesk& desk, WorkShells& shells, QObject* parent); ///< both outlive it

    void reload() { Q_EMIT changed(); }

    const QString& serverAgentName() const { return m_name; }
    void setServerAgentName(const QString& name) { edit(m_name, name); }
    const QString& serverAgentRole() const { return m_role; }
    void setServerAgentRole(const QString& role) { edit(m_role, role); }
    const QString& serverAgentTask() const { return m_task; }
    void setServerAgentTask(const QString& task) { edit(m_task, task); }
    QString taskHint() const; ///< the text in the command without a task
    bool dryRun() const { return m_dryRun; }
    void setDryRun(bool on);
    QString serverAgentCommand() const;
    QString relayCommand() const;
    QString tunnelCommand() const;
    QList<Choice> rules() const;

    Q_INVOKABLE void showInTerminal(); ///< a terminal that shows the command and does not run it

Q_SIGNALS:
    void changed();

private:
    void edit(QString& field, const QString& value);

    DevDesk& m_desk;
    WorkShells& m_shells;
    QString m_name;
    QString m_role;
    QString m_task;
    bool m_dryRun = true;
};

}
