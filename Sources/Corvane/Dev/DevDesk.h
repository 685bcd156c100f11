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
struct TerminalPlace;

inline const QString devModule = u"dev"_s;

/// What all tabs of the workspace share, and what is selected. The references outlive it.
struct DevDesk {
    WorkServices work;
    TerminalsView& terminals;
    BrowserView& browser; ///< shared, as the terminals are
    Desktop& desktop;
    QString home;
    WorkConsoleContext console;
    OpsProjectRow project = {}; ///< without an id: none is selected
    WorkContext context = {}; ///< of the project; created with its first row

    bool hasProject() const { return !project.id.isEmpty(); }
    QString projectName() const; ///< as stored in rows
    QString slug() const { return hasProject() ? project.slug : u"local"_s; }

    WorkContext place() const; ///< the context, or the one that the first row will create; none without a project
    WorkContextId shownContext() const; ///< its id; without one, the rows of the whole module are shown
    WorkContextId madeContext(); ///< for a row to be written; nothing without a project

    QString browserUrl() const; ///< of the shown page, with secrets masked; empty for none

    /// The current terminal, unless it belongs to another project.
    LumoTerminalSession* session() const;
    QString transcript(int characters) const; ///< its last characters, redacted; empty without one

    /// Where a shell of the project starts: its repository, else its control folder, else the default folder.
    QString directory() const;
    QString expanded(const QString& path) const; ///< "~" is the home folder
    TerminalPlace terminalPlace() const; ///< of the project, in that folder
    LumoTerminalSession& openTerminal(const QString& label, const QString& command = {});

    void told() const; ///< after this workspace has written work records
};

}
