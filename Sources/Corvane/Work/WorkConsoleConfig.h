#pragma once

#include "Foundation/Literals.h"
#include "Presentation/Choice.h"
#include "Store/Work/WorkRecords.h"

#include <QStringList>

namespace corvane {

/// The surfaces of a context, in order.
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

/// Something that the user can start, with its label and effect.
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

/// What distinguishes a module's workspace from the others. It has no rows: those come from the store.
struct WorkConsoleConfig {
    QString module;
    QString eyebrow;
    QString contextTitle; ///< the name of its contexts: "Processes"
    QString contextNoun; ///< the singular: "process"
    QString inspectorTitle;
    QString selectedTitle; ///< if nothing is selected
    QString selectedSubtitle;
    QStringList contextFilters; ///< groups of the rail; the last one takes the rest
    WorkConsoleTab defaultTab;
    QList<WorkConsoleTab> tabs;
    QList<WorkAction> topActions;
    QList<WorkAction> quickActions;
    QString placeSource = u"corvane-ui"_s; ///< source of items created outside a context
    QString boardPlace = {}; ///< the place that shows the board of the module; empty for none

    static WorkConsoleConfig ops(WorkConsoleTab defaultTab = WorkConsoleTab::Processes);
    static WorkConsoleConfig gtm();
    static WorkConsoleConfig cx();
    static WorkConsoleConfig lumo();
};

// A context is classified by its words: there is no column for it.

bool isFinanceContext(const WorkContextRow& context);
bool isHiringContext(const WorkContextRow& context);
QString groupOf(const WorkConsoleConfig& config, const WorkContextRow& context); ///< one of the filters

// Without a context: of the workspace before one is selected.

using WorkContext = std::optional<WorkContextRow>;

QList<WorkConsoleTab> visibleTabs(const WorkConsoleConfig& config, const WorkContext& context);
WorkConsoleTab contextDefaultTab(const WorkConsoleConfig& config, const WorkContext& context);
QList<WorkAction> contextualTopActions(const WorkConsoleConfig& config, const WorkContext& context);
QList<WorkAction> contextualQuickActions(const WorkConsoleConfig& config, const WorkContext& context);
QString topActionSubtitle(const QString& title);

}
