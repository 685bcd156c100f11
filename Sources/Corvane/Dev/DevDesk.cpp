#include "Dev/DevDesk.h"

#include "Browser/BrowserView.h"
#include "Foundation/Literals.h"
#include "Foundation/Redaction.h"
#include "Store/Core/LocalDB.h"
#include "Store/Core/StoreWatch.h"
#include "Store/Work/WorkWrites.h"
#include "Terminals/ShellCommand.h"
#include "Terminals/TerminalsView.h"

#include <QFileInfo>

namespace corvane {

QString DevDesk::projectName() const
{
    return project.name.isEmpty() ? project.slug : project.name;
}

WorkContext DevDesk::place() const
{
    if (context || !hasProject())
        return context;
    WorkContextRow row;
    row.id = u"ctx:dev:"_s + project.slug;
    row.module = devModule;
    row.slug = project.slug;
    row.title = projectName();
    return row;
}

WorkContextId DevDesk::shownContext() const
{
    const WorkContext shown = place();
    return shown ? WorkContextId(shown->id) : WorkContextId();
}

WorkContextId DevDesk::madeContext()
{
    if (!context && hasProject()) {
        context = upsertWorkContext(work.db,
            { .module = devModule,
                .kind = u"project"_s,
                .slug = project.slug,
                .title = projectName(),
                .subtitle = project.goal,
                .owner = u"Oskel"_s });
    }
    return shownContext();
}

LumoTerminalSession* DevDesk::session() const
{
    LumoTerminalSession* const current = terminals.current();
    const bool isOfAnother = current && current->projectId() && *current->projectId() != project.id;
    return isOfAnother ? nullptr : current;
}

QString DevDesk::browserUrl() const
{
    return browser.browser()->isRunning() ? browser.browser()->currentURL() : QString();
}

QString DevDesk::transcript(int characters) const
{
    LumoTerminalSession* const current = session();
    return current ? redactSensitive(current->transcript().snapshot(characters)) : QString();
}

QString DevDesk::expanded(const QString& path) const
{
    return path == u'~' || path.startsWith("~/"_L1) ? home + path.mid(1) : path;
}

QString DevDesk::directory() const
{
    for (const QString& path : { project.repoPath, project.controlDir }) {
        if (!path.isEmpty() && QFileInfo(expanded(path)).isDir())
            return expanded(path);
    }
    return resolvedDirectory({}, home);
}

TerminalPlace DevDesk::terminalPlace() const
{
    const std::optional<QString> id = hasProject() ? std::optional(project.id) : std::nullopt;
    return { .projectId = id, .projectSlug = slug(), .directory = directory() };
}

LumoTerminalSession& DevDesk::openTerminal(const QString& label, const QString& command)
{
    return terminals.createLocalSession(label, command, terminalPlace());
}

void DevDesk::told() const
{
    work.db.watch().tell(StoreSubject::Work);
}

}
