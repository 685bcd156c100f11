#pragma once

#include "Dev/DevProjectForm.h"
#include "Presentation/Choice.h"
#include "Work/OpsProjects.h"

namespace corvane {

/// The projects on the left: the list, in groups, and the selected one.
class DevRail : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::OpsProjects* projects READ projects CONSTANT)
    Q_PROPERTY(corvane::DevProjectForm* form READ form CONSTANT)
    Q_PROPERTY(QList<corvane::TabItem> scopes READ scopes NOTIFY changed)
    Q_PROPERTY(QString scope READ scopeId WRITE setScopeId NOTIFY changed)
    Q_PROPERTY(QString search READ search WRITE setSearch NOTIFY changed)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY changed) ///< empty if projects are listed
public:
    DevRail(DevDesk& desk, QObject* parent);

    void reload();

    OpsProjects* projects() { return &m_projects; }
    DevProjectForm* form() { return &m_form; }
    QList<TabItem> scopes() const;
    TerminalWorkspaceScope scope() const { return m_scope; }
    void setScope(TerminalWorkspaceScope scope);
    QString scopeId() const;
    void setScopeId(const QString& id);
    const QString& search() const { return m_search; }
    void setSearch(const QString& search);
    QString emptyText() const;

    Q_INVOKABLE void select(const QString& id);
    Q_INVOKABLE void step(int by); ///< selects another project of the list

Q_SIGNALS:
    void changed();
    void selected(); ///< another project, or the same in its current state

private:
    void adopt();
    QList<OpsProjectRow> arranged(const QList<OpsProjectRow>& all);

    DevDesk& m_desk;
    OpsProjects m_projects;
    DevProjectForm m_form;
    TerminalWorkspaceScope m_scope = TerminalWorkspaceScope::All;
    QString m_search;
    QHash<TerminalWorkspaceScope, int> m_counts;
};

}
