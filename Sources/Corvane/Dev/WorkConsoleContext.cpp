#include "Dev/WorkConsoleContext.h"

#include "Foundation/Literals.h"
#include "Foundation/Text.h"
#include "Store/Work/OpsRecords.h"
#include "Work/WorkWords.h"

#include <algorithm>

namespace corvane {

WorkConsoleContext WorkConsoleContext::lumo()
{
    return { .area = u"Lumo"_s,
        .title = u"Lumo Work Console"_s,
        .subtitle = u"AI shell, project terminals, memory, and agents"_s,
        .icon = u"hub-lumo"_s,
        .projectTokens = { u"lumo"_s, u"assistant"_s, u"agent"_s, u"corvane"_s },
        .safetyNote = u"Lumo can coordinate work, but sends, credentials, billing, deploys, and destructive actions "
                      "need explicit approval."_s };
}

WorkConsoleContext WorkConsoleContext::dev()
{
    return { .area = u"DEV"_s,
        .title = u"DEV Work Console"_s,
        .subtitle = u"Terminal, browser QA, SRS, tasks, team, memory, and health"_s,
        .icon = u"hub-dev"_s,
        .projectTokens = {},
        .safetyNote = u"Max 2 local Claude processes. Heavy work uses Codex or server."_s };
}

bool runsHere(const OpsProjectRow& project, const QString& hostName)
{
    return meansThisMachine(project.execHost) || project.execHost.trimmed().toLower() == hostName.toLower();
}

bool isListed(const OpsProjectRow& project, const WorkConsoleContext& console, TerminalWorkspaceScope scope,
    const QString& search, const QString& hostName)
{
    const QString text = folded(
        QStringList { project.name, project.slug, project.goal, project.category, project.execHost }.join(u'\n'));
    const bool isOfConsole = console.projectTokens.isEmpty()
        || std::ranges::any_of(console.projectTokens, [&](const QString& token) { return text.contains(token); });
    if (!isOfConsole || !text.contains(folded(search.trimmed())))
        return false;
    switch (scope) {
    case TerminalWorkspaceScope::Local:
        return runsHere(project, hostName);
    case TerminalWorkspaceScope::Remote:
        return !runsHere(project, hostName);
    case TerminalWorkspaceScope::Asks:
        return project.openAsks > 0;
    case TerminalWorkspaceScope::All:
        break;
    }
    return true;
}

}
