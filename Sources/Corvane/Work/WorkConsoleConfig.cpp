#include "Work/WorkConsoleConfig.h"

#include "Foundation/Literals.h"
#include "Work/WorkWords.h"

namespace corvane {

namespace {

using Tab = WorkConsoleTab;

struct TabWords {
    QString id;
    QString label;
};

const TabWords& wordsOf(WorkConsoleTab tab)
{
    static const QList<TabWords> words { { u"campaign"_s, u"Campaign"_s }, { u"inbox"_s, u"Inbox"_s },
        { u"projects"_s, u"Projects"_s }, { u"tickets"_s, u"Tickets"_s }, { u"processes"_s, u"Processes"_s },
        { u"finance"_s, u"Finance"_s }, { u"hiring"_s, u"Hiring"_s }, { u"terminalChat"_s, u"Terminal Chat"_s },
        { u"agents"_s, u"Agents"_s }, { u"handoffs"_s, u"Handoffs"_s }, { u"approvals"_s, u"Approvals"_s },
        { u"evidence"_s, u"Evidence"_s }, { u"timeline"_s, u"Timeline"_s } };
    return words.at(int(tab));
}

const WorkAction invoiceCheck { u"Invoice Check"_s, u"status + evidence"_s, u"edit-find"_s };
const WorkAction approvalAsk { u"Approval Ask"_s, u"risk labeled ask"_s, u"approvals"_s };
const WorkAction candidateScreen { u"Candidate Screen"_s, u"rubric scoring"_s, u"user"_s };
const WorkAction runbook { u"Runbook"_s, u"process memory"_s, u"document"_s };

WorkAction action(const QString& title, const QString& icon)
{
    return { title, topActionSubtitle(title), icon };
}

bool isOps(const WorkConsoleConfig& config)
{
    return config.module == "ops"_L1;
}

}

QString tabId(WorkConsoleTab tab)
{
    return wordsOf(tab).id;
}

QString tabLabel(WorkConsoleTab tab)
{
    return wordsOf(tab).label;
}

WorkConsoleConfig WorkConsoleConfig::ops(WorkConsoleTab defaultTab)
{
    return { .module = u"ops"_s,
        .eyebrow = u"Ops Workspace"_s,
        .contextTitle = u"Processes"_s,
        .contextNoun = u"process"_s,
        .inspectorTitle = u"Process"_s,
        .selectedTitle = u"No process selected"_s,
        .selectedSubtitle = u"Processes appear when a person or an agent creates one."_s,
        .contextFilters = { u"Finance"_s, u"Hiring"_s, u"Admin"_s },
        .defaultTab = defaultTab,
        .tabs = { Tab::Processes, Tab::Finance, Tab::Hiring, Tab::TerminalChat, Tab::Approvals, Tab::Evidence,
            Tab::Agents, Tab::Timeline },
        .topActions = { invoiceCheck, approvalAsk, runbook },
        .quickActions = { invoiceCheck, approvalAsk, candidateScreen, runbook },
        .placeSource = u"ops-home"_s,
        .boardPlace = u"home"_s };
}

WorkConsoleConfig WorkConsoleConfig::gtm()
{
    return { .module = u"gtm"_s,
        .eyebrow = u"GTM Workspace"_s,
        .contextTitle = u"Campaigns"_s,
        .contextNoun = u"campaign"_s,
        .inspectorTitle = u"Campaign"_s,
        .selectedTitle = u"No campaign selected"_s,
        .selectedSubtitle = u"Campaigns appear when a person or an agent creates one."_s,
        .contextFilters = { u"Campaigns"_s },
        .defaultTab = Tab::Campaign,
        .tabs
        = { Tab::Campaign, Tab::Inbox, Tab::TerminalChat, Tab::Agents, Tab::Approvals, Tab::Evidence, Tab::Timeline },
        .topActions = { action(u"Research"_s, u"edit-find"_s), action(u"Reply"_s, u"mail-reply"_s),
            action(u"Campaign Log"_s, u"note"_s) },
        .quickActions = { action(u"Research"_s, u"edit-find"_s), action(u"Reply"_s, u"mail-reply"_s), approvalAsk,
            action(u"Campaign Log"_s, u"note"_s) } };
}

WorkConsoleConfig WorkConsoleConfig::cx()
{
    return { .module = u"cx"_s,
        .eyebrow = u"CX Workspace"_s,
        .contextTitle = u"Clients"_s,
        .contextNoun = u"client"_s,
        .inspectorTitle = u"Client"_s,
        .selectedTitle = u"No client selected"_s,
        .selectedSubtitle = u"Clients appear when a person or an agent creates one."_s,
        .contextFilters = { u"Clients"_s },
        .defaultTab = Tab::Projects,
        .tabs = { Tab::Projects, Tab::Tickets, Tab::Handoffs, Tab::Inbox, Tab::TerminalChat, Tab::Agents,
            Tab::Approvals, Tab::Evidence, Tab::Timeline },
        .topActions = { action(u"Client Update"_s, u"mail-send"_s), action(u"Bug"_s, u"dialog-warning"_s),
            action(u"Handoff"_s, u"mail-forward"_s) },
        .quickActions = { action(u"Client Update"_s, u"mail-send"_s), action(u"Bug"_s, u"dialog-warning"_s),
            action(u"Handoff"_s, u"mail-forward"_s), approvalAsk } };
}

WorkConsoleConfig WorkConsoleConfig::lumo()
{
    return { .module = u"lumo"_s,
        .eyebrow = u"Lumo Workspace"_s,
        .contextTitle = u"Subjects"_s,
        .contextNoun = u"subject"_s,
        .inspectorTitle = u"Subject"_s,
        .selectedTitle = u"No subject selected"_s,
        .selectedSubtitle = u"Subjects appear when a person or an agent creates one."_s,
        .contextFilters = { u"Subjects"_s },
        .defaultTab = Tab::Projects,
        .tabs = { Tab::Projects, Tab::TerminalChat, Tab::Agents, Tab::Approvals, Tab::Evidence, Tab::Timeline },
        .topActions = { action(u"Research"_s, u"edit-find"_s), runbook },
        .quickActions = { action(u"Research"_s, u"edit-find"_s), runbook, approvalAsk },
        .placeSource = u"lumo-hub"_s };
}

bool isFinanceContext(const WorkContextRow& context)
{
    return marksFinance({ context.kind, context.slug, context.title, context.subtitle });
}

bool isHiringContext(const WorkContextRow& context)
{
    return marksHiring({ context.kind, context.slug, context.title, context.subtitle });
}

QString groupOf(const WorkConsoleConfig& config, const WorkContextRow& context)
{
    if (isOps(config) && isHiringContext(context))
        return u"Hiring"_s;
    if (isOps(config) && isFinanceContext(context))
        return u"Finance"_s;
    return config.contextFilters.last();
}

QList<WorkConsoleTab> visibleTabs(const WorkConsoleConfig& config, const WorkContext& context)
{
    if (!isOps(config))
        return config.tabs;
    const WorkConsoleTab board = contextDefaultTab(config, context);
    const bool both = context && isFinanceContext(*context) && isHiringContext(*context);
    QList<WorkConsoleTab> tabs = config.tabs;
    tabs.removeIf([&](WorkConsoleTab tab) {
        const bool isBoard = tab == Tab::Processes || tab == Tab::Finance || tab == Tab::Hiring;
        return isBoard && tab != board && !(both && tab == Tab::Finance);
    });
    return tabs;
}

WorkConsoleTab contextDefaultTab(const WorkConsoleConfig& config, const WorkContext& context)
{
    if (!isOps(config))
        return config.defaultTab;
    if (context && isHiringContext(*context))
        return Tab::Hiring;
    return context && isFinanceContext(*context) ? Tab::Finance : Tab::Processes;
}

QList<WorkAction> contextualTopActions(const WorkConsoleConfig& config, const WorkContext& context)
{
    if (!context || !isOps(config))
        return config.topActions;
    if (isHiringContext(*context))
        return { candidateScreen, approvalAsk, runbook };
    if (isFinanceContext(*context))
        return { invoiceCheck, approvalAsk, runbook };
    return { approvalAsk, runbook };
}

QList<WorkAction> contextualQuickActions(const WorkConsoleConfig& config, const WorkContext& context)
{
    if (!context)
        return {};
    return isOps(config) ? contextualTopActions(config, context) : config.quickActions;
}

QString topActionSubtitle(const QString& title)
{
    return firstSign({ { u"research"_s, u"lead + company evidence"_s }, { u"reply"_s, u"approval-gated draft"_s },
                         { u"campaign"_s, u"append local evidence"_s }, { u"client"_s, u"draft only"_s },
                         { u"bug"_s, u"browser + console"_s }, { u"handoff"_s, u"tasks + evidence"_s },
                         { u"invoice"_s, u"status + evidence"_s }, { u"approval"_s, u"risk labeled ask"_s },
                         { u"runbook"_s, u"process memory"_s } },
        title)
        .value_or(u"local work record"_s);
}

}
