#pragma once

#include "Foundation/Literals.h"
#include "Work/ScreenRefresh.h"
#include "Work/WorkAgents.h"
#include "Work/WorkBoard.h"
#include "Work/WorkCreate.h"
#include "Work/WorkDecisions.h"
#include "Work/WorkHeader.h"
#include "Work/WorkHistory.h"
#include "Work/WorkItemSheet.h"
#include "Work/WorkRail.h"
#include "Work/WorkTerminalChat.h"

namespace corvane {

/// The workspace of a module: its rail, and the surfaces of the selected context. All content comes from the store, and
/// is read again only if something was written and the screen is shown.
class WorkModuleShell : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool shown READ shown WRITE setShown NOTIFY changed) ///< it is on the screen
    Q_PROPERTY(corvane::WorkRail* rail READ rail CONSTANT)
    Q_PROPERTY(corvane::WorkHeader* header READ header CONSTANT)
    Q_PROPERTY(QString inspectorTitle READ inspectorTitle CONSTANT)
    Q_PROPERTY(QList<corvane::TabItem> tabs READ tabs NOTIFY changed)
    Q_PROPERTY(QString tab READ tab WRITE setTab NOTIFY changed)
    Q_PROPERTY(
        QString surface READ surface NOTIFY changed) ///< board, inbox, chat, agents, approvals, evidence, timeline
    Q_PROPERTY(QString notice READ notice NOTIFY changed)
    Q_PROPERTY(corvane::WorkHistory* history READ history CONSTANT)
    Q_PROPERTY(corvane::GadgetListModel* tasks READ tasks CONSTANT) ///< open items other than tickets
    Q_PROPERTY(corvane::WorkBoard* board READ board CONSTANT)
    Q_PROPERTY(corvane::WorkItemSheet* item READ item CONSTANT)
    Q_PROPERTY(corvane::WorkCreate* create READ create CONSTANT)
    Q_PROPERTY(corvane::WorkTerminalChat* chat READ chat CONSTANT)
    Q_PROPERTY(corvane::WorkDecisions* decisions READ decisions CONSTANT)
    Q_PROPERTY(corvane::WorkAgents* agents READ agents CONSTANT)
    Q_PROPERTY(corvane::WorkShells* shells READ shells CONSTANT)
public:
    /// `places`: the entries of the rail that are not contexts.
    WorkModuleShell(
        const WorkServices& services, const WorkConsoleConfig& config, const QList<TabItem>& places, QObject* parent);

    void show(const QString& contextId, const QString& itemId = {}, const QString& tab = {}); ///< from elsewhere
    void setStale() { m_refresh.setStale(); } ///< read again at the next tick

    bool shown() const { return m_refresh.shown(); }
    void setShown(bool shown) { m_refresh.setShown(shown); }
    WorkRail* rail() { return &m_rail; }
    WorkHeader* header() { return &m_header; }
    QString inspectorTitle() const { return m_config.inspectorTitle; }
    QList<TabItem> tabs() const;
    QString tab() const { return tabId(m_tab); }
    void setTab(const QString& tab);
    QString surface() const;
    QString notice() const;
    WorkHistory* history() { return &m_history; }
    GadgetListModel* tasks() { return &m_tasks; }
    WorkBoard* board() { return &m_board; }
    WorkItemSheet* item() { return &m_item; }
    WorkCreate* create() { return &m_create; }
    WorkTerminalChat* chat() { return &m_chat; }
    WorkDecisions* decisions() { return &m_decisions; }
    WorkAgents* agents() { return &m_agents; }
    WorkShells* shells() { return &m_shells; }

    /// A reply: adds an item, and a decision that waits. False if it was not saved: the text stays.
    Q_INVOKABLE bool queueDraft(const QString& text);
    Q_INVOKABLE void exportContext();
    Q_INVOKABLE void dismissNotice();
    Q_INVOKABLE void refresh() { m_refresh.now(); }
    Q_INVOKABLE void openSource(const QString& source); ///< "item:{id}" or "evidence:{id}"

Q_SIGNALS:
    void changed();
    void refreshed(); ///< the places must read their rows again, too
    void aged(); ///< a minute passed: words such as "3 minutes ago" changed

private:
    void read();
    void age();
    void readSurface();
    void setContext(const WorkContext& context);
    void showSelected();

    const WorkServices m_at;
    const WorkConsoleConfig m_config;
    WorkContext m_context;
    WorkConsoleTab m_tab;
    QString m_notice;
    ScreenRefresh m_refresh;
    WorkRail m_rail;
    WorkHeader m_header;
    WorkHistory m_history;
    RowListModel<WorkItemSeed> m_tasks;
    WorkBoard m_board;
    WorkItemSheet m_item;
    WorkCreate m_create;
    WorkTerminalChat m_chat;
    WorkDecisions m_decisions;
    WorkShells m_shells;
    WorkAgents m_agents;
};

}
