#pragma once

#include "Browser/BrowserView.h"
#include "Dev/DevAssistant.h"
#include "Dev/DevHealth.h"
#include "Dev/DevInspector.h"
#include "Dev/DevLauncher.h"
#include "Dev/DevMemory.h"
#include "Dev/DevRail.h"
#include "Dev/DevSRS.h"
#include "Dev/DevServerAgent.h"
#include "Dev/DevTasks.h"
#include "Dev/DevTeam.h"
#include "Terminals/TerminalsView.h"
#include "Work/ScreenRefresh.h"
#include "Work/WorkCreate.h"

namespace corvane {

enum class DevWorkspaceTab { Terminal, Assistant, Browser, SRS, Tasks, Team, Memory, Server, Health };

/// The developer workspace: projects on the left, tabs for the selected one, and an inspector. It prepares texts,
/// writes rows and opens terminals; risky actions are left for the user to type or to approve.
class TerminalWorkspaceView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString subtitle READ subtitle CONSTANT)
    Q_PROPERTY(bool shown READ shown WRITE setShown NOTIFY changed) ///< it is visible, and is kept up to date
    Q_PROPERTY(QList<corvane::TabItem> tabs READ tabs NOTIFY changed)
    Q_PROPERTY(QString tab READ tab WRITE setTab NOTIFY changed)
    Q_PROPERTY(corvane::DevInspector* inspector READ inspector CONSTANT)
    Q_PROPERTY(QList<corvane::Choice> facts READ facts NOTIFY changed) ///< of the selected project
    Q_PROPERTY(corvane::DevRail* rail READ rail CONSTANT)
    Q_PROPERTY(corvane::TerminalsView* terminals READ terminals CONSTANT)
    Q_PROPERTY(corvane::BrowserView* browser READ browser CONSTANT)
    Q_PROPERTY(corvane::DevLauncher* launcher READ launcher CONSTANT)
    Q_PROPERTY(corvane::DevAssistant* assistant READ assistant CONSTANT)
    Q_PROPERTY(corvane::DevSRS* srs READ srs CONSTANT)
    Q_PROPERTY(corvane::DevTasks* tasks READ tasks CONSTANT)
    Q_PROPERTY(corvane::DevTeam* team READ team CONSTANT)
    Q_PROPERTY(corvane::DevMemory* memory READ memory CONSTANT)
    Q_PROPERTY(corvane::DevServerAgent* server READ server CONSTANT)
    Q_PROPERTY(corvane::DevHealth* health READ health CONSTANT)
    Q_PROPERTY(corvane::WorkCreate* create READ create CONSTANT)
public:
    explicit TerminalWorkspaceView(const DevDesk& desk, QObject* parent = nullptr);

    const DevDesk& desk() const { return m_desk; }
    QString title() const { return m_desk.console.title; }
    QString subtitle() const { return m_desk.console.subtitle; }
    bool shown() const { return m_refresh.shown(); }
    void setShown(bool shown) { m_refresh.setShown(shown); }
    QList<TabItem> tabs() const;
    DevWorkspaceTab workspaceTab() const { return m_tab; }
    void setWorkspaceTab(DevWorkspaceTab tab);
    QString tab() const;
    void setTab(const QString& id);
    DevInspector* inspector() { return &m_inspector; }
    QList<Choice> facts() const;

    DevRail* rail() { return &m_rail; }
    TerminalsView* terminals() { return &m_desk.terminals; }
    BrowserView* browser() { return &m_desk.browser; }
    DevLauncher* launcher() { return &m_launcher; }
    DevAssistant* assistant() { return &m_assistant; }
    DevSRS* srs() { return &m_srs; }
    DevTasks* tasks() { return &m_tasks; }
    DevTeam* team() { return &m_team; }
    DevMemory* memory() { return &m_memory; }
    DevServerAgent* server() { return &m_server; }
    DevHealth* health() { return &m_health; }
    WorkCreate* create() { return &m_create; }

    Q_INVOKABLE void refresh() { m_refresh.now(); }
    void openTerminal(const QString& label, const QString& command); ///< of the project; selects it
    Q_INVOKABLE void openProject(const QString& id); ///< and selects its terminal
    Q_INVOKABLE void showItem(const QString& id); ///< on the board

Q_SIGNALS:
    void changed();

private:
    void read();
    void readTab();
    void projectSelected();
    void terminalsChanged();
    void askSaved(const OpsAskRow& ask, bool forLumo);

    DevDesk m_desk;
    QString m_shownProject; ///< the one that the tabs show
    const void* m_terminal = nullptr; ///< the one that the tabs describe; only compared
    int m_terminalCount = 0;
    DevWorkspaceTab m_tab = DevWorkspaceTab::Terminal;
    DevInspector m_inspector;
    ScreenRefresh m_refresh;
    DevRail m_rail;
    DevLauncher m_launcher;
    DevAssistant m_assistant;
    DevSRS m_srs;
    DevTasks m_tasks;
    WorkShells m_shells; ///< in the same terminals
    DevTeam m_team;
    DevMemory m_memory;
    DevServerAgent m_server;
    DevHealth m_health;
    WorkCreate m_create;
};

}
