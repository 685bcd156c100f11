#pragma once

#include "Foundation/Literals.h"
#include "Work/ScreenRefresh.h"
#include "Work/WorkAgents.h"
#include "Work/WorkBoard.h"
#include "Work/WorkCreate.h"
#include "Work/WorkDecisions.h"
#include "Work/WorkItemSheet.h"
#include "Work/WorkTerminalChat.h"

namespace corvane {

/// Evidence in a list.
class WorkEvidenceSeed {
    Q_GADGET
    Q_PROPERTY(QString id MEMBER id)
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString summary MEMBER summary)
    Q_PROPERTY(QString facts MEMBER facts)
public:
    QString id;
    QString title;
    QString summary;
    QString facts; ///< its kind, source and time

    static constexpr const char* role = "evidence";
    const QString& key() const { return id; }
    bool operator==(const WorkEvidenceSeed&) const = default;
};

WorkEvidenceSeed evidenceSeed(const WorkEvidenceRecord& evidence, const DateWords& words);

/// The workspace of a module: a rail of places and contexts, and the surfaces of the selected one. All content comes
/// from the store, and is read again only if something was written and the screen is shown.
class WorkModuleShell : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool shown READ shown WRITE setShown NOTIFY changed) ///< it is on the screen
    Q_PROPERTY(corvane::GadgetListModel* contexts READ contexts CONSTANT)
    Q_PROPERTY(QString query READ query WRITE setQuery NOTIFY changed)
    Q_PROPERTY(QString contextsTitle READ contextsTitle CONSTANT)
    Q_PROPERTY(QString contextsEmpty READ contextsEmpty NOTIFY changed) ///< empty if there are some
    Q_PROPERTY(QString createLabel READ createLabel CONSTANT)
    Q_PROPERTY(QList<corvane::TabItem> places READ places NOTIFY changed)
    Q_PROPERTY(QString place READ place WRITE setPlace NOTIFY changed) ///< empty while a context is chosen
    Q_PROPERTY(QString selectedContextId READ selectedContextId NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString subtitle READ subtitle NOTIFY changed)
    Q_PROPERTY(QString inspectorTitle READ inspectorTitle CONSTANT)
    Q_PROPERTY(QList<corvane::TabItem> tabs READ tabs NOTIFY changed)
    Q_PROPERTY(QString tab READ tab WRITE setTab NOTIFY changed)
    Q_PROPERTY(
        QString surface READ surface NOTIFY changed) ///< board, inbox, chat, agents, approvals, evidence, timeline
    Q_PROPERTY(QList<corvane::WorkAction> topActions READ topActions NOTIFY changed)
    Q_PROPERTY(QList<corvane::WorkAction> quickActions READ quickActions NOTIFY changed)
    Q_PROPERTY(QList<corvane::WorkMetricSeed> metrics READ metrics NOTIFY changed)
    Q_PROPERTY(QString log READ log NOTIFY changed) ///< the context as lines of a session
    Q_PROPERTY(QString notice READ notice NOTIFY changed)
    Q_PROPERTY(corvane::GadgetListModel* evidence READ evidence CONSTANT)
    Q_PROPERTY(corvane::GadgetListModel* timeline READ timeline CONSTANT)
    Q_PROPERTY(QString earlierText READ earlierText NOTIFY changed) ///< empty where the whole timeline is shown
    Q_PROPERTY(corvane::GadgetListModel* tasks READ tasks CONSTANT) ///< open items that are no tickets
    Q_PROPERTY(corvane::WorkBoard* board READ board CONSTANT)
    Q_PROPERTY(corvane::WorkItemSheet* item READ item CONSTANT)
    Q_PROPERTY(corvane::WorkCreate* create READ create CONSTANT)
    Q_PROPERTY(corvane::WorkTerminalChat* chat READ chat CONSTANT)
    Q_PROPERTY(corvane::WorkDecisions* decisions READ decisions CONSTANT)
    Q_PROPERTY(corvane::WorkAgents* agents READ agents CONSTANT)
    Q_PROPERTY(corvane::WorkShells* shells READ shells CONSTANT)
public:
    /// `places`: those of the rail that are no contexts.
    WorkModuleShell(
        const WorkServices& services, const WorkConsoleConfig& config, const QList<TabItem>& places, QObject* parent);

    const WorkServices& services() const { return m_at; }
    const WorkConsoleConfig& config() const { return m_config; }
    const WorkContext& context() const { return m_context; }
    void setPlaceCount(const QString& place, int count);
    void show(const QString& contextId, const QString& itemId = {}, const QString& tab = {}); ///< from elsewhere
    void setStale() { m_refresh.setStale(); } ///< read again at the next tick

    bool shown() const { return m_refresh.shown(); }
    void setShown(bool shown) { m_refresh.setShown(shown); }
    GadgetListModel* contexts() { return &m_contexts; }
    const QList<WorkContextSeed>& contextRows() const { return m_contexts.rows(); }
    const QString& query() const { return m_query; }
    void setQuery(const QString& query);
    QString contextsTitle() const { return m_config.contextTitle; }
    QString contextsEmpty() const;
    QString createLabel() const { return u"New "_s + m_config.contextNoun; }
    const QList<TabItem>& places() const { return m_places; }
    const QString& place() const { return m_place; }
    void setPlace(const QString& place);
    QString selectedContextId() const { return m_selected; }
    QString title() const;
    QString subtitle() const;
    QString inspectorTitle() const { return m_config.inspectorTitle; }
    QList<TabItem> tabs() const;
    QString tab() const { return tabId(m_tab); }
    void setTab(const QString& tab);
    QString surface() const;
    QList<WorkAction> topActions() const { return contextualTopActions(m_config, m_context); }
    QList<WorkAction> quickActions() const { return contextualQuickActions(m_config, m_context); }
    QList<WorkMetricSeed> metrics() const { return dashboardMetrics(m_config, m_counts); }
    QString log() const { return m_logLines.join(QLatin1Char('\n')); }
    QString notice() const;
    GadgetListModel* evidence() { return &m_evidence; }
    GadgetListModel* timeline() { return &m_timeline; }
    const QList<OpsTimelineEvent>& timelineRows() const { return m_timeline.rows(); }
    QString earlierText() const { return m_hasEarlier ? u"Show earlier"_s : QString(); }
    GadgetListModel* tasks() { return &m_tasks; }
    WorkBoard* board() { return &m_board; }
    WorkItemSheet* item() { return &m_item; }
    WorkCreate* create() { return &m_create; }
    WorkTerminalChat* chat() { return &m_chat; }
    WorkDecisions* decisions() { return &m_decisions; }
    WorkAgents* agents() { return &m_agents; }
    WorkShells* shells() { return &m_shells; }

    Q_INVOKABLE void select(const QString& contextId);
    Q_INVOKABLE void step(int by); ///< to another context of the rail
    /// A reply: adds an item, and a decision that waits. False if it was not saved: the text stays.
    Q_INVOKABLE bool queueDraft(const QString& text);
    Q_INVOKABLE void showEarlier(); ///< of the timeline
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
    void readContexts();
    void readSurface();
    void readTimeline();
    void setContext(const WorkContext& context);

    const WorkServices m_at;
    const WorkConsoleConfig m_config;
    QList<TabItem> m_places;
    QString m_place;
    QString m_query;
    QString m_selected;
    WorkContext m_context;
    WorkConsoleTab m_tab;
    int m_eventsShown;
    bool m_hasEarlier = false;
    WorkCounts m_counts;
    QStringList m_logLines;
    QString m_notice;
    ScreenRefresh m_refresh;
    RowListModel<WorkContextSeed> m_contexts;
    RowListModel<WorkEvidenceSeed> m_evidence;
    RowListModel<OpsTimelineEvent> m_timeline;
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
