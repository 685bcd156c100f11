#pragma once

#include "Dev/WorkConsoleContext.h"
#include "Foundation/Literals.h"
#include "Store/Work/OpsRecords.h"
#include "Work/WorkConsoleConfig.h"
#include "Work/WorkServices.h"

namespace corvane {

class BrowserView;
class Desktop;
class LumoTerminalSession;
class TerminalsView;

inline const QString devModule = u"dev"_s;

/// What every tab of the workspace stands on, and what is chosen in it. The references outlive it.
struct DevDesk {
    WorkServices work;
    TerminalsView& terminals;
    BrowserView& browser; ///< shared, as the terminals are
    Desktop& desktop;
    QString home;
    WorkConsoleContext console;
    OpsProjectRow project = {}; ///< without an id: none is chosen
    WorkContext context = {}; ///< of the project; made with its first row

    bool hasProject() const { return !project.id.isEmpty(); }
    QString projectName() const; ///< as it stands in rows
    QString slug() const { return hasProject() ? project.slug : u"local"_s; }

    WorkContext place() const; ///< the context, or the one that the first row makes; none without a project
    WorkContextId shownContext() const; ///< its id: without one the rows of the module are shown
    WorkContextId madeContext(); ///< for a row that is written now; nothing without a project

    QString browserUrl() const; ///< of the page that is shown, secrets masked; empty for none

    /// The terminal in front, unless it is another project's.
    LumoTerminalSession* session() const;
    QString transcript(int characters) const; ///< its last characters, redacted; empty without one

    /// Where a shell of the project starts: its repository, else its control folder, else the usual folder.
    QString directory() const;
    QString expanded(const QString& path) const; ///< "~" is the home folder
    LumoTerminalSession& openTerminal(const QString& label, const QString& command = {});

    void told() const; ///< rows of the work were written here
};

}
