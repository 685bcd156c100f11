#pragma once

#include "Presentation/Choice.h"
#include "Store/Work/WorkRecords.h"

#include <QStringList>

namespace corvane {

/// The surfaces of a context, in the order in which they are known.
enum class WorkConsoleTab {
    Campaign,
    Inbox,
    Projects,
    Tickets,
    Processes,
    Finance,
    Hiring,
    TerminalChat,
    Agents,
    Handoffs,
    Approvals,
    Evidence,
    Timeline
};

QString tabId(WorkConsoleTab tab); ///< such as "terminalChat"
QString tabLabel(WorkConsoleTab tab); ///< such as "Terminal Chat"

/// Something that a person can begin, in two words and what comes of it.
class WorkAction {
    Q_GADGET
    Q_PROPERTY(QString title MEMBER title)
    Q_PROPERTY(QString subtitle MEMBER subtitle)
    Q_PROPERTY(QString icon MEMBER icon)
public:
    QString title;
    QString subtitle;
    QString icon = {};

    bool operator==(const WorkAction&) const = default;
};

/// What sets the workspace of one module apart from the others. It holds no rows: those come from the store alone.
struct WorkConsoleConfig {
    QString module;
    QString eyebrow;
    QString contextTitle; ///< what its contexts are called: "Processes"
    QString contextNoun; ///< one of them: "process"
    QString inspectorTitle;
    QString selectedTitle; ///< where nothing is selected
    QString selectedSubtitle;
    QStringList contextFilters; ///< groups of the rail; the last one takes what fits no other
    WorkConsoleTab defaultTab;
    QList<WorkConsoleTab> tabs;
    QList<WorkAction> topActions;
    QList<WorkAction> quickActions;

    static WorkConsoleConfig ops(WorkConsoleTab defaultTab = WorkConsoleTab::Processes);
    static WorkConsoleConfig gtm();
    static WorkConsoleConfig cx();
    static WorkConsoleConfig lumo();
};

// What a context is, is told by its words alone: no column says it.

bool isFinanceContext(const WorkContextRow& context);
bool isHiringContext(const WorkContextRow& context);
QString groupOf(const WorkConsoleConfig& config, const WorkContextRow& context); ///< one of the filters

// Without a context: of the workspace as it stands before one is selected.

using WorkContext = std::optional<WorkContextRow>;

QList<WorkConsoleTab> visibleTabs(const WorkConsoleConfig& config, const WorkContext& context);
WorkConsoleTab contextDefaultTab(const WorkConsoleConfig& config, const WorkContext& context);
QList<WorkAction> contextualTopActions(const WorkConsoleConfig& config, const WorkContext& context);
QList<WorkAction> contextualQuickActions(const WorkConsoleConfig& config, const WorkContext& context);
QString topActionSubtitle(const QString& title);

}
